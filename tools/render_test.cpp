// Pictures that the command draws, read back.

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>

#include "pictures/picture.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

using pictures::Picture;
using Bytes = std::vector<int>;

class RenderTest : public CommandTest {
protected:
  void SetUp() override {
    // Drivers and their compiler keep some memory to the end, which is no leak of the program.
    setenv("ASAN_OPTIONS", "detect_leaks=0", 0);
    setenv("XDG_CACHE_HOME", path("cache").c_str(), 1);
    const char* const skip = std::getenv("SFG_SKIP_VULKAN_TESTS");
    if (skip != nullptr && *skip != '\0' && std::string_view(skip) != "0") GTEST_SKIP();
  }

  /// A node of a fragment with these inputs (JSON) behind a fragment that makes a pixel of its colour.
  void writeGraph(const std::string& fragment, const std::string& inputs,
                  const std::string& more = "") const {
    write("graph.json", R"({ "nodes": [ { "name": "a", "fragment": ")" + fragment + R"(", "inputs": {)" +
                            inputs +
                            R"(} }, { "name": "pixel", "fragment": "outputColor", "inputs": {
      "color": { "node": "a" } } } ], "outputs": [ { "name": "color", "type": "float4", "node": "pixel" } ])" +
                            more + " }");
  }
  CommandRun render(const std::string& arguments) const {
    const std::string library = repository("library");
    std::string all =
        "render graph.json -L " + library + " -I " + library + " --no-standard-library " + arguments;
    if (arguments.find("--size") == std::string::npos) all += " --size 64";
    if (arguments.find("--samples") == std::string::npos) all += " --samples 1";
    return run(all);
  }
  Picture picture(const std::string& name) const { return pictures::readPicture(path(name)); }
  /// As a PNG stores it.
  static Bytes at(const Picture& picture, std::size_t x, std::size_t y) {
    Bytes bytes;
    for (std::size_t i = 0; i < 4; ++i)
      bytes.push_back(static_cast<int>(std::lround(255 * picture.at(x, y)[i])));
    return bytes;
  }
  void expectError(const std::string& arguments, const std::string& error) const {
    const CommandRun drawn = render(arguments);
    EXPECT_EQ(drawn.status, 2) << arguments;
    EXPECT_EQ(drawn.err, (error.find(": error: ") == error.npos ? "sfg: error: " : "") + error + "\n")
        << arguments;
    EXPECT_FALSE(exists("a.png")) << arguments;
  }

  static constexpr const char* kTint = R"("a": { "value": [0.5, 0.25, 1.0] }, "factor": { "value": 1.0 })";
};

TEST_F(RenderTest, ShowsAShapeOverABackground) {
  writeGraph("scaleFloat3", kTint);
  const CommandRun drawn = render("-o a.png --background 0,1,0");
  EXPECT_EQ(drawn.err, "");
  EXPECT_EQ(drawn.status, 0);
  EXPECT_EQ(drawn.out, "");
  const Picture seen = picture("a.png");
  ASSERT_EQ(seen.width, 64u);
  ASSERT_EQ(seen.height, 64u);
  EXPECT_EQ(at(seen, 32, 32), (Bytes{188, 137, 255, 255}));
  EXPECT_EQ(at(seen, 1, 1), (Bytes{0, 255, 0, 255}));

  EXPECT_EQ(render("-o b.png --background transparent --size 32x16 --set a.factor=0.5").status, 0);
  const Picture other = picture("b.png");
  ASSERT_EQ(other.width, 32u);
  ASSERT_EQ(other.height, 16u);
  EXPECT_EQ(at(other, 16, 8), (Bytes{137, 99, 188, 255}));
  EXPECT_EQ(at(other, 1, 8), (Bytes{0, 0, 0, 0}));
}

TEST_F(RenderTest, SamplesMeetInLinearLight) {
  writeGraph("scaleFloat3", R"("a": { "value": [1.0, 1.0, 1.0] }, "factor": { "value": 1.0 })");
  EXPECT_EQ(render("-o a.exr --samples 16 --background 0,0,0").status, 0);
  const Picture seen = picture("a.exr");
  std::size_t between = 0;
  for (std::size_t x = 0; x < 64; ++x) {
    const float value = seen.at(x, 32)[0] * 16;
    EXPECT_NEAR(value, std::round(value), 0.01) << x;
    if (value > 0.5f && value < 15.5f) ++between;
  }
  EXPECT_GE(between, 1u);
  EXPECT_EQ(seen.at(32, 32)[0], 1);
}

