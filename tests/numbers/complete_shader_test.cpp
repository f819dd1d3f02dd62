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

#include "host/job/collapse_job.h"
#include "host/modules/shader_compiler.h"
#include "host/shader/shader_assembly.h"
#include "sfg/host/reflect.h"
#include "tests/numbers/agreement.h"
#include "tests/numbers/reference_brdf.h"
#include "tests/numbers/sampler.h"
#include "tests/numbers/vulkan_compute.h"
#include "tests/support/job_files.h"
#include "tolmsdk/unicode.h"

namespace numbers_test {
namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics;
using namespace TolmSDK::Graphics::sfg;

// Where the members of a structure that the shader shares with its host lie, in floats.
struct SharedLayout {
  std::size_t stride = 0;     // of a run-time array of it; 0 if there is none
  std::uint32_t binding = 0;  // of a constant buffer
  std::map<std::string, std::size_t> offsets;
};

// The layout of the structure of this name, as the module's decorations say; without members if there is
// none.
SharedLayout layoutOf(std::vector<std::uint32_t> const& spirv, std::string const& structure) {
  constexpr std::size_t kHeader = 5;
  std::uint32_t structId = 0;
  std::uint32_t pointerId = 0;
  std::map<std::uint32_t, std::string> names;       // member -> name
  std::map<std::uint32_t, std::size_t> offsets;     // member -> bytes
  std::map<std::uint32_t, std::size_t> strides;     // type -> bytes
  std::map<std::uint32_t, std::uint32_t> bindings;  // variable -> binding
  SharedLayout layout;
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
    } else if (operation == spv::OpDecorate && words[2] == spv::DecorationBinding) {
      bindings[words[1]] = words[3];
    } else if (operation == spv::OpTypeRuntimeArray && words[2] == structId) {
      layout.stride = strides.at(words[1]) / sizeof(float);
    } else if (operation == spv::OpTypePointer && words[3] == structId) {
      pointerId = words[1];
    } else if (operation == spv::OpVariable && words[1] == pointerId) {
      layout.binding = bindings.at(words[2]);
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

std::vector<std::uint32_t> words(std::string const& bytes) {
  std::vector<std::uint32_t> result(bytes.size() / sizeof(std::uint32_t));
  std::memcpy(result.data(), bytes.data(), result.size() * sizeof(std::uint32_t));
  return result;
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

class TemporaryFolder {
public:
  TemporaryFolder()
      : path_(std::filesystem::temp_directory_path() / ("sfg_numbers_" + std::to_string(getpid()))) {
    std::filesystem::create_directories(path_);
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;
  std::string path(std::string const& name) const { return (path_ / name).string(); }
  void write(std::string const& name, std::string const& content) const {
    std::ofstream(path(name)) << content;
  }

private:
  std::filesystem::path path_;
};

// A complete compute shader and the values its uniforms start with.
struct CompleteShader {
  std::vector<std::uint32_t> spirv;
  std::map<std::string, std::vector<float>> uniforms;
};

// Collapses and compiles the document. The include files are those of the library.
CompleteShader compileDocument(std::string const& document, host::JobFiles settings) {
  TemporaryFile const file(document);
  settings.graphFile = file.path();
  settings.libraryFolders = {"library"};
  settings.includeFolders = {"library"};
  host::CollapseJob job = host::makeJob(settings);
  job.run();
  host::AssembledShader assembled = host::assembleShader(job, host::ShaderStage::compute);
  CompleteShader complete;
  complete.spirv =
      words(host::compileShader(toUtf8(assembled.shader.getCompleteShader()), assembled.entryPoint,
                                host::ShaderStage::compute, host::ShaderTarget::spirv));
  for (std::size_t i = 0; i < job.result()->getNumUniforms(); ++i) {
    AParameter const& uniform = *job.result()->getUniform(i);
    std::vector<float>& values = complete.uniforms[toUtf8(uniform.getName())];
    for (std::size_t c = 0; c < uniform.getDefaultValue().size(); ++c) {
      values.push_back(static_cast<float>(uniform.getDefaultValue().get(c)));
    }
  }
  return complete;
}

// The named constant buffer filled with the values; those that have none are zero.
UniformBlock fillBlock(CompleteShader const& shader, std::string const& name,
                       std::map<std::string, std::vector<float>> const& values) {
  constexpr std::size_t kLargestBlock = 1024;
  SharedLayout const layout = layoutOf(shader.spirv, name);
  UniformBlock block{layout.binding, std::vector<float>(kLargestBlock)};
  for (auto const& [member, offset] : layout.offsets) {
    if (auto const found = values.find(member); found != values.end()) {
      std::copy(found->second.begin(), found->second.end(),
                block.values.begin() + static_cast<std::ptrdiff_t>(offset));
    }
  }
  return block;
}

// Spreads the samples to the elements of the input buffer; whole numbers become integers where the port is
// one.
std::vector<float> spread(std::vector<float> const& samples, Row const& row, SharedLayout const& layout) {
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
                          SharedLayout const& layout) {
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
      host::JobFiles settings;
      settings.surfaceLod = static_cast<float>(profile.lod);
      std::vector<std::uint32_t> const spirv =
          compileDocument(graphDocument(profile, function), settings).spirv;
      SharedLayout const in = layoutOf(spirv, "sfg_ComputeInput");
      SharedLayout const out = layoutOf(spirv, "sfg_ComputeOutput");
      std::vector<float> const samples = drawSamples(row.inputs, kSamples, row.fragment);
      std::vector<float> const outputs =
          compute.run(spirv, spread(samples, row, in), kSamples * out.stride, kSamples / kGroupSize);
      EXPECT_TRUE(agree(row, samples, gather(outputs, function, out)));
    }
  }
  EXPECT_GE(tried, 60u);
}

// The lights of environments/four_msl.json with the uniforms' values of lights.fraglib, at a point with a
// normal: directions to the light and irradiances on a surface that faces it.
struct Arrival {
  Vec3 direction;
  Vec3 irradiance;
  bool isAround = false;  // from all around: as a lamp along the normal, without a highlight of one
};

using UniformValues = std::map<std::string, std::vector<float>>;

double numberOf(UniformValues const& values, std::string const& name) {
  return static_cast<double>(values.at(name).at(0));
}

Vec3 vectorOf(UniformValues const& values, std::string const& name) {
  std::vector<float> const& v = values.at(name);
  return {static_cast<double>(v.at(0)), static_cast<double>(v.at(1)), static_cast<double>(v.at(2))};
}

Arrival lampAt(UniformValues const& values, std::string const& light, Vec3 point) {
  Vec3 const toLamp = vectorOf(values, "light_position" + light) - point;
  EXPECT_EQ(numberOf(values, "light_range" + light), 0.0) << "the reference knows no range";
  return {unit(toLamp), vectorOf(values, "light_color" + light) *
                            (numberOf(values, "light_intensity" + light) / dot(toLamp, toLamp))};
}

std::vector<Arrival> fourLights(UniformValues const& values, Vec3 point, Vec3 normal) {
  Arrival const sun{-unit(vectorOf(values, "light_axisSun")),
                    vectorOf(values, "light_colorSun") * numberOf(values, "light_intensitySun")};
  Vec3 const around =
      mix(vectorOf(values, "light_groundSky"), vectorOf(values, "light_skySky"), (1.0 + normal.y) / 2.0);
  Arrival torch = lampAt(values, "Torch", point);
  double const cosine = dot(-torch.direction, unit(vectorOf(values, "light_axisTorch")));
  double const inner = std::cos(numberOf(values, "light_innerTorch"));
  double const outer = std::cos(numberOf(values, "light_outerTorch"));
  double const t = clamp01((cosine - outer) / (inner - outer));
  torch.irradiance = torch.irradiance * (t * t * (3.0 - 2.0 * t));
  return {sun, {normal, around * kPi, true}, lampAt(values, "Lantern", point), torch};
}

TEST(CompleteShaders, RepeatTheBlockOfAMetaSlSurfaceForEachLight) {
  if (isVulkanSkipped()) {
    GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
  }
  std::string const document = R"({
    "inputs": [{"name": "diffuse", "type": "float3"}, {"name": "specular", "type": "float3"},
               {"name": "exponent", "type": "float"}, {"name": "ambient", "type": "float3"}],
    "outputs": [{"name": "result", "type": "float3", "node": "shade"}],
    "nodes": [{"name": "shade", "fragment": "mslPhongSurface", "inputs": {
      "diffuse": {"graphInput": "diffuse"}, "specular": {"graphInput": "specular"},
      "exponent": {"graphInput": "exponent"}, "ambient": {"graphInput": "ambient"}}}]})";
  profilesIn("metasl.fraglib");  // registers the include files
  host::JobFiles settings;
  settings.tool = host::CollapseTool::lightLoop;
  settings.environmentFile = "tests/numbers/environments/four_msl.json";
  CompleteShader const shader = compileDocument(document, settings);

