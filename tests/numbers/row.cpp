#include "tests/numbers/row.h"

#include <utility>

#include "tests/numbers/blending_references.h"
#include "tests/numbers/compute_shader.h"
#include "tests/numbers/layer_references.h"
#include "tests/numbers/output_references.h"
#include "tests/numbers/shape_references.h"
#include "tests/numbers/texture_references.h"

namespace numbers_test {

Input number(std::string name, double low, double high) {
  return {std::move(name), "float", Draw::kRange, low, high};
}

Input vector2(std::string name, double low, double high) {
  return {std::move(name), "float2", Draw::kRange, low, high};
}

Input vector3(std::string name, double low, double high) {
  return {std::move(name), "float3", Draw::kRange, low, high};
}

Input vector4(std::string name, double low, double high) {
  return {std::move(name), "float4", Draw::kRange, low, high};
}

Input matrix3(std::string name, double low, double high) {
  return {std::move(name), "float3x3", Draw::kRange, low, high};
}

Input matrix4(std::string name, double low, double high) {
  return {std::move(name), "float4x4", Draw::kRange, low, high};
}

Input unit3(std::string name) { return {std::move(name), "float3", Draw::kUnit, -1.0, 1.0}; }

Input above3(std::string name) { return {std::move(name), "float3", Draw::kAbove, -1.0, 1.0}; }

Input across3(std::string name) { return {std::move(name), "float3", Draw::kAcross, -1.0, 1.0}; }

Input whole(std::string name, double low, double high) {
  return {std::move(name), "float", Draw::kWhole, low, high};
}

Input wholeInt(std::string name, double low, double high) {
  return {std::move(name), "int", Draw::kWhole, low, high};
}

Sample::Sample(std::span<Input const> inputs, std::span<float const> values) : values_(values) {
  std::size_t offset = 0;
  for (Input const& input : inputs) {
    offsets_.push_back(offset);
    offset += componentCount(input.type);
  }
}

std::vector<Topic> allTopics() {
  return {mathTopic(),       vectorTopic(), colorTopic(), noiseTopic(),    patternTopic(),  brdfTopic(),
          coordinateTopic(), inputTopic(),  logicTopic(), operatorTopic(), blendingTopic(), colorSpaceTopic(),
          textureTopic(),    outputTopic(), postTopic(),  layerTopic(),    shapeTopic()};
}

}  // namespace numbers_test