TEST_F(RenderTest, WritesColorsAboveOne) {
  writeGraph("scaleFloat3", R"("a": { "value": [5.0, 0.5, 0.25] }, "factor": { "value": 2.0 })");
  EXPECT_EQ(render("-o a.exr").status, 0);
  EXPECT_EQ(picture("a.exr").at(32, 32)[0], 10);
  EXPECT_EQ(render("-o a.hdr").status, 0);
  EXPECT_NEAR(picture("a.hdr").at(32, 32)[0], 10, 0.1);
}

/// A post-process fragment that encodes does not make the picture brighter.
TEST_F(RenderTest, KnowsWhenTheGraphEncodesColors) {
  writeGraph("scaleFloat3", kTint);
  EXPECT_EQ(render("-o a.png").status, 0);
  writeGraph("scaleFloat3", kTint, R"(, "postprocess": ["postSrgb"])");
  EXPECT_EQ(render("-o b.png").status, 0);
  EXPECT_EQ(at(picture("a.png"), 32, 32), at(picture("b.png"), 32, 32));
}

/// Red, green / blue, white: seen from outside as the file has it, decoded for ports of linear colours.
TEST_F(RenderTest, TexturesLieUprightAndAreReadByTheirSpace) {
  constexpr float kQuarters[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.5f, 0.5f, 0.5f}};
  Picture image(16, 16);
  image.isEncoded = true;
  for (std::size_t i = 0; i < 256; ++i) {
    const auto& color = kQuarters[i / 128 * 2 + i % 16 / 8];
    std::copy(std::begin(color), std::end(color), &image.texels[4 * i]);
    image.texels[4 * i + 3] = 1;
  }
  write("image.png", pictures::writePicture(image, pictures::PictureFormat::png));
  for (const char* fragment : {"sampleTexture2D", "sampleTextureSrgb2D"}) {
    writeGraph(fragment, "");
    const CommandRun drawn = render("-o a.png --shape plane --texture a.image=" + path("image.png"));
    EXPECT_EQ(drawn.err, "");
    const Picture seen = picture("a.png");
    EXPECT_EQ(at(seen, 22, 22), (Bytes{255, 0, 0, 255})) << fragment;
    EXPECT_EQ(at(seen, 42, 22), (Bytes{0, 255, 0, 255})) << fragment;
    EXPECT_EQ(at(seen, 22, 42), (Bytes{0, 0, 255, 255})) << fragment;
    EXPECT_EQ(at(seen, 42, 42), (Bytes{128, 128, 128, 255})) << fragment;
  }
  const CommandRun without = render("-o b.png --shape plane");
  EXPECT_EQ(without.status, 0);
  EXPECT_EQ(
      without.err,
      "sfg: note: texture `a.image` has no file (`--texture`): it is a coloured board [unconnected-input]\n");
}

TEST_F(RenderTest, CamerasGoRoundTheShape) {
  writeGraph("objectPosition", "");
  EXPECT_EQ(render("-o a.exr --shape cube --camera 90,0,4").status, 0);
  const Picture right = picture("a.exr");
  EXPECT_NEAR(right.at(32, 32)[0], 0.57, 0.01);
  EXPECT_LT(right.at(38, 32)[2], right.at(26, 32)[2]);
  EXPECT_EQ(render("-o a.exr --shape cube --camera 0,90,4").status, 0);
  EXPECT_NEAR(picture("a.exr").at(32, 32)[1], 0.57, 0.01);
}