  Vec3 const eye{5.0, 6.0, 7.0};
  std::vector<UniformBlock> const blocks = {
      fillBlock(shader, "sfg_Uniforms", shader.uniforms),
      fillBlock(shader, "sfg_StateUniforms", {{"sfg_eyePosition", {5.0f, 6.0f, 7.0f}}})};
  ASSERT_NE(blocks[0].binding, blocks[1].binding);

  Row row;
  row.fragment = "mslPhongSurface";
  row.inputs = {vector3("diffuse", 0, 1),
                vector3("specular", 0, 1),
                number("exponent", 1, 50),
                vector3("ambient", 0, 1),
                vector3("sfg_worldPosition", -1.5, 1.5),
                vector3("sfg_worldNormal", 0.2, 1)};
  row.tolerance = {0.02, 2e-3,
                   "a fit of the highlight of the sky to within 0.03, times a radiance of up to 0.4"};
  row.reference = [&](Sample const& in) {
    Vec3 const point = in.vec3(4);
    Vec3 const normal = unit(in.vec3(5));
    Vec3 color = in.vec3(3);
    for (Arrival const& light : fourLights(shader.uniforms, point, normal)) {
      double const cosine = std::max(dot(normal, light.direction), 0.0);
      Vec3 const toEye = unit(eye - point);
      double const highlight = light.isAround ? blinnAlbedo(in(2), std::max(dot(normal, toEye), 0.0)) / kPi
                                              : blinnLobe(normal, light.direction, toEye, in(2)) * cosine;
      color = color + in.vec3(0) * (splat(1.0) - in.vec3(1)) * light.irradiance * (cosine / kPi) +
              in.vec3(1) * light.irradiance * highlight;
    }
    return Result(color);
  };

