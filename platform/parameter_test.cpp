#include "tolmsdk/parameter.h"

#include <gtest/gtest.h>

#include <string>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics {
namespace {

RefPtr<IObjectDataNode> parse(std::wstring_view json) {
  RefPtr<IObjectDataNode> node = createJsonNode();
  EXPECT_TRUE(node->loadFromText(json)) << toUtf8(json) << toUtf8(node->getLoadError());
  return node;
}

RefPtr<AParameter> load(std::wstring_view json) {
  RefPtr<AParameter> parameter = makeRef<AParameter>();
  EXPECT_TRUE(parameter->load(parse(json).get()))
      << toUtf8(json) << ": " << toUtf8(parameter->getLoadError());
  return parameter;
}

TEST(Parameter, LoadsEveryKey) {
  const auto parameter = load(LR"({"name": "tint", "type": "fvec3", "value": [1, 0.5, -2], "constant": true,
                                   "semantic": "COLOR", "unknown": {"is": "ignored"}})");
  EXPECT_EQ(parameter->getName(), L"tint");
  EXPECT_EQ(parameter->getType(), TypeID_fvec3);
  EXPECT_EQ(toShaderText(parameter->getDefaultValue()), L"float3(1.0, 0.5, -2.0)");
  EXPECT_EQ(parameter->getFlags(), 1u);
  EXPECT_TRUE(parameter->isConstant());
  EXPECT_EQ(parameter->getSemantic(), UString(L"COLOR"));
  EXPECT_EQ(parameter->getStructName(), L"");
  EXPECT_EQ(parameter->getLoadError(), L"");
}

TEST(Parameter, KeepsItsTextsWhereTheyAre) {
  const auto parameter = makeRef<AParameter>(TypeID_struct, L"s");
  parameter->setStructName(L"First");
  const WString& name = parameter->getStructName();
  EXPECT_FALSE(parameter->load(nullptr));
  const WString& error = parameter->getLoadError();
  EXPECT_EQ(error, L"the parameter is missing");
  parameter->setStructName(L"A second name, which needs more memory");
  EXPECT_EQ(name, L"A second name, which needs more memory");
  EXPECT_TRUE(parameter->load(parse(LR"({"name": "a", "type": "int"})").get()));
  EXPECT_EQ(name, L"");
  EXPECT_EQ(error, L"");
}

TEST(Parameter, OptionalKeysHaveDefaults) {
  const auto parameter = load(LR"({"name": "a", "type": "float2"})");
  EXPECT_EQ(parameter->getType(), TypeID_fvec2);
  EXPECT_EQ(parameter->getDefaultValue(), AValue(TypeID_fvec2));
  EXPECT_EQ(parameter->getFlags(), 0u);
  EXPECT_TRUE(parameter->getSemantic().empty());
  EXPECT_FALSE(load(LR"({"name": "a", "type": "int", "constant": false})")->isConstant());
  EXPECT_TRUE(load(LR"({"name": "a", "type": "int", "semantic": ""})")->getSemantic().empty());
}

TEST(Parameter, LoadsEveryTypeByEitherName) {
  for (const TypeID& type : allTypes()) {
    for (const WString& name : {ITypeTraits::getTypeName(type), type.toString()}) {
      EXPECT_EQ(load(L"{\"name\":\"a\",\"struct\":\"S\",\"type\":\"" + name + L"\"}")->getType(), type);
    }
  }
  EXPECT_EQ(load(LR"({"name": "a", "type": "nil"})")->getType(), TypeID_nil);
  EXPECT_EQ(load(LR"({"name": "a", "type": "void"})")->getType(), TypeID_nil);
}

TEST(Parameter, LoadsAStructure) {
  const auto parameter = load(LR"({"name": "s", "type": "struct", "struct": "Surface"})");
  EXPECT_EQ(parameter->getType(), TypeID_struct);
  EXPECT_EQ(parameter->getStructName(), L"Surface");
}

TEST(Parameter, LoadsValuesOfEveryForm) {
  const auto text = [](std::wstring_view json) { return toShaderText(load(json)->getDefaultValue()); };
  EXPECT_EQ(text(LR"({"name": "a", "type": "bool", "value": true})"), L"true");
  EXPECT_EQ(text(LR"({"name": "a", "type": "bool", "value": 2})"), L"true");
  EXPECT_EQ(text(LR"({"name": "a", "type": "bool", "value": [0]})"), L"false");
  EXPECT_EQ(text(LR"({"name": "a", "type": "float", "value": 3})"), L"3.0");
  EXPECT_EQ(text(LR"({"name": "a", "type": "float", "value": [3]})"), L"3.0");
  EXPECT_EQ(text(LR"({"name": "a", "type": "int", "value": -3})"), L"-3");
  EXPECT_EQ(text(LR"({"name": "a", "type": "uint", "value": 4294967295})"), L"4294967295");
  EXPECT_EQ(text(LR"({"name": "a", "type": "fmat2", "value": [1, 2, 3, 4]})"),
            L"float2x2(1.0, 2.0, 3.0, 4.0)");
}