TEST_F(RenderTest, ShowsWhatANodeComputes) {
  write("graph.json", R"({ "nodes": [ { "name": "where", "fragment": "objectPosition" },
    { "name": "far", "fragment": "vectorLength", "inputs": { "a": { "node": "where" } } },
    { "name": "pixel", "fragment": "outputColor", "inputs": { "color": { "node": "where" } } } ],
    "outputs": [ { "name": "color", "type": "float4", "node": "pixel" } ] })");
  const CommandRun drawn = render("-o shown.png --shape plane --node far");
  EXPECT_EQ(drawn.status, 0);
  EXPECT_EQ(drawn.err, "");
  EXPECT_THAT(drawn.out, testing::MatchesRegex("far.result: float, from 0\\.0[0-9]+ to 0\\.9[0-9]+\n"));
  const Picture seen = picture("shown.png");
  EXPECT_LT(seen.at(32, 32)[0], 0.02f);
  EXPECT_GT(seen.at(13, 13)[0], 0.9f);
  EXPECT_EQ(seen.at(20, 20)[0], seen.at(20, 20)[2]);
  // A vector: -1 is black, 1 is white.
  EXPECT_THAT(render("-o b.png --shape plane --node where.result").out,
              testing::StartsWith("where.result: float3, from -0.6"));
  EXPECT_NEAR(picture("b.png").at(32, 32)[2], 0.5f, 0.01f);
  expectError("-o c.png --node fat",
              "`--node`: the graph has no node `fat`; did you mean `far`? [wrong-usage]");
  expectError("-o c.png --node far.resolt",
              "`--node`: node `far` has no output `resolt`; did you mean `result`? [wrong-usage]");
}

TEST_F(RenderTest, ComparesWithAnotherPicture) {
  writeGraph("scaleFloat3", kTint);
  EXPECT_EQ(render("-o a.png").status, 0);
  const CommandRun same = render("-o b.png --compare " + path("a.png"));
  EXPECT_EQ(same.err, "");
  EXPECT_EQ(same.out, "differences: mean 0, root mean square 0, greatest 0; 0 % of the numbers differ\n");
  const CommandRun other = render("-o b.png --set a.a=0.5,0.25,0 --compare " + path("a.png"));
  EXPECT_THAT(other.out, testing::HasSubstr("greatest 1; "));
  const Picture difference = picture("b-difference.png");
  EXPECT_EQ(at(difference, 32, 32), (Bytes{0, 0, 255, 255}));
  EXPECT_EQ(at(difference, 1, 1), (Bytes{0, 0, 0, 255}));
  EXPECT_EQ(render("-o b.png --size 32 --compare " + path("a.png")).err,
            path("a.png") + ": error: is a picture of 64x64, not of 32x32 [wrong-value]\n");
}

TEST_F(RenderTest, ComparesLinearNumbersWithoutLimits) {
  writeGraph("scaleFloat3", kTint);
  EXPECT_EQ(render("-o a.exr --set a.factor=4").status, 0);
  // Both are white where they are clamped.
  const CommandRun far = render("-o b.exr --set a.factor=8 --compare " + path("a.exr"));
  EXPECT_THAT(far.out, testing::HasSubstr("greatest 4; "));
  EXPECT_EQ(picture("b-difference.exr").at(32, 32)[2], 4);
  EXPECT_THAT(render("-o b.png --set a.factor=8 --compare " + path("a.exr")).out,
              testing::HasSubstr("greatest 0; "));
}

TEST_F(RenderTest, ComparesTheFirstOfAnAnimation) {
  writeGraph("scaleFloat3", kTint);
  EXPECT_EQ(render("-o a.png").status, 0);
  EXPECT_THAT(render("-o b.apng --turntable 2 --compare " + path("a.png")).out,
              testing::StartsWith("differences: mean 0, "));
  EXPECT_TRUE(exists("b-difference.apng"));
}

TEST_F(RenderTest, KeepsWhatItReads) {
  writeGraph("sampleTexture2D", "");
  Picture red(2, 2);
  write("red.png", pictures::writePicture(red, pictures::PictureFormat::png));
  write("red-0.png", read("red.png"));
  write("red-difference.png", read("red.png"));
  const std::string before = read("red.png");
  const std::string refusal = ": error: is read by this command; write to another file [cannot-write]\n";
  EXPECT_EQ(render("-o red.png --compare red.png").err, "red.png" + refusal);
  EXPECT_EQ(render("-o red.png --texture a.image=red.png").err, "red.png" + refusal);
  EXPECT_EQ(render("-o red.png --compare red-difference.png").err, "red-difference.png" + refusal);
  EXPECT_EQ(render("-o red.png --turntable 2 --texture a.image=red-0.png").err, "red-0.png" + refusal);
  EXPECT_EQ(read("red.png"), before);
}

