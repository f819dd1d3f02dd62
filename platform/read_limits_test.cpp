#include "tolmsdk/read_limits.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/test_folder.h"
#include "tolmsdk/files.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/text_parameter_list.h"

namespace TolmSDK {
namespace {

class ReadLimitsTest : public testing::Test {
protected:
  ~ReadLimitsTest() override { setReadLimits({}); }

  static WString loadError(std::wstring_view text) {
    const RefPtr<IObjectDataNode> node(createJsonNode());
    return node->loadFromText(text) ? WString() : node->getLoadError();
  }
};

TEST_F(ReadLimitsTest, DefaultsAreThoseOfTheConstants) {
  EXPECT_EQ(readLimits().fileBytes, kMaximumTextFileSize);
  EXPECT_EQ(readLimits().documentValues, 2'000'000u);
  EXPECT_EQ(readLimits().parameters, 100'000u);
}

TEST_F(ReadLimitsTest, ValuesOfEveryKindCount) {
  setReadLimits({.documentValues = 7});
  EXPECT_EQ(loadError(L"{ \"a\": [1, \"x\", true, null],\n \"b\": {} }"), L"");
  const WString expected =
      L"line 2, column 13: expected at most 7 values (objects, arrays, texts, numbers) in "
      L"one document: split it";
  for (const wchar_t* last : {L"1", L"\"x\"", L"true", L"null", L"[]", L"{}"})
    EXPECT_EQ(loadError(L"{ \"a\": [1, \"x\", true, null],\n \"b\": { \"c\":" + WString(last) + L"} }"),
              expected);
}

TEST_F(ReadLimitsTest, TheRefusedDocumentIsNotReadOn) {
  setReadLimits({.documentValues = 2});
  EXPECT_EQ(loadError(L"[1, 2, ]").substr(0, 18), L"line 1, column 5: ");
  EXPECT_EQ(loadError(L"[1]"), L"");
}

TEST_F(ReadLimitsTest, FilesAndTextsOfTheLimitAreRead) {
  setReadLimits({.fileBytes = 10});
  const TestFolder folder;
  folder.write("fits", "0123456789");
  folder.write("large", "0123456789a");
  WString text;
  WString error;
  EXPECT_TRUE(GetUTF8TextFileString(folder.text() + L"/fits", text, &error));
  EXPECT_FALSE(GetUTF8TextFileString(folder.text() + L"/large", text, &error));
  EXPECT_EQ(error, L"the file is larger than 10 bytes");
  EXPECT_FALSE(GetUTF8TextFileString(L"/dev/zero", text, &error));
  EXPECT_EQ(error, L"the file is larger than 10 bytes");
  EXPECT_EQ(loadError(L"\"01234567\""), L"");
  EXPECT_EQ(loadError(L"\"012345678\""), L"the file is larger than 10 bytes");
}

TEST_F(ReadLimitsTest, NoFileIsLargerThanItsPlacesAreNumbers) {
  setReadLimits({.fileBytes = static_cast<std::size_t>(-1)});
  EXPECT_EQ(readLimits().fileBytes, 0xFFFFFFFFu);
}

TEST_F(ReadLimitsTest, ParametersOfTheLimitAreRead) {
  setReadLimits({.parameters = 2});
  Graphics::ATextParameterList list;
  EXPECT_TRUE(list.parseParameters(L"float a, out float b"));
  EXPECT_FALSE(list.parseParameters(L"float a, out float b, float c"));
}

}  // namespace
}  // namespace TolmSDK