struct Malformed {
  const wchar_t* json;
  const wchar_t* error;
};

TEST(Parameter, RefusesWhatIsMalformedAndSaysWhere) {
  const Malformed cases[] = {
      {LR"([])", L"line 1, column 1: a parameter must be an object"},
      {LR"({"type": "float"})", L"line 1, column 1: `name` is missing"},
      {LR"({"name": "", "type": "float"})", L"line 1, column 10: `name` must be a string that is not empty"},
      {LR"({"name": 3, "type": "float"})", L"line 1, column 10: `name` must be a string that is not empty"},
      {LR"({"name": null, "type": "float"})",
       L"line 1, column 10: `name` must be a string that is not empty"},
      {LR"({"name": "a"})", L"line 1, column 1: `type` is missing"},
      {LR"({"name": "a", "type": 1})", L"line 1, column 23: `type` must be a string that is not empty"},
      {LR"({"name": "a", "type": "flaot"})", L"line 1, column 23: `type` names no type: `flaot`"},
      {LR"({"name": "a", "type": "Float"})", L"line 1, column 23: `type` names no type: `Float`"},
      {LR"({"name": "a", "type": "struct"})", L"line 1, column 1: `struct` is missing"},
      {LR"({"name": "a", "type": "struct", "struct": ""})",
       L"line 1, column 43: `struct` must be a string that is not empty"},
      {LR"({"name": "a", "type": "int", "struct": 1})", L"line 1, column 40: `struct` must be a string"},
      {LR"({"name": "a", "type": "int", "value": "1"})",
       L"line 1, column 39: `value` must be a boolean, a number or an array of numbers"},
      {LR"({"name": "a", "type": "int", "value": null})",
       L"line 1, column 39: `value` must be a boolean, a number or an array of numbers"},
      {LR"({"name": "a", "type": "int", "value": true})",
       L"line 1, column 39: `value` of the type `int` must not be a boolean"},
      {LR"({"name": "a", "type": "int", "value": 0.5})",
       L"line 1, column 39: `value` does not fit the type `int`: `0.5`"},
      {LR"({"name": "a", "type": "uint", "value": -1})",
       L"line 1, column 40: `value` does not fit the type `uint`: `-1`"},
      {LR"({"name": "a", "type": "float", "value": 1e39})",
       L"line 1, column 41: `value` does not fit the type `float`: `1e+39`"},
      {LR"({"name": "a", "type": "fvec2", "value": 1})",
       L"line 1, column 41: `value` must hold as many numbers as the type `float2` has components: 2"},
      {LR"({"name": "a", "type": "fvec2", "value": [1]})",
       L"line 1, column 41: `value` must hold as many numbers as the type `float2` has components: 2"},
      {LR"({"name": "a", "type": "fvec2", "value": [1, 2, 3]})",
       L"line 1, column 41: `value` must hold as many numbers as the type `float2` has components: 2"},
      {LR"({"name": "a", "type": "fvec2", "value": [1, "2"]})",
       L"line 1, column 45: `value` must hold numbers only"},
      {LR"({"name": "a", "type": "fvec2", "value": [1, null]})",
       L"line 1, column 45: `value` must hold numbers only"},
      {LR"({"name": "a", "type": "sampler2D", "value": 1})",
       L"line 1, column 45: the type `sfg_sampler2D` has no `value`"},
      {LR"({"name": "a", "type": "struct", "struct": "S", "value": 1})",
       L"line 1, column 57: the type `struct` has no `value`"},
      {LR"({"name": "a", "type": "int", "constant": 1})",
       L"line 1, column 42: `constant` must be `true` or `false`"},
      {LR"({"name": "a", "type": "int", "constant": "true"})",
       L"line 1, column 42: `constant` must be `true` or `false`"},
      {LR"({"name": "a", "type": "int", "semantic": 1})", L"line 1, column 42: `semantic` must be a string"},
      {L"{\n \"name\": \"a\",\n  \"type\": \"x\"}", L"line 3, column 11: `type` names no type: `x`"},
  };
  for (const Malformed& c : cases) {
    const RefPtr<AParameter> parameter = makeRef<AParameter>(TypeID_fvec2, L"before");
    EXPECT_FALSE(parameter->load(parse(c.json).get())) << toUtf8(c.json);
    EXPECT_EQ(parameter->getLoadError(), c.error) << toUtf8(parameter->getLoadError());
    EXPECT_EQ(parameter->getName(), L"before");
    EXPECT_EQ(parameter->getType(), TypeID_fvec2);
  }
}

TEST(Parameter, RefusesAMissingNode) {
  const RefPtr<AParameter> parameter = makeRef<AParameter>();
  EXPECT_FALSE(parameter->load(nullptr));
  EXPECT_EQ(parameter->getLoadError(), L"the parameter is missing");
  EXPECT_TRUE(parameter->load(parse(LR"({"name": "a", "type": "int"})").get()));
  EXPECT_EQ(parameter->getLoadError(), L"");
}