/// Long before the picture is done.
TEST_F(RenderTest, ChecksFilesBeforeItDraws) {
  writeGraph("unknown", "");
  expectError("-o gone/a.png",
              "gone/a.png: error: cannot be written: No such file or directory [cannot-write]");
  expectError("-o a.png --compare gone.png",
              "`--compare`: cannot read `gone.png`: there is no such file, or it may not be read "
              "[wrong-usage]");
}

/// Brightness runs with the seconds; what does not read them stays.
TEST_F(RenderTest, ShowsAMoment) {
  writeGraph("scaleFloat3", R"("a": { "value": [1.0, 1.0, 1.0] }, "factor": { "node": "clock" } }
    }, { "name": "clock", "fragment": "sceneTime", "inputs": { "speed": { "value": 0.5 } )");
  for (const auto& [seconds, expected] : {std::pair("0", 0.0f), {"1", 0.5f}, {"3", 1.5f}}) {
    const CommandRun drawn = render("-o a.exr --shape plane --time " + std::string(seconds));
    EXPECT_EQ(drawn.err, "");
    EXPECT_NEAR(picture("a.exr").at(32, 32)[0], expected, 0.001f) << seconds;
  }
  writeGraph("scaleFloat3", kTint);
  EXPECT_EQ(render("-o a.png --time 0").status, 0);
  EXPECT_THAT(render("-o b.png --time 7 --compare " + path("a.png")).out, testing::HasSubstr("greatest 0;"));
}

/// Colours, nothing, and the surroundings, of which a plane hides the middle.
TEST_F(RenderTest, ShowsEveryBackground) {
  Picture around(64, 32);
  for (std::size_t i = 0; i < around.texels.size(); i += 4) {
    around.texels[i] = 0.25f;
    around.texels[i + 1] = 3.0f;
    around.texels[i + 3] = 1;
  }
  write("around.hdr", pictures::writePicture(around, pictures::PictureFormat::hdr));
  write("around.json", R"({ "image": "around.hdr" })");
  writeGraph("scaleFloat3", kTint);
  const CommandRun drawn = render("-o a.exr --background environment --environment " + path("around.json"));
  EXPECT_EQ(drawn.err, "");
  EXPECT_NEAR(picture("a.exr").at(1, 1)[0], 0.25f, 0.01f);
  EXPECT_NEAR(picture("a.exr").at(1, 1)[1], 3.0f, 0.05f);
  EXPECT_EQ(picture("a.exr").at(32, 32)[0], 0.5f);
  EXPECT_EQ(render("-o b.png --background environment --environment " + path("around.json")).status, 0);
  EXPECT_EQ(at(picture("b.png"), 1, 1), (Bytes{137, 255, 0, 255}));
  EXPECT_EQ(render("-o c.exr --background 0.5,0.25,2").status, 0);
  EXPECT_EQ(picture("c.exr").at(1, 1)[0], 0.5f);
  EXPECT_EQ(picture("c.exr").at(1, 1)[2], 2.0f);
  EXPECT_EQ(render("-o d.exr --background transparent").status, 0);
  EXPECT_EQ(picture("d.exr").at(1, 1)[3], 0.0f);
  EXPECT_EQ(picture("d.exr").at(32, 32)[3], 1.0f);
  EXPECT_EQ(render("-o e.exr --background nowhere").status, 2);
}

/// 16 x 16 points: the left half 200, 40, 20, the right one 30, 90, 180.
TEST_F(RenderTest, ReadsJpegTextures) {
  writeGraph("sampleTexture2D", "");
  const CommandRun drawn =
      render("-o a.png --shape plane --texture a.image=" + repository("tests/pictures/two_colors.jpg"));
  EXPECT_EQ(drawn.err, "");
  const Picture seen = picture("a.png");
  // Colours are encoded as sRGB and come out so; the compression is off by a few steps.
  EXPECT_NEAR(seen.at(22, 32)[0], 200.0f / 255, 0.03f);
  EXPECT_NEAR(seen.at(22, 32)[1], 40.0f / 255, 0.03f);
  EXPECT_NEAR(seen.at(42, 32)[0], 30.0f / 255, 0.03f);
  EXPECT_NEAR(seen.at(42, 32)[2], 180.0f / 255, 0.03f);
}

/// One triangle that fills the lower left half of a square, with its numbers in the document itself.
TEST_F(RenderTest, DrawsGltfShapes) {
  std::string bytes;
  const auto add = [&bytes](std::initializer_list<float> numbers) {
    for (const float number : numbers) bytes.append(reinterpret_cast<const char*>(&number), sizeof(number));
  };
  add({-1, -1, 0, 1, -1, 0, -1, 1, 0});
  add({0, 0, 1, 0, 0, 1, 0, 0, 1});
  write("triangle.bin", bytes);
  write("triangle.gltf", R"({ "asset": { "version": "2.0" }, "scene": 0, "scenes": [ { "nodes": [ 0 ] } ],
    "nodes": [ { "mesh": 0 } ],
    "meshes": [ { "primitives": [ { "attributes": { "POSITION": 0, "NORMAL": 1 } } ] } ],
    "accessors": [ { "bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3",
      "min": [ -1, -1, 0 ], "max": [ 1, 1, 0 ] },
      { "bufferView": 1, "componentType": 5126, "count": 3, "type": "VEC3" } ],
    "bufferViews": [ { "buffer": 0, "byteLength": 36 }, { "buffer": 0, "byteOffset": 36, "byteLength": 36 } ],
    "buffers": [ { "uri": "triangle.bin", "byteLength": 72 } ] })");
  writeGraph("objectNormal", "");
  const CommandRun drawn =
      render("-o a.exr --background 9,9,9 --camera 0,0,4 --shape " + path("triangle.gltf"));
  EXPECT_EQ(drawn.err, "");
  ASSERT_EQ(drawn.status, 0);
  const Picture seen = picture("a.exr");
  EXPECT_NEAR(seen.at(26, 38)[2], 1.0f, 0.001f);
  EXPECT_NEAR(seen.at(26, 38)[0], 0.0f, 0.001f);
  EXPECT_EQ(seen.at(40, 24)[0], 9.0f);
}