  VulkanCompute compute;
  SharedLayout const in = layoutOf(shader.spirv, "sfg_ComputeInput");
  SharedLayout const out = layoutOf(shader.spirv, "sfg_ComputeOutput");
  std::vector<float> const samples = drawSamples(row.inputs, kSamples, row.fragment);
  std::vector<float> const outputs = compute.run(shader.spirv, spread(samples, row, in),
                                                 kSamples * out.stride, kSamples / kGroupSize, blocks);
  Function layout;
  layout.outputs = {{out.offsets.begin()->first, "float3"}};
  EXPECT_TRUE(agree(row, samples, gather(outputs, layout, out)));
}

// A fragment that writes every uniform it reads to outputs of its own.
constexpr char const* kEcho = R"json({"echo": {"language": ["dx11"],
  "predefine": ["struct Lamp { float3 color; float power; int counts[2]; float2x3 turn; };"],
  "implementation": [
  "void echo(float a, float2 b, float3 c, float4 d, bool e, int f, uint2 g, float2x2 m2, float3x3 m3, float4x4 m4, Lamp lamp, out float4 o0, out float4 o1, out float4 o2, out float4 o3, out float4 o4, out float3x3 o5, out float4x4 o6, out float4 o7, out float4 o8, out float4 o9)",
  "{", "o0 = float4(a, b, e ? 1.0 : 0.0);", "o1 = float4(c, float(f));", "o2 = d;",
  "o3 = float4(float(g.x), float(g.y), sfg_time, sfg_eyePosition.y);",
  "o4 = float4(m2[0], m2[1]);", "o5 = m3;", "o6 = m4;", "o7 = float4(lamp.color, lamp.power);",
  "o8 = float4(float(lamp.counts[0]), float(lamp.counts[1]), lamp.turn[0].xy);",
  "o9 = float4(lamp.turn[0].z, lamp.turn[1]);", "}"]}})json";

host::ValueSetting setting(std::string const& name, std::size_t count, double first) {
  host::ValueSetting made{name, {}};
  for (std::size_t i = 0; i < count; ++i) {
    made.numbers.push_back(first + static_cast<double>(i));
  }
  return made;
}

UniformBlock pack(host::ShaderInterface const& shader, std::string const& name,
                  std::vector<host::ValueSetting> const& settings) {
  for (host::InterfaceBuffer const& buffer : shader.buffers) {
    if (buffer.name == name) {
      std::vector<std::uint8_t> const bytes = host::packBuffer(buffer, settings);
      UniformBlock block{static_cast<std::uint32_t>(buffer.place.binding.value()),
                         std::vector<float>(bytes.size() / sizeof(float))};
      std::memcpy(block.values.data(), bytes.data(), bytes.size());
      return block;
    }
  }
  throw std::runtime_error("no buffer " + name);
}