TEST(Parameter, LoadingAgainForgetsWhatWasThere) {
  const auto parameter =
      load(LR"({"name": "a", "type": "struct", "struct": "S", "constant": true, "semantic": "X"})");
  EXPECT_TRUE(parameter->load(parse(LR"({"name": "b", "type": "float"})").get()));
  EXPECT_EQ(parameter->getStructName(), L"");
  EXPECT_EQ(parameter->getFlags(), 0u);
  EXPECT_TRUE(parameter->getSemantic().empty());
  EXPECT_EQ(parameter->getDefaultValue(), AValue(TypeID_float));
}

TEST(Parameter, SettersChangeOneThingEach) {
  const RefPtr<AParameter> parameter = makeRef<AParameter>(TypeID_fvec2, L"a");
  EXPECT_EQ(parameter->getDefaultValue(), AValue(TypeID_fvec2));
  parameter->setType(TypeID_int);
  EXPECT_EQ(parameter->getDefaultValue(), AValue(TypeID_int));
  parameter->setFlags(AParameter::kConstantFlag | 4);
  EXPECT_TRUE(parameter->isConstant());
  EXPECT_EQ(parameter->getFlags(), 5u);
  parameter->setName(L"b");
  parameter->setStructName(L"S");
  parameter->setSemantic(UString(L"X"));
  EXPECT_EQ(parameter->getName(), L"b");
  EXPECT_EQ(parameter->getStructName(), L"S");
  EXPECT_EQ(parameter->getSemantic(), UString(L"X"));
}

TEST(OverrideNameParameter, CopiesAllButTheNameAndKeepsTheOriginal) {
  RefPtr<AParameter> original =
      load(LR"({"name": "s", "type": "float", "value": 2, "constant": true, "semantic": "X"})");
  const RefPtr<OverrideNameParameter> renamed = makeRef<OverrideNameParameter>(*original, L"s_n0");
  EXPECT_EQ(renamed->getName(), L"s_n0");
  EXPECT_EQ(renamed->getType(), TypeID_float);
  EXPECT_EQ(toShaderText(renamed->getDefaultValue()), L"2.0");
  EXPECT_TRUE(renamed->isConstant());
  EXPECT_EQ(renamed->getSemantic(), UString(L"X"));
  EXPECT_EQ(original->getName(), L"s");
  EXPECT_EQ(original->referenceCount(), 2u);
  EXPECT_EQ(renamed->referenceCount(), 1u);
  original.reset();
  EXPECT_EQ(renamed->getOriginal()->getName(), L"s");
}

TEST(OverrideNameParameter, ChangesApartFromItsOriginal) {
  const RefPtr<AParameter> original = makeRef<AParameter>(TypeID_struct, L"s");
  original->setStructName(L"S");
  original->setSemantic(UString(L"X"));
  const RefPtr<OverrideNameParameter> renamed = makeRef<OverrideNameParameter>(*original, L"s_n0");
  original->setStructName(L"T");
  renamed->setSemantic(UString(L"Y"));
  EXPECT_EQ(original->getStructName(), L"T");
  EXPECT_EQ(original->getSemantic(), UString(L"X"));
  EXPECT_EQ(renamed->getStructName(), L"S");
  EXPECT_EQ(renamed->getSemantic(), UString(L"Y"));
  original->setType(TypeID_float);
  EXPECT_EQ(renamed->getType(), TypeID_struct);
}

TEST(OverrideNameParameter, KeepsTheDefaultValueThatItsOriginalGivesUp) {
  const RefPtr<AParameter> original = load(LR"({"name": "s", "type": "float", "value": 2})");
  const RefPtr<OverrideNameParameter> renamed = makeRef<OverrideNameParameter>(*original, L"s_n0");
  original->setDefaultValue(AValue(TypeID_float));
  EXPECT_EQ(toShaderText(renamed->getDefaultValue()), L"2.0");
  EXPECT_EQ(toShaderText(original->getDefaultValue()), L"0.0");
  renamed->setType(TypeID_int);
  EXPECT_EQ(toShaderText(renamed->getDefaultValue()), L"0");
}

TEST(Parameter, HasADefaultValueOfATypeThatIsNoneOfTheConstants) {
  const TypeID unknown(7, 1, 1, 0);
  const RefPtr<AParameter> parameter = makeRef<AParameter>(unknown, L"a");
  EXPECT_EQ(parameter->getDefaultValue(), AValue(unknown));
  parameter->setType(TypeID_float);
  EXPECT_EQ(parameter->getDefaultValue(), AValue(TypeID_float));
  parameter->setType(unknown);
  EXPECT_EQ(parameter->getDefaultValue(), AValue(unknown));
}

// A collapse makes one for every uniform.
TEST(OverrideNameParameter, IsSmall) { EXPECT_LE(sizeof(OverrideNameParameter), 9 * sizeof(void*)); }

}  // namespace
}  // namespace TolmSDK::Graphics