/// An output that lets colours through as they come leaves it to the graph whether they are encoded; a MetaSL
/// surface takes the light of the surroundings.
TEST_F(RenderTest, OutputsThatChangeNothingLeaveTheEncodingToTheGraph) {
  write("lamp.json", R"({ "lights": [], "output": "framebuffer" })");
  writeGraph("scaleFloat3", kTint, R"(, "postprocess": ["postSrgb"])");
  EXPECT_EQ(render("-o a.png").status, 0);
  EXPECT_EQ(render("-o b.png --environment " + path("lamp.json")).status, 0);
  EXPECT_EQ(at(picture("b.png"), 32, 32), at(picture("a.png"), 32, 32));
  writeGraph("scaleFloat3", kTint);
  EXPECT_EQ(render("-o c.png --environment " + path("lamp.json")).status, 0);
  EXPECT_EQ(at(picture("c.png"), 32, 32), at(picture("a.png"), 32, 32));
}

/// The output fragment of an environment is no part of the shader, a node that encodes is.
TEST_F(RenderTest, KnowsWhatOfTheEncodingIsDrawn) {
  writeGraph("scaleFloat3", kTint);
  EXPECT_EQ(render("-o a.png").status, 0);
  write("screen.json", R"({ "lights": [], "output": "postSrgb" })");
  EXPECT_EQ(render("-o b.png --environment " + path("screen.json")).status, 0);
  EXPECT_EQ(at(picture("b.png"), 32, 32), at(picture("a.png"), 32, 32));
  write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ], "nodes": [
    { "name": "a", "fragment": "linearToSrgb", "inputs": { "color": { "value": [0.5, 0.5, 0.5] } } } ] })");
  EXPECT_EQ(render("-o c.png").status, 0);
  EXPECT_EQ(at(picture("c.png"), 32, 32), (Bytes{188, 188, 188, 255}));
}

TEST_F(RenderTest, RefusesAnImageThatIsNoNameAtItsPlace) {
  writeGraph("scaleFloat3", kTint);
  write("scene.json", "{ \"lights\": [],\n  \"image\": 5 }");
  const CommandRun drawn = render("-o a.png --environment " + path("scene.json"));
  EXPECT_EQ(drawn.status, 2);
  EXPECT_THAT(drawn.err,
              testing::HasSubstr(
                  "scene.json:2:12: error: `image` must be a string that is not empty [wrong-kind]\n"));
}