TEST(CompleteShaders, ReadThePackedBuffers) {
  if (isVulkanSkipped()) {
    GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
  }
  std::string outputs;
  for (int i = 0; i < 10; ++i) {
    std::string const number = std::to_string(i);
    std::string const type = i == 5 ? "float3x3" : i == 6 ? "float4x4" : "float4";
    outputs += (i == 0 ? "" : ", ") + ("{\"name\": \"o" + number + "\", \"type\": \"" + type +
                                       "\", \"node\": \"n\", \"output\": \"o" + number + "\"}");
  }
  TemporaryFolder const folder;
  folder.write("echo.fraglib", kEcho);
  folder.write("graph.json", "{\"outputs\": [" + outputs +
                                 "], \"nodes\": [{\"name\": \"n\", \"fragment\": \"echo\", \"inputs\": {"
                                 "\"d\": {\"value\": [101, 102, 103, 104]}}}]}");
  host::JobFiles settings;
  settings.graphFile = folder.path("graph.json");
  settings.libraryFolders = {folder.path("")};
  host::CollapseJob job = host::makeJob(settings);
  job.run();
  host::AssembledShader const assembled =
      host::assembleShader(job, host::ShaderStage::compute, host::NameStyle::readable);
  std::vector<std::uint32_t> const spirv = host::compileToSpirv(
      toUtf8(assembled.shader.getCompleteShader()), assembled.entryPoint, host::ShaderStage::compute);
  host::ShaderInterface const shader = host::reflectShader(assembled, host::ShaderTarget::spirv);

  std::vector<UniformBlock> const blocks = {
      pack(shader, "sfg_Uniforms",
           {setting("n.a", 1, 1), setting("n.b", 2, 2), setting("n.c", 3, 4), setting("n.e", 1, 1),
            setting("n.f", 1, -7), setting("n.g", 2, 8), setting("n.m2", 4, 10), setting("n.m3", 9, 20),
            setting("n_m4", 16, 40)}),
      pack(shader, "sfg_Uniforms_n_lamp",
           {setting("n.lamp.color", 3, 60), setting("n.lamp.power", 1, 63), setting("n.lamp.counts", 2, 64),
            setting("n.lamp.turn", 6, 66)}),
      pack(shader, "sfg_StateUniforms", {setting("sfg_time", 1, 80), setting("sfg_eyePosition", 3, 81)})};
  host::InterfaceBuffer const& out = shader.buffers.back();
  VulkanCompute compute;
  std::vector<float> const found = compute.run(spirv, {}, kGroupSize * out.size / sizeof(float), 1, blocks);
  std::vector<float> const expected = {1,   2,   3,   1,                                   // o0
                                       4,   5,   6,   -7,                                  // o1
                                       101, 102, 103, 104,                                 // o2: the graph's
                                       8,   9,   80,  82,                                  // o3
                                       10,  11,  12,  13,                                  // o4
                                       20,  21,  22,  0,   23, 24, 25, 0,  26, 27, 28, 0,  // o5
                                       40,  41,  42,  43,  44, 45, 46, 47, 48, 49, 50, 51,
                                       52,  53,  54,  55,   // o6
                                       60,  61,  62,  63,   // o7
                                       64,  65,  66,  67,   // o8
                                       68,  69,  70,  71};  // o9
  ASSERT_EQ(out.size, expected.size() * sizeof(float));
  EXPECT_EQ(std::vector<float>(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(expected.size())),
            expected);
}

// Texture coordinates jump at the seam of a sphere; positions do not.
TEST(CompleteShaders, OfCloudsDependOnThePositionAlone) {
  std::ifstream const file("examples/materials/noise_gradient.json");
  std::stringstream document;
  document << file.rdbuf();
  profilesIn("noise.fraglib");  // registers the include files
  std::map<std::string, std::size_t> const inputs =
      layoutOf(compileDocument(document.str(), {}).spirv, "sfg_ComputeInput").offsets;
  ASSERT_EQ(inputs.size(), 1u);
  EXPECT_EQ(inputs.begin()->first, "sfg_objectPosition");
}

}  // namespace
}  // namespace numbers_test
