#include "sfg/host/limits.h"

#include <gtest/gtest.h>

#include <string>

#include "sfg/host/errors.h"
#include "sfg/host/job.h"
#include "tolmsdk/read_limits.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class LimitsTest : public testing::Test {
protected:
  ~LimitsTest() override { setLimits({}); }

  static std::string refusal(const std::string& graph,
                             const std::string& environment = R"({ "lights": [] })") {
    try {
      const Job job(LibrarySet::load({}), Document::fromText(graph, "graph"), {},
                    Document::fromText(environment, "environment"));
    } catch (const InputError& error) {
      return error.place() + ": " + error.what() + " [" + error.identifier() + "]";
    }
    return "";
  }
};

TEST_F(LimitsTest, AreThoseThatWereSet) {
  EXPECT_EQ(limits(), Limits());
  const Limits own{.fileBytes = 1, .documentValues = 2, .parameters = 3, .lights = 4, .codeWords = 5};
  setLimits(own);
  EXPECT_EQ(limits(), own);
  setLimits({});
  EXPECT_EQ(limits(), Limits());
}

TEST_F(LimitsTest, DefaultsOfFilesAreThoseOfThePlatform) {
  const ReadLimits read;
  const Limits all;
  EXPECT_EQ(all.fileBytes, read.fileBytes);
  EXPECT_EQ(all.documentValues, read.documentValues);
  EXPECT_EQ(all.parameters, read.parameters);
}

TEST_F(LimitsTest, NoLightLoopIsLongerThanACode) {
  setLimits({.lights = static_cast<std::size_t>(-1)});
  EXPECT_EQ(limits().lights, 524'288u);
}

TEST_F(LimitsTest, DocumentsOfTooManyValuesAreRefusedAtTheFirstOneTooMany) {
  setLimits({.documentValues = 3});
  EXPECT_EQ(refusal(R"({ "nodes": [ {} ] })"), "graph:1:14: `name` is missing [missing-key]");
  EXPECT_EQ(
      refusal(R"({ "nodes": [ {}, {} ] })"),
      "graph:1:18: expected at most 3 values (objects, arrays, texts, numbers) in one document: split it "
      "[malformed-json]");
}

TEST_F(LimitsTest, EnvironmentsOfTooManyLightsAreRefused) {
  setLimits({.lights = 1});
  EXPECT_EQ(refusal(R"({ "nodes": [] })", R"({ "lights": [ 1, 2 ] })"),
            "environment:1:13: 2 lights are too many; at most 1 can be written [too-many-lights]");
}

TEST_F(LimitsTest, DocumentsOfTooManyBytesAreRefused) {
  setLimits({.fileBytes = 10});
  EXPECT_EQ(refusal(R"({ "nodes": [] })"), "graph: the file is larger than 10 bytes [unreadable-file]");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