TEST_F(RenderTest, SurroundingsLightMetaSl) {
  Picture around(64, 32);
  std::fill(around.texels.begin(), around.texels.end(), 2.0f);
  write("around.hdr", pictures::writePicture(around, pictures::PictureFormat::hdr));
  write("around.json", R"({ "image": "around.hdr" })");
  writeGraph("mslLambertSurface", R"("diffuse": { "value": [0.5, 0.25, 1.0] })");
  const CommandRun drawn = render("-o a.exr --environment " + path("around.json"));
  EXPECT_EQ(drawn.err, "");
  EXPECT_NEAR(picture("a.exr").at(32, 32)[0], 1.0f, 0.03f);
  EXPECT_NEAR(picture("a.exr").at(32, 32)[1], 0.5f, 0.03f);
}

/// Of one colour everywhere, or the mean of a picture, whatever is moved and blended.
TEST_F(RenderTest, TextureFragmentsKeepColors) {
  Picture plain(16, 16);
  Picture board(16, 16);
  for (std::size_t i = 0; i < 256; ++i) {
    const bool isBright = (i / 16 + i) % 2 == 0;
    const float colors[4] = {0.5f, 0.25f, 0.75f, 1};
    std::copy(std::begin(colors), std::end(colors), &plain.texels[4 * i]);
    for (std::size_t k = 0; k < 3; ++k) board.texels[4 * i + k] = isBright ? 1.0f : 0.0f;
    board.texels[4 * i + 3] = 1;
  }
  write("plain.exr", pictures::writePicture(plain, pictures::PictureFormat::exr));
  write("board.exr", pictures::writePicture(board, pictures::PictureFormat::exr));
  for (const char* fragment : {"hexTiledTexture", "sampleTexture2D", "triplanarTexture", "boxTexture",
                               "flowTexture", "sampleTextureLevel2D"}) {
    writeGraph(fragment, "");
    const CommandRun drawn = render("-o a.exr --texture a.image=" + path("plain.exr"));
    EXPECT_EQ(drawn.err, "") << fragment;
    for (const std::size_t at : {20u, 32u, 40u}) {
      EXPECT_NEAR(picture("a.exr").at(at, 32)[0], 0.5f, 0.002f) << fragment;
      EXPECT_NEAR(picture("a.exr").at(at, 32)[2], 0.75f, 0.002f) << fragment;
    }
  }
  // Blended evenly, a board stays grey on average; a repetition is not seen.
  writeGraph("hexTiledTexture", R"("contrast": { "value": 0.0 }, "sharpness": { "value": 1.0 })");
  EXPECT_EQ(render("-o a.exr --shape plane --samples 16 --texture a.image=" + path("board.exr")).status, 0);
  const Picture tiled = picture("a.exr");
  double sum = 0;
  for (std::size_t i = 0; i < 400; ++i) sum += static_cast<double>(tiled.at(22 + i % 20, 22 + i / 20)[0]);
  EXPECT_NEAR(sum / 400, 0.5, 0.03);
}

TEST_F(RenderTest, TurnsTheShape) {
  writeGraph("worldNormal", "");
  EXPECT_EQ(render("-o a.png --shape plane --turntable 12").status, 0);
  EXPECT_FALSE(exists("a.png"));
  EXPECT_FALSE(exists("a-12.png"));
  EXPECT_TRUE(exists("a-11.png"));
  // Three twelfths show the edge of a plane.
  EXPECT_EQ(at(picture("a-00.png"), 32, 32), (Bytes{0, 0, 255, 255}));
  EXPECT_EQ(at(picture("a-03.png"), 20, 32), at(picture("a-03.png"), 1, 1));
  EXPECT_EQ(render("-o a.apng --shape plane --turntable 3").status, 0);
  EXPECT_THAT(read("a.apng"), testing::HasSubstr("acTL"));
}

