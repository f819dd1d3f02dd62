// The complete compute shaders of the ready-made host, run as they stand: the road of a graph document to
// numbers.

#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>

#include <gtest/gtest.h>
#include <unistd.h>

#include <spirv/unified1/spirv.hpp>

#include "host/collapse_job.h"
#include "host/shader_assembly.h"
#include "host/shader_compiler.h"
#include "tests/numbers/agreement.h"
#include "tests/numbers/sampler.h"
#include "tests/numbers/vulkan_compute.h"
#include "tolmsdk/unicode.h"

namespace numbers_test {
namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics;
using namespace TolmSDK::Graphics::sfg;

// Where the members of an element of a buffer lie, in floats.
struct ElementLayout {
  std::size_t stride = 0;
  std::map<std::string, std::size_t> offsets;
};

// The layout of the run-time array of the structure of this name, as the module's decorations say.
ElementLayout layoutOf(std::vector<std::uint32_t> const& spirv, std::string const& structure) {
  constexpr std::size_t kHeader = 5;
  std::uint32_t structId = 0;
  std::map<std::uint32_t, std::string> names;    // member -> name
  std::map<std::uint32_t, std::size_t> offsets;  // member -> bytes
  std::map<std::uint32_t, std::size_t> strides;  // type -> bytes
  ElementLayout layout;
  for (std::size_t at = kHeader; at < spirv.size(); at += spirv[at] >> 16) {
    std::uint32_t const* const words = &spirv[at];
    auto const text = [&](std::size_t word) {
      return std::string(reinterpret_cast<char const*>(words + word));
    };
    std::uint32_t const operation = words[0] & 0xffffu;
    if (operation == spv::OpName && text(2) == structure) {
      structId = words[1];
    } else if (operation == spv::OpMemberName && words[1] == structId) {
      names[words[2]] = text(3);
    } else if (operation == spv::OpMemberDecorate && words[1] == structId &&
               words[3] == spv::DecorationOffset) {
      offsets[words[2]] = words[4];
    } else if (operation == spv::OpDecorate && words[2] == spv::DecorationArrayStride) {
      strides[words[1]] = words[3];
    } else if (operation == spv::OpTypeRuntimeArray && words[2] == structId) {
      layout.stride = strides.at(words[1]) / sizeof(float);
    }
  }
  for (auto const& [member, name] : names) {
    layout.offsets[name] = offsets.at(member) / sizeof(float);
  }
  return layout;
}

// A document of a graph of the one fragment, whose ports are the graph's.
std::string graphDocument(FragmentProfile const& profile, Function const& function) {
  auto const ports = [](auto const& list, std::string const& more) {
    std::string text;
    for (Port const& port : list) {
      text += (text.empty() ? "" : ", ") +
              ("{\"name\": \"" + port.name + "\", \"type\": \"" + port.type + "\"") +
              (more.empty() ? "" : more + port.name + "\"") + "}";
    }
    return text;
  };
  std::string wires;
  for (Port const& port : function.inputs) {
    wires += (wires.empty() ? "\"" : ", \"") + port.name + "\": {\"graphInput\": \"" + port.name + "\"}";
  }
  return "{\"inputs\": [" + ports(function.inputs, "") + "], \"outputs\": [" +
         ports(function.outputs, ", \"node\": \"subject\", \"output\": \"") +
         "], \"nodes\": [{\"name\": \"subject\", \"fragment\": \"" + profile.fragment + "\", \"inputs\": {" +
         wires + "}}]}";
}

class TemporaryFile {
public:
  explicit TemporaryFile(std::string const& content)
      : path_(std::filesystem::temp_directory_path() /
              ("sfg_numbers_" + std::to_string(getpid()) + ".json")) {
    std::ofstream(path_) << content;
  }
  ~TemporaryFile() { std::filesystem::remove(path_); }
  TemporaryFile(TemporaryFile const&) = delete;
  TemporaryFile& operator=(TemporaryFile const&) = delete;
  std::string path() const { return path_.string(); }

private:
  std::filesystem::path path_;
};

// The module of the complete compute shader of the document. The include files are registered already.
std::vector<std::uint32_t> compileDocument(std::string const& document, double lod) {
  TemporaryFile const file(document);
  host::CollapseSettings settings;
  settings.graphFile = file.path();
  settings.libraryFolders = {"library"};
  settings.surfaceLod = static_cast<float>(lod);
  host::CollapseJob job(settings);
  job.run();
  host::AssembledShader assembled = host::assembleShader(job, host::ShaderStage::compute);
  std::string const bytes =
      host::compileShader(toUtf8(assembled.shader.getCompleteShader()), assembled.entryPoint,
                          host::ShaderStage::compute, host::ShaderTarget::spirv);
  std::vector<std::uint32_t> words(bytes.size() / sizeof(std::uint32_t));
  std::memcpy(words.data(), bytes.data(), bytes.size());
  return words;
}

// Spreads the samples to the elements of the input buffer; whole numbers become integers where the port is
// one.
std::vector<float> spread(std::vector<float> const& samples, Row const& row, ElementLayout const& layout) {
  std::vector<float> buffer(kSamples * layout.stride);
  std::size_t read = 0;
  for (std::size_t i = 0; i < kSamples; ++i) {
    for (Input const& input : row.inputs) {
      for (std::size_t c = 0; c < componentCount(input.type); ++c) {
        float const value = samples[read++];
        buffer[i * layout.stride + layout.offsets.at(input.name) + c] =
            input.type.starts_with("int") ? std::bit_cast<float>(static_cast<std::int32_t>(value)) : value;
      }
    }
  }
  return buffer;
}

std::vector<float> gather(std::vector<float> const& buffer, Function const& function,
                          ElementLayout const& layout) {
  std::vector<float> values;
  for (std::size_t i = 0; i < kSamples; ++i) {
    for (Port const& output : function.outputs) {
      for (std::size_t c = 0; c < componentCount(output.type); ++c) {
        values.push_back(buffer[i * layout.stride + layout.offsets.at(output.name) + c]);
      }
    }
  }
  return values;
}

// Whether all that the code reads comes from the buffer of inputs, as it stands.
bool readsOnlyTheBuffer(Row const& row, Function const& function) {
  bool result = row.inlineType.empty() && function.zeros.empty();
  for (SampledPort const& input : function.inputs) {
    result = result && !input.isGlobal && !input.name.starts_with("sfg_") &&
             input.type.find('x') == std::string::npos;
  }
  for (Port const& output : function.outputs) {
    result = result && output.type.find('x') == std::string::npos;
  }
  return result;
}

TEST(CompleteShaders, AnswerWhatTheReferencesSay) {
  if (isVulkanSkipped()) {
    GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
  }
  VulkanCompute compute;
  std::size_t tried = 0;
  for (Topic const& topic : {noiseTopic(), colorTopic(), brdfTopic()}) {
    for (FragmentProfile const& profile : profilesIn(topic.file)) {
      SCOPED_TRACE(describe(profile));
      Row const& row = *rowsFor(topic, profile).at(0);
      Function const function = collapsedFunction(profile, row);
      if (!readsOnlyTheBuffer(row, function)) {
        continue;
      }
      ++tried;
      std::vector<std::uint32_t> const spirv = compileDocument(graphDocument(profile, function), profile.lod);
      ElementLayout const in = layoutOf(spirv, "sfg_ComputeInput");
      ElementLayout const out = layoutOf(spirv, "sfg_ComputeOutput");
      std::vector<float> const samples = drawSamples(row.inputs, kSamples, row.fragment);
      std::vector<float> const outputs =
          compute.run(spirv, spread(samples, row, in), kSamples * out.stride, kSamples / kGroupSize);
      EXPECT_TRUE(agree(row, samples, gather(outputs, function, out)));
    }
  }
  EXPECT_GE(tried, 60u);
}

}  // namespace
}  // namespace numbers_test
