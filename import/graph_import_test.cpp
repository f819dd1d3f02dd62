#include "import/graph_import.h"

#include <gtest/gtest.h>

#include "import/import_fixture.h"

namespace TolmSDK::Graphics::sfg::materialx {
namespace {

std::string document(const std::string& inside, const std::string& attributes = "version=\"1.39\"") {
  return "<?xml version=\"1.0\"?>\n<materialx " + attributes + ">\n" + inside + "</materialx>\n";
}

std::string graph(const std::string& inside) {
  return document("<nodegraph name=\"g\">\n" + inside + "</nodegraph>\n");
}

TEST(GraphImport, WiresNodesAndGivesDefaultValues) {
  EXPECT_EQ(
      ImportFixture().import(graph("<constant name=\"c\" type=\"color3\">"
                                   "<input name=\"value\" type=\"color3\" value=\"1, 0.5,0\"/></constant>\n"
                                   "<mix name=\"m\" type=\"color3\">\n"
                                   "<input name=\"fg\" type=\"color3\" nodename=\"c\"/>\n"
                                   "<input name=\"mix\" type=\"float\" value=\"0.25\"/></mix>\n"
                                   "<output name=\"out\" type=\"color3\" nodename=\"m\"/>\n")),
      "g/m: mtlx_mix_color3 fg=g/c.out_ bg=0 0 0 mix=0.25\n"
      "g/c: mtlx_constant_color3 value=1 0.5 0\n"
      "output float3 out_out=g/m.out_\n");
}

TEST(GraphImport, TakesTheDefinitionThatFitsTypesOfInputs) {
  EXPECT_EQ(ImportFixture().import(graph("<multiply name=\"m\" type=\"vector2\">"
                                         "<input name=\"in1\" type=\"vector2\" value=\"1, 2\"/>"
                                         "<input name=\"in2\" type=\"float\" value=\"3\"/></multiply>\n"
                                         "<output name=\"out\" type=\"vector2\" nodename=\"m\"/>\n")),
            "g/m: mtlx_multiply_vector2FA in1=1 2 in2=3\n"
            "output float2 out_out=g/m.out_\n");
}

TEST(GraphImport, TurnsWordsOfEnumerationsIntoNumbers) {
  EXPECT_EQ(
      ImportFixture().import(graph("<position name=\"p\" type=\"vector3\">"
                                   "<input name=\"space\" type=\"string\" value=\"world\"/></position>\n"
                                   "<output name=\"out\" type=\"vector3\" nodename=\"p\"/>\n")),
      "g/p: mtlx_position_vector3 space=2\n"
      "output float3 out_out=g/p.out_\n");
}

TEST(GraphImport, TellsAnUnknownWordAndTakesTheDefault) {
  EXPECT_EQ(ImportFixture().import(graph("<position name=\"p\" type=\"vector3\">"
                                         "<input name=\"space\" type=\"string\" value=\"wrld\"/></position>\n"
                                         "<output name=\"out\" type=\"vector3\" nodename=\"p\"/>\n")),
            "g/p: mtlx_position_vector3 space=1\n"
            "output float3 out_out=g/p.out_\n"
            "doc.mtlx:4:35: error: `wrld` is no value of `space`; did you mean `world`? [unknown-word]\n");
}

TEST(GraphImport, EntersGraphsWithTheirInterfaces) {
  EXPECT_EQ(
      ImportFixture().import(document("<nodegraph name=\"inner\">\n"
                                      "<input name=\"a\" type=\"float\" value=\"2\"/>\n"
                                      "<add name=\"s\" type=\"float\">"
                                      "<input name=\"in1\" type=\"float\" interfacename=\"a\"/></add>\n"
                                      "<output name=\"o\" type=\"float\" nodename=\"s\"/></nodegraph>\n"
                                      "<nodegraph name=\"g\">\n"
                                      "<sin name=\"t\" type=\"float\">"
                                      "<input name=\"in\" type=\"float\" nodegraph=\"inner\"/></sin>\n"
                                      "<output name=\"out\" type=\"float\" nodename=\"t\"/></nodegraph>\n")),
      "g/t: mtlx_sin_float in_=inner/s.out_\n"
      "inner/s: mtlx_add_float in1=2 in2=0\n"
      "output float out_out=g/t.out_\n");
}

TEST(GraphImport, BringsOwnDefinitionsOncePerUse) {
  EXPECT_EQ(
      ImportFixture().import(document("<nodedef name=\"ND_twice\" node=\"twice\">\n"
                                      "<input name=\"x\" type=\"float\" value=\"3\"/>\n"
                                      "<output name=\"out\" type=\"float\"/></nodedef>\n"
                                      "<nodegraph name=\"NG_twice\" nodedef=\"ND_twice\">\n"
                                      "<add name=\"s\" type=\"float\">"
                                      "<input name=\"in1\" type=\"float\" interfacename=\"x\"/>"
                                      "<input name=\"in2\" type=\"float\" interfacename=\"x\"/></add>\n"
                                      "<output name=\"out\" type=\"float\" nodename=\"s\"/></nodegraph>\n"
                                      "<nodegraph name=\"g\">\n"
                                      "<twice name=\"t\" type=\"float\"/>\n"
                                      "<twice name=\"u\" type=\"float\">"
                                      "<input name=\"x\" type=\"float\" nodename=\"t\"/></twice>\n"
                                      "<output name=\"out\" type=\"float\" nodename=\"u\"/></nodegraph>\n")),
      "g/u/s: mtlx_add_float in1=g/t/s.out_ in2=g/t/s.out_\n"
      "g/t/s: mtlx_add_float in1=3 in2=3\n"
      "output float out_out=g/u/s.out_\n");
}

TEST(GraphImport, ConvertsColoursOfOtherSpaces) {
  ImportFixture fixture;
  fixture.files["maps/wood.png"] = "";
  EXPECT_EQ(
      fixture.import(document("<nodegraph name=\"g\" fileprefix=\"maps/\">\n"
                              "<image name=\"i\" type=\"color3\"><input name=\"file\" type=\"filename\" "
                              "value=\"wood.png\" colorspace=\"srgb_texture\"/></image>\n"
                              "<multiply name=\"m\" type=\"color3\">"
                              "<input name=\"in1\" type=\"color3\" nodename=\"i\"/>"
                              "<input name=\"in2\" type=\"color3\" value=\"1,1,1\" colorspace=\"acescg\"/>"
                              "</multiply>\n"
                              "<output name=\"out\" type=\"color3\" nodename=\"m\"/></nodegraph>\n")),
      "g/m: mtlx_multiply_color3 in1=g/i.out_.color.out_ in2=g/m.in2.color.out_\n"
      "g/i: mtlx_image_color3 default_=0 0 0 texcoord=0 0 uaddressmode=2 vaddressmode=2 filtertype=1 "
      "frameoffset=0 frameendaction=0 texels=0 0\n"
      "g/m.in2.color: mtlx_acescg_to_lin_rec709_color3 in_=1 1 1\n"
      "g/i.out_.color: mtlx_srgb_texture_to_lin_rec709_color3 in_=g/i.out_\n"
      "output float3 out_out=g/m.out_\n"
      "texture g/i.file=maps/wood.png\n");
}

TEST(GraphImport, TakesTheDefaultOfAMissingFile) {
  EXPECT_EQ(ImportFixture().import(graph("<image name=\"i\" type=\"float\">"
                                         "<input name=\"file\" type=\"filename\" value=\"gone.png\"/>"
                                         "<input name=\"default\" type=\"float\" value=\"0.75\"/></image>\n"
                                         "<output name=\"out\" type=\"float\" nodename=\"i\"/>\n")),
            "g/i: mtlx_dot_float in_=0.75\n"
            "output float out_out=g/i.out_\n"
            "doc.mtlx:4:30: warning: there is no file `gone.png` [unreadable-file]\n");
}

TEST(GraphImport, ReplacesTokensInFileNames) {
  ImportFixture fixture;
  fixture.files["wood_02.png"] = "";
  EXPECT_EQ(fixture.import(graph("<token name=\"nr\" type=\"string\" value=\"02\"/>\n"
                                 "<image name=\"i\" type=\"float\">"
                                 "<input name=\"file\" type=\"filename\" value=\"wood_[nr].png\"/></image>\n"
                                 "<output name=\"out\" type=\"float\" nodename=\"i\"/>\n")),
            "g/i: mtlx_image_float default_=0 texcoord=0 0 uaddressmode=2 vaddressmode=2 filtertype=1 "
            "frameoffset=0 frameendaction=0 texels=0 0\n"
            "output float out_out=g/i.out_\n"
            "texture g/i.file=wood_02.png\n");
}

TEST(GraphImport, TellsWrongTypesAndBringsTheRest) {
  EXPECT_EQ(ImportFixture().import(graph("<texcoord name=\"uv\" type=\"vector2\"/>\n"
                                         "<sin name=\"s\" type=\"float\">\n"
                                         "<input name=\"in\" type=\"float\" nodename=\"uv\"/></sin>\n"
                                         "<output name=\"out\" type=\"float\" nodename=\"s\"/>\n")),
            "g/s: mtlx_sin_float in_=0\n"
            "g/uv: mtlx_texcoord_vector2 index=0\n"
            "output float out_out=g/s.out_\n"
            "doc.mtlx:6:1: error: `in` takes `float`, not `vector2` [wire-type]\n");
}

TEST(GraphImport, TellsUnknownNodesAtTheirLines) {
  EXPECT_EQ(ImportFixture().import(graph("<mixx name=\"s\" type=\"float\"/>\n"
                                         "<add name=\"a\" type=\"float\">\n"
                                         "<input name=\"in1\" type=\"float\" nodename=\"s\"/>\n"
                                         "<input name=\"in2\" type=\"float\" nodename=\"aa\"/>\n"
                                         "<input name=\"in3\" type=\"float\" value=\"1\"/></add>\n"
                                         "<output name=\"out\" type=\"float\" nodename=\"a\"/>\n")),
            "g/a: mtlx_add_float in1=0 in2=0\n"
            "output float out_out=g/a.out_\n"
            "doc.mtlx:8:1: warning: `add` has no input `in3`; did you mean `in1`? [unknown-port]\n"
            "doc.mtlx:4:1: error: there is no node `mixx`; did you mean `mix`? [unknown-fragment]\n"
            "doc.mtlx:7:1: error: there is no node `aa`; did you mean `a`? [unknown-node]\n");
}

TEST(GraphImport, CutsCycles) {
  EXPECT_EQ(ImportFixture().import(graph("<sin name=\"a\" type=\"float\">"
                                         "<input name=\"in\" type=\"float\" nodename=\"b\"/></sin>\n"
                                         "<cos name=\"b\" type=\"float\">\n"
                                         "<input name=\"in\" type=\"float\" nodename=\"a\"/></cos>\n"
                                         "<output name=\"out\" type=\"float\" nodename=\"a\"/>\n")),
            "g/a: mtlx_sin_float in_=g/b.out_\n"
            "g/b: mtlx_cos_float in_=0\n"
            "output float out_out=g/a.out_\n"
            "doc.mtlx:6:1: error: this wire closes a cycle; its default value stands in its place [loop]\n");
}

TEST(GraphImport, RefusesGraphsThatHoldThemselves) {
  const std::string text = ImportFixture().import(
      document("<nodedef name=\"ND_r\" node=\"r\"><output name=\"out\" type=\"float\"/></nodedef>\n"
               "<nodegraph name=\"NG_r\" nodedef=\"ND_r\"><r name=\"again\" type=\"float\"/>\n"
               "<output name=\"out\" type=\"float\" nodename=\"again\"/></nodegraph>\n"
               "<nodegraph name=\"g\"><r name=\"a\" type=\"float\"/>"
               "<output name=\"out\" type=\"float\" nodename=\"a\"/></nodegraph>\n"));
  EXPECT_EQ(text, "doc.mtlx:5:1: error: graphs are nested deeper than 64 levels, or hold themselves [loop]\n"
                  "doc.mtlx:6:47: warning: `out` is left out: nothing feeds it [cannot-import]\n");
}

TEST(GraphImport, ConvertsUnits) {
  EXPECT_EQ(ImportFixture().import(graph("<rotate2d name=\"r\" type=\"vector2\">"
                                         "<input name=\"amount\" type=\"float\" value=\"2\" unit=\"radian\"/>"
                                         "</rotate2d>\n"
                                         "<output name=\"out\" type=\"vector2\" nodename=\"r\"/>\n")),
            "g/r: mtlx_rotate2d_vector2 in_=0 0 amount=114.592\n"
            "output float2 out_out=g/r.out_\n");
}

TEST(GraphImport, PicksChannels) {
  EXPECT_EQ(
      ImportFixture().import(graph("<constant name=\"c\" type=\"color3\"/>\n"
                                   "<sin name=\"s\" type=\"vector2\"><input name=\"in\" type=\"vector2\" "
                                   "nodename=\"c\" channels=\"b1\"/></sin>\n"
                                   "<output name=\"out\" type=\"vector2\" nodename=\"s\"/>\n")),
      "g/s: mtlx_sin_vector2 in_=g/s.in_.1.out_\n"
      "g/c: mtlx_constant_color3 value=0 0 0\n"
      "g/s.in_.1.0: mtlx_extract_color3 in_=g/c.out_ index=2\n"
      "g/s.in_.1: mtlx_combine2_vector2 in1=g/s.in_.1.0.out_ in2=1\n"
      "output float2 out_out=g/s.out_\n");
}

TEST(GraphImport, AsksForPropertiesOfTheGeometry) {
  EXPECT_EQ(
      ImportFixture().import(graph("<geompropvalue name=\"p\" type=\"float\">"
                                   "<input name=\"geomprop\" type=\"string\" value=\"dirt\"/>"
                                   "</geompropvalue>\n"
                                   "<sin name=\"s\" type=\"float\">"
                                   "<input name=\"in\" type=\"float\" nodename=\"p\"/></sin>\n"
                                   "<output name=\"out\" type=\"float\" nodename=\"s\"/>\n")),
      "input float geomprop_dirt\n"
      "g/s: mtlx_sin_float in_=<geomprop_dirt>\n"
      "output float out_out=g/s.out_\n"
      "doc.mtlx:4:1: note: the renderer gives this as the graph input `geomprop_dirt` [cannot-import]\n");
}

TEST(GraphImport, AsksForFurtherColours) {
  EXPECT_EQ(
      ImportFixture().import(graph("<geomcolor name=\"c\" type=\"float\">"
                                   "<input name=\"index\" type=\"integer\" value=\"1\"/></geomcolor>\n"
                                   "<sin name=\"s\" type=\"float\">"
                                   "<input name=\"in\" type=\"float\" nodename=\"c\"/></sin>\n"
                                   "<output name=\"out\" type=\"float\" nodename=\"s\"/>\n")),
      "input float4 vertexColor1\n"
      "g/s: mtlx_sin_float in_=g/s.in_.1.0.out_\n"
      "g/s.in_.1.0: mtlx_extract_color4 in_=<vertexColor1> index=0\n"
      "output float out_out=g/s.out_\n"
      "doc.mtlx:4:1: note: the renderer gives this as the graph input `vertexColor1` [cannot-import]\n");
}

TEST(GraphImport, HandsTheNamedInputOnWhereNothingComputesANode) {
  ImportFixture fixture;
  fixture.withoutFragment = {"contrast"};
  EXPECT_EQ(fixture.import(graph("<contrast name=\"c\" type=\"float\">"
                                 "<input name=\"in\" type=\"float\" value=\"0.5\"/></contrast>\n"
                                 "<sin name=\"s\" type=\"float\">"
                                 "<input name=\"in\" type=\"float\" nodename=\"c\"/></sin>\n"
                                 "<output name=\"out\" type=\"float\" nodename=\"s\"/>\n")),
            "g/s: mtlx_sin_float in_=0.5\n"
            "output float out_out=g/s.out_\n"
            "doc.mtlx:4:1: warning: nothing computes the node `contrast` for `float` [cannot-import]\n");
}

TEST(GraphImport, BringsWhatStandsInFrontOfBrokenXml) {
  EXPECT_EQ(ImportFixture().import("<materialx version=\"1.39\">\n<nodegraph name=\"g\">\n"
                                   "<constant name=\"c\" type=\"float\"/>\n"
                                   "<output name=\"out\" type=\"float\" nodename=\"c\"/>\n"
                                   "</nodegraf>\n</materialx>\n"),
            "g/c: mtlx_constant_float value=0\n"
            "output float out_out=g/c.out_\n"
            "doc.mtlx:5:3: error: this is no XML: start-end tags mismatch [malformed-xml]\n");
}

TEST(GraphImport, IncludesFilesWithTheirNamespacesOnce) {
  ImportFixture fixture;
  fixture.files["parts/a.mtlx"] =
      "<materialx version=\"1.39\" namespace=\"n\">\n"
      "<xi:include href=\"../doc.mtlx\"/>\n"
      "<nodegraph name=\"h\"><constant name=\"c\" type=\"float\"/>"
      "<output name=\"out\" type=\"float\" nodename=\"c\"/></nodegraph></materialx>";
  EXPECT_EQ(fixture.import(document("<xi:include href=\"parts/a.mtlx\"/>\n<xi:include href=\"b.mtlx\"/>\n"
                                    "<nodegraph name=\"g\">\n<sin name=\"s\" type=\"float\">"
                                    "<input name=\"in\" type=\"float\" nodegraph=\"n:h\"/></sin>"
                                    "<output name=\"out\" type=\"float\" nodename=\"s\"/></nodegraph>")),
            "g/s: mtlx_sin_float in_=n:h/c.out_\n"
            "n:h/c: mtlx_constant_float value=0\n"
            "output float out_out=g/s.out_\n"
            "doc.mtlx:4:1: error: there is no file `b.mtlx` [unreadable-file]\n");
}

TEST(GraphImport, UpgradesEarlierDocuments) {
  EXPECT_EQ(
      ImportFixture().import(document("<nodegraph name=\"g\">\n"
                                      "<compare name=\"c\" type=\"float\">"
                                      "<parameter name=\"cutoff\" type=\"float\" value=\"0.5\"/>"
                                      "<input name=\"intest\" type=\"float\" value=\"0.25\"/>"
                                      "<input name=\"in1\" type=\"float\" value=\"1\"/>"
                                      "<input name=\"in2\" type=\"float\" value=\"2\"/></compare>\n"
                                      "<swizzle name=\"z\" type=\"float\">"
                                      "<input name=\"in\" type=\"vector3\" value=\"7,8,9\"/>"
                                      "<parameter name=\"channels\" type=\"string\" value=\"y\"/></swizzle>\n"
                                      "<atan2 name=\"a\" type=\"float\">"
                                      "<input name=\"in1\" type=\"float\" nodename=\"c\"/>"
                                      "<input name=\"in2\" type=\"float\" nodename=\"z\"/></atan2>\n"
                                      "<output name=\"out\" type=\"float\" nodename=\"a\"/></nodegraph>",
                                      "version=\"1.36\"")),
      "g/a: mtlx_atan2_float iny=g/c.out_ inx=8\n"
      "g/c: mtlx_ifgreater_float value1=0.25 value2=0.5 in1=2 in2=1\n"
      "output float out_out=g/a.out_\n");
}

TEST(GraphImport, UpgradesMaterialsWithShaderReferences) {
  ImportFixture fixture;
  EXPECT_EQ(fixture.import(document("<material name=\"g\"><shaderref name=\"s\" node=\"surface_unlit\">"
                                    "<bindinput name=\"emission\" type=\"float\" value=\"2\"/>"
                                    "</shaderref></material>",
                                    "version=\"1.36\"")),
            "g_s: mtlx_surface_unlit emission=2 emission_color=1 1 1 transmission=0 transmission_color=1 1 1 "
            "opacity=1\n"
            "output surfaceshader color=g_s.out_\n");
}

// A chain, of which each node feeds both inputs of the next.
TEST(GraphImport, BringsEachNodeOnceHoweverOftenItIsUsed) {
  constexpr int kNodes = 5000;
  std::string text = "<constant name=\"n0\" type=\"float\"/>\n";
  for (int i = 1; i < kNodes; ++i) {
    const std::string before = std::to_string(i - 1);
    text += "<add name=\"n" + std::to_string(i) +
            "\" type=\"float\"><input name=\"in1\" type=\"float\" nodename=\"n";
    text += before + "\"/><input name=\"in2\" type=\"float\" nodename=\"n" + before + "\"/></add>\n";
  }
  text += "<output name=\"out\" type=\"float\" nodename=\"n4999\"/>\n";
  ImportFixture fixture;
  EXPECT_EQ(fixture.importPlain(graph(text), "g").graph.nodes.size(), static_cast<std::size_t>(kNodes));
  EXPECT_TRUE(fixture.told.empty());
}

// Each definition uses the one before twice: as many uses as 2 to the power of 40.
TEST(GraphImport, EndsWhereUsesMultiply) {
  std::string text;
  for (int i = 0; i < 40; ++i) {
    const std::string name = "d" + std::to_string(i);
    const std::string inner = i == 0 ? "sin" : "d" + std::to_string(i - 1);
    text +=
        "<nodedef name=\"ND_" + name + "\" node=\"" + name +
        "\"><input name=\"in\" type=\"float\" value=\"1\"/><output name=\"out\" type=\"float\"/></nodedef>\n"
        "<nodegraph name=\"NG_" +
        name + "\" nodedef=\"ND_" + name + "\">";
    for (const char* const use : {"a", "b"}) {
      text += "<" + inner + " name=\"" + use + "\" type=\"float\"><input name=\"in\" type=\"float\" ";
      text += std::string(*use == 'a' ? "interfacename=\"in\"" : "nodename=\"a\"") + "/></" + inner + ">";
    }
    text += "<output name=\"out\" type=\"float\" nodename=\"b\"/></nodegraph>\n";
  }
  text += "<nodegraph name=\"g\"><d39 name=\"n\" type=\"float\"/>"
          "<output name=\"out\" type=\"float\" nodename=\"n\"/></nodegraph>\n";
  ImportFixture fixture;
  const ImportedGraph imported = fixture.importPlain(document(text), "g");
  EXPECT_LE(imported.graph.nodes.size(), 100'000u);
  ASSERT_EQ(fixture.told.size(), 1u);
  EXPECT_EQ(fixture.told[0].text, "the document holds more than 100000 nodes, with all uses of its graphs");
}

TEST(GraphImport, EndsElementsNestedTooDeep) {
  std::string text;
  for (int i = 0; i < 300; ++i) text += "<a>";
  for (int i = 0; i < 300; ++i) text += "</a>";
  ImportFixture fixture;
  fixture.importPlain(document(text), "g");
  ASSERT_EQ(fixture.told.size(), 1u);
  EXPECT_EQ(fixture.told[0].text, "elements are nested deeper than 256 levels");
}

TEST(GraphImport, TellsTheSizeOfTexturesWhoseModesTheSamplerDoesNotHave) {
  ImportFixture fixture;
  fixture.files["a.hdr"] = "#?RADIANCE\n\n-Y 20 +X 40\n";
  const std::string image =
      "<image name=\"i\" type=\"float\"><input name=\"file\" type=\"filename\" value=\"a.hdr\"/>\n";
  const std::string output = "</image><output name=\"out\" type=\"float\" nodename=\"i\"/>\n";
  EXPECT_EQ(fixture.import(graph(image + output)), "g/i: mtlx_image_float default_=0 texcoord=0 0 "
                                                   "uaddressmode=2 vaddressmode=2 filtertype=1 frameoffset=0 "
                                                   "frameendaction=0 texels=0 0\n"
                                                   "output float out_out=g/i.out_\n"
                                                   "texture g/i.file=a.hdr\n");
  EXPECT_EQ(fixture.import(
                graph(image + "<input name=\"vaddressmode\" type=\"string\" value=\"mirror\"/>" + output)),
            "g/i: mtlx_image_float default_=0 texcoord=0 0 uaddressmode=2 vaddressmode=3 filtertype=1 "
            "frameoffset=0 "
            "frameendaction=0 texels=40 20\n"
            "output float out_out=g/i.out_\n"
            "texture g/i.file=a.hdr\n");
  fixture.files["a.hdr"] = "no picture";
  EXPECT_EQ(fixture.import(
                graph(image + "<input name=\"filtertype\" type=\"string\" value=\"closest\"/>" + output)),
            "g/i: mtlx_image_float default_=0 texcoord=0 0 uaddressmode=2 vaddressmode=2 filtertype=0 "
            "frameoffset=0 "
            "frameendaction=0 texels=0 0\n"
            "output float out_out=g/i.out_\n"
            "texture g/i.file=a.hdr\n"
            "doc.mtlx:4:1: warning: the size of `a.hdr` cannot be read: its sampler decides modes and filter "
            "[unreadable-file]\n");
}

TEST(GraphImport, TakesOnlyAWireInPlaceOfWhatIsReadFromTheGeometry) {
  EXPECT_EQ(
      ImportFixture().import(graph("<normalmap name=\"n\" type=\"vector3\">\n"
                                   "<input name=\"normal\" type=\"vector3\" value=\"0, 0, 1\"/>\n"
                                   "<input name=\"tangent\" type=\"vector3\" interfacename=\"t\"/>"
                                   "</normalmap>\n"
                                   "<input name=\"t\" type=\"vector3\" value=\"1, 0, 0\"/>\n"
                                   "<output name=\"out\" type=\"vector3\" nodename=\"n\"/>\n")),
      "g/n: mtlx_normalmap_float in_=0.5 0.5 1 scale=1 normal=0 0 0 tangent=g/n.tangent.value.out_ "
      "bitangent=0 0 0\n"
      "g/n.tangent.value: mtlx_constant_vector3 value=1 0 0\n"
      "output float3 out_out=g/n.out_\n"
      "doc.mtlx:5:1: warning: `normal` comes from the geometry; a value has no effect [cannot-import]\n");
}

TEST(GraphImport, GivesAGraphThatIsADefinitionItsDefaults) {
  EXPECT_EQ(ImportFixture().import(document("<nodedef name=\"ND_twice\" node=\"twice\">\n"
                                            "<input name=\"x\" type=\"float\" value=\"3\"/>\n"
                                            "<output name=\"out\" type=\"float\"/></nodedef>\n"
                                            "<nodegraph name=\"g\" nodedef=\"ND_twice\">\n"
                                            "<sin name=\"s\" type=\"float\">"
                                            "<input name=\"in\" type=\"float\" interfacename=\"x\"/></sin>\n"
                                            "<output name=\"out\" type=\"float\" nodename=\"s\"/>"
                                            "</nodegraph>\n")),
            "g/s: mtlx_sin_float in_=3\n"
            "output float out_out=g/s.out_\n");
}

TEST(GraphImport, WiresClosuresThatAreUsedTwice) {
  EXPECT_EQ(ImportFixture().import(
                graph("<oren_nayar_diffuse_bsdf name=\"d\" type=\"BSDF\"/>\n"
                      "<layer name=\"l\" type=\"BSDF\"><input name=\"top\" type=\"BSDF\" nodename=\"d\"/>"
                      "<input name=\"base\" type=\"BSDF\" nodename=\"d\"/></layer>\n"
                      "<add name=\"a\" type=\"BSDF\"><input name=\"in1\" type=\"BSDF\" nodename=\"l\"/>"
                      "<input name=\"in2\" type=\"BSDF\" nodename=\"d\"/></add>\n"
                      "<multiply name=\"m\" type=\"BSDF\"><input name=\"in1\" type=\"BSDF\" nodename=\"a\"/>"
                      "<input name=\"in2\" type=\"float\" value=\"0.5\"/></multiply>\n"
                      "<mix name=\"x\" type=\"BSDF\"><input name=\"fg\" type=\"BSDF\" nodename=\"m\"/>"
                      "<input name=\"bg\" type=\"BSDF\" nodename=\"l\"/><input name=\"mix\" type=\"float\" "
                      "value=\"0.25\"/></mix>\n"
                      "<output name=\"out\" type=\"BSDF\" nodename=\"x\"/>\n")),
            "g/x: mtlx_mix_bsdf fg=g/m.out_ bg=g/l.out_ mix=0.25\n"
            "g/m: mtlx_multiply_bsdfF in1=g/a.out_ in2=0.5\n"
            "g/l: mtlx_layer_bsdf top=g/d.out_ base=g/d.out_\n"
            "g/a: mtlx_add_bsdf in1=g/l.out_ in2=g/d.out_\n"
            "g/d: mtlx_oren_nayar_diffuse_bsdf weight=1 color=0.18 0.18 0.18 roughness=0 normal=0 0 0 "
            "energy_compensation=0\n"
            "output BSDF color=g/x.out_\n");
}

TEST(GraphImport, LeavesAClosureThatClosesACycleToItsFragment) {
  EXPECT_EQ(ImportFixture().import(graph("<layer name=\"l\" type=\"BSDF\">\n"
                                         "<input name=\"base\" type=\"BSDF\" nodename=\"l\"/></layer>\n"
                                         "<output name=\"out\" type=\"BSDF\" nodename=\"l\"/>\n")),
            "g/l: mtlx_layer_bsdf\n"
            "output BSDF color=g/l.out_\n"
            "doc.mtlx:5:1: error: this wire closes a cycle; its default value stands in its place [loop]\n");
}

// Documents of earlier versions.

TEST(GraphImport, RenamesNodesAndInputsOfEarlierVersions) {
  EXPECT_EQ(ImportFixture().import(document(
                "<opgraph name=\"g\">\n"
                "<scale name=\"s\" type=\"vector\"><parameter name=\"amount\" type=\"float\" value=\"2\"/>"
                "<parameter name=\"in\" type=\"vector\" value=\"1, 2, 3\"/></scale>\n"
                "<log name=\"n\" type=\"float\"><parameter name=\"in\" type=\"float\" value=\"3\"/></log>\n"
                "<compare name=\"c\" type=\"float\"><parameter name=\"cutoff\" type=\"float\" value=\"0.5\"/>"
                "<input name=\"intest\" type=\"float\" nodename=\"n\"/>"
                "<input name=\"in1\" type=\"float\" value=\"7\"/><input name=\"in2\" type=\"float\" "
                "value=\"8\"/></compare>\n"
                "<output name=\"a\" type=\"vector\" nodename=\"s\"/>"
                "<output name=\"b\" type=\"float\" nodename=\"c\"/></opgraph>\n",
                "version=\"1.36\"")),
            "g/s: mtlx_multiply_vector3FA in1=1 2 3 in2=2\n"
            "g/c: mtlx_ifgreater_float value1=g/n.out_ value2=0.5 in1=8 in2=7\n"
            "g/n: mtlx_ln_float in_=3\n"
            "output float3 out_a=g/s.out_\n"
            "output float out_b=g/c.out_\n");
}

TEST(GraphImport, RenamesInputsOfVersion138) {
  EXPECT_EQ(ImportFixture().import(
                document("<nodegraph name=\"g\">\n"
                         "<atan2 name=\"t\" type=\"float\"><input name=\"in1\" type=\"float\" value=\"2\"/>"
                         "<input name=\"in2\" type=\"float\" value=\"3\"/></atan2>\n"
                         "<output name=\"out\" type=\"float\" nodename=\"t\"/></nodegraph>\n",
                         "version=\"1.38\"")),
            "g/t: mtlx_atan2_float iny=2 inx=3\n"
            "output float out_out=g/t.out_\n");
}

TEST(GraphImport, ConvertsLengthsAndTellsUnknownUnits) {
  EXPECT_EQ(ImportFixture().import(
                graph("<multiply name=\"m\" type=\"float\">\n"
                      "<input name=\"in1\" type=\"float\" value=\"3\" unit=\"inch\" unittype=\"distance\"/>\n"
                      "<input name=\"in2\" type=\"float\" value=\"2\" unit=\"furlong\" "
                      "unittype=\"distance\"/></multiply>\n"
                      "<output name=\"out\" type=\"float\" nodename=\"m\"/>\n")),
            "g/m: mtlx_multiply_float in1=0.0762 in2=2\n"
            "output float out_out=g/m.out_\n"
            "doc.mtlx:6:1: warning: `furlong` is no unit [unknown-word]\n");
}

TEST(GraphImport, TellsTokensThatNobodyGives) {
  EXPECT_EQ(
      ImportFixture().import(graph("<image name=\"i\" type=\"float\">\n"
                                   "<input name=\"file\" type=\"filename\" value=\"a_[none].png\"/></image>\n"
                                   "<output name=\"out\" type=\"float\" nodename=\"i\"/>\n")),
      "g/i: mtlx_dot_float in_=0\n"
      "output float out_out=g/i.out_\n"
      "doc.mtlx:5:1: warning: there is no token `none` [unknown-word]\n");
}

TEST(GraphImport, TellsMeasuredEmissionAndVolumesAtTheirLines) {
  ImportFixture fixture;
  fixture.withoutFragment = {"measured_edf", "anisotropic_vdf"};
  EXPECT_EQ(
      fixture.import(graph(
          "<measured_edf name=\"e\" type=\"EDF\"/>\n"
          "<anisotropic_vdf name=\"v\" type=\"VDF\"/>\n"
          "<dielectric_bsdf name=\"d\" type=\"BSDF\"><input name=\"weight\" type=\"float\" "
          "value=\"0.5\"/></dielectric_bsdf>\n"
          "<layer name=\"l\" type=\"BSDF\"><input name=\"top\" type=\"BSDF\" nodename=\"d\"/>"
          "<input name=\"base\" type=\"VDF\" nodename=\"v\"/></layer>\n"
          "<sin name=\"s\" type=\"float\"/>\n"
          "<output name=\"o\" type=\"EDF\" nodename=\"e\"/><output name=\"p\" type=\"BSDF\" nodename=\"l\"/>"
          "<output name=\"q\" type=\"float\" nodename=\"s\"/>\n")),
      "g/l: mtlx_layer_vdf top=g/d.out_\n"
      "g/s: mtlx_sin_float in_=0\n"
      "g/d: mtlx_dielectric_bsdf weight=0.5 tint=1 1 1 ior=1.5 roughness=0.05 0.05 retroreflective=0 "
      "thinfilm_thickness=0 thinfilm_ior=1.5 normal=0 0 0 tangent=0 0 0 distribution=0 scatter_mode=0\n"
      "output BSDF color=g/l.out_\n"
      "output float out_q=g/s.out_\n"
      "doc.mtlx:4:1: warning: nothing computes the node `measured_edf` for `EDF` [cannot-import]\n"
      "doc.mtlx:9:1: warning: `o` is left out: nothing feeds it [cannot-import]\n"
      "doc.mtlx:5:1: warning: nothing computes the node `anisotropic_vdf` for `VDF` [cannot-import]\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::materialx