TEST_F(RenderTest, MetalsMirrorTheImageOfTheEnvironment) {
  Picture white(64, 32);
  std::fill(white.texels.begin(), white.texels.end(), 2.0f);
  write("white.hdr", pictures::writePicture(white, pictures::PictureFormat::hdr));
  write("white.json", R"({ "image": "white.hdr" })");
  writeGraph("ggxSurface", R"("albedo": { "value": [1.0, 1.0, 1.0] }, "metallic": { "value": 1.0 },
    "roughness": { "value": 0.2 })");
  const CommandRun drawn = render("-o a.exr --environment " + path("white.json"));
  EXPECT_EQ(drawn.err, "");
  EXPECT_NEAR(picture("a.exr").at(32, 32)[1], 2, 0.05);
  EXPECT_NEAR(picture("a.exr").at(20, 40)[1], 2, 0.05);
  // A missing image is named, also when lights are given.
  write("white.json", R"({ "image": "gone.hdr", "lights": [] })");
  const std::string gone = path("gone.hdr");
  expectError("-o a.png --environment " + path("white.json"),
              "the environment's image: cannot read `" + gone +
                  "`: there is no such file, or it may not be read [wrong-usage]");
  // The studio has a lamp on the left.
  EXPECT_EQ(render("-o b.exr --set a.roughness=0").status, 0);
  float left = 0;
  float right = 0;
  const Picture studio = picture("b.exr");
  for (std::size_t y = 0; y < 64; ++y) {
    for (std::size_t x = 0; x < 32; ++x) {
      left = std::max(left, studio.at(x, y)[1]);
      right = std::max(right, studio.at(x + 32, y)[1]);
    }
  }
  EXPECT_GT(left, 5);
  EXPECT_LT(right, left);
}

TEST_F(RenderTest, NamesWhatItCannotUse) {
  writeGraph("sampleTexture2D", "");
  expectError("", "a picture needs a file: `-o NAME.png` [wrong-usage]");
  expectError("-o a.bmp",
              "`-o a.bmp`: expected a name that ends in `.png`, `.apng`, `.exr` or `.hdr` [wrong-usage]");
  expectError("-o a.png --size 0", "`--size 0`: expected `N` or `WxH`, each from 1 to 8192 [wrong-usage]");
  expectError("-o a.png --shape shpere", "there is no shape `shpere`; did you mean `sphere`? [wrong-usage]");
  expectError("-o a.png --shape gone.obj", "gone.obj: error: there is no such file [unreadable-file]");
  write("points.obj", "# an object of points only\nv 0 0 0\nv 1 0 0\n");
  const CommandRun points = render("-o a.png --shape points.obj");
  EXPECT_EQ(points.status, 2);
  EXPECT_THAT(points.err, testing::StartsWith("sfg: error: `--shape`: cannot read `points.obj`: "));
  expectError("-o a.png --time nan", "`--time`: expected a finite number [wrong-usage]");
  expectError("-o a.png --camera 3",
              "`--camera 3`: expected `AZIMUTH,ELEVATION[,DISTANCE[,ANGLE]]`: an elevation from "
              "-90 to 90, a distance above 0, an angle between 0 and 170 [wrong-usage]");
  expectError(
      "-o a.png --background red",
      "`--background red`: expected `R,G,B`, `R,G,B,A`, `transparent` or `environment` [wrong-usage]");
  expectError("-o a.png --uv-scale x", "`--uv-scale x`: expected one number, or two [wrong-usage]");
  expectError("-o a.png --texture x", "`--texture x`: expected `NAME=FILE` [wrong-usage]");
  expectError("-o a.png --texture a.imge=b.png",
              "the shader has no texture `a.imge`; did you mean `a.image`? [wrong-usage]");
  expectError("-o a.png --texture a.image=gone.png", "`--texture a.image`: cannot read `gone.png`: there is "
                                                     "no such file, or it may not be read [wrong-usage]");
  const CommandRun device = render("-o a.png --device nothing-of-the-kind");
  EXPECT_EQ(device.status, 2);
  EXPECT_THAT(device.err,
              testing::StartsWith("sfg: error: no device has `nothing-of-the-kind` in its name (there is "));
  writeGraph("scaleFloat3", kTint);
  expectError("-o a.png --set a.facter=2",
              "the shader has no value `a.facter`; did you mean `a.factor`? [bad-setting]");
  const CommandRun count = render("-o a.png --set a.factor=1,2");
  EXPECT_EQ(count.status, 2);
  EXPECT_THAT(count.err, testing::HasSubstr("[bad-setting]"));
}

TEST_F(RenderTest, ListsDevices) {
  const CommandRun listed = run("render --list-devices");
  EXPECT_EQ(listed.status, 0);
  EXPECT_EQ(listed.err, "");
  EXPECT_NE(listed.out, "");
  writeGraph("scaleFloat3", kTint);
  const std::string name = listed.out.substr(0, listed.out.find(' '));
  EXPECT_EQ(render("-o a.png --device " + name).status, 0);
  EXPECT_EQ(run("render -o a.png").err, "sfg: error: `GRAPH` is required [wrong-usage]\n");
}

TEST_F(RenderTest, DrawingsOfGraphsShowTheirNodes) {
  writeGraph("scaleFloat3", kTint);
  const std::string library = repository("library");
  const std::string graph =
      "graph graph.json --pictures -L " + library + " --no-standard-library -I " + library;
  const CommandRun drawn = run(graph + " -o a.svg");
  EXPECT_EQ(drawn.err, "");
  EXPECT_EQ(drawn.status, 0);
  const std::string svg = read("a.svg");
  std::size_t count = 0;
  for (std::size_t at = svg.find("\"data:image/png;base64,iVBORw0KGgo"); at != svg.npos;
       at = svg.find("\"data:image/png;base64,iVBORw0KGgo", at + 1))
    ++count;
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(svg.find(".png"), svg.npos);
  EXPECT_EQ(run(graph + " -o a.dot").status, 2);
  EXPECT_THAT(run(graph).err, testing::HasSubstr("`--pictures` needs an SVG: `-o NAME.svg`"));
}

/// A site shows what varies: by itself, or over the places that it is given.
TEST_F(RenderTest, SitesShowWhatVaries) {
  write("lib/a.fraglib", R"json({
  "ramp": { "ports": { "result": { "kind": "factor" } }, "profiles": [
    { "name": "default", "lod": 100, "language": ["dx11"],
      "implementation": [ "void ramp(out float result)", "{", "result = sfg_texCoord0.x;", "}" ] },
    { "name": "default", "lod": 0, "language": ["dx11"],
      "implementation": [ "void ramp(out float result)", "{", "result = 1 - sfg_texCoord0.x;", "}" ] } ] },
  "fed": { "ports": { "p": { "kind": "uv", "value": [0, 0] } }, "language": ["dx11"],
    "implementation": [ "void fed(float2 p, out float result)", "{", "result = p.y;", "}" ] },
  "one": { "language": ["dx11"], "implementation": [ "void one(out float result)", "{", "result = 1;", "}" ] }
})json");
  write("graphs/full.json", R"({ "nodes": [ { "name": "n", "fragment": "ramp" } ],
    "outputs": [ { "name": "color", "type": "float", "node": "n" } ] })");
  const CommandRun written =
      run("docs -L lib --no-standard-library -o site --size 16 --examples graphs --environment sky");
  EXPECT_EQ(written.err, "");
  EXPECT_EQ(written.status, 0);
  const auto middle = [&](const char* name, std::size_t x, std::size_t y) {
    return at(picture(name), x, y)[0];
  };
  EXPECT_LT(middle("site/pictures/ramp-100.png", 2, 8), 60);
  EXPECT_GT(middle("site/pictures/ramp-100.png", 13, 8), 195);
  EXPECT_GT(middle("site/pictures/ramp-0.png", 2, 8), 195);
  EXPECT_LT(middle("site/pictures/fed-100.png", 8, 2), 60);
  EXPECT_GT(middle("site/pictures/fed-100.png", 8, 13), 195);
  EXPECT_FALSE(exists("site/pictures/one-100.png"));
  EXPECT_EQ(at(picture("site/pictures/example-full-sky.png"), 0, 0), (Bytes{0, 0, 0, 0}));
  EXPECT_NE(read("site/fragments/ramp.html").find("<figcaption>level 0</figcaption>"), std::string::npos);
  EXPECT_NE(read("site/gallery.html").find("pictures/example-full-sky.png"), std::string::npos);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
