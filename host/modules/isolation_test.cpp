#include "host/modules/isolation.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <new>

#include "host/modules/shader_compiler.h"
#include "sfg/host/compile.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class IsolationTest : public testing::Test {
protected:
  void SetUp() override {
    if (!isolateCompilers()) GTEST_SKIP() << "there are no processes here";
  }
};

/// What the request names.
std::string work(const std::string& request) {
  if (request == "process") return std::to_string(getpid());
  if (request == "maker") return std::to_string(getppid());
  if (request == "refuse") throw CompileError("does not compile", {{3, "here", 7}, {0, "there", 0}}, true);
  if (request == "memory") throw std::bad_alloc();
  if (request == "crash") std::raise(SIGABRT);
  if (request == "spin") {
    for (volatile bool isEndless = true; isEndless;) {
    }
  }
  return request;
}

std::string refusal(const std::string& request) {
  try {
    inIsolation(request, work);
  } catch (const CompileError& error) {
    return error.what();
  }
  return "(nothing thrown)";
}

TEST_F(IsolationTest, AnswersWhatTheWorkGives) {
  EXPECT_EQ(inIsolation(std::string("a\0b", 3), work), std::string("a\0b", 3));
}

TEST_F(IsolationTest, KeepsItsProcesses) {
  const std::string process = inIsolation("process", work);
  EXPECT_NE(process, std::to_string(getpid()));
  EXPECT_EQ(inIsolation("process", work), process);
}

TEST_F(IsolationTest, BringsErrorsBack) {
  try {
    inIsolation("refuse", work);
    FAIL();
  } catch (const CompileError& error) {
    EXPECT_STREQ(error.what(), "does not compile");
    ASSERT_EQ(error.messages().size(), 2u);
    EXPECT_EQ(error.messages()[0].line, 3u);
    EXPECT_EQ(error.messages()[0].column, 7u);
    EXPECT_EQ(error.messages()[0].text, "here");
    EXPECT_EQ(error.messages()[1].text, "there");
    EXPECT_TRUE(error.inAssembledText());
  }
  EXPECT_THROW(inIsolation("memory", work), std::bad_alloc);
}

TEST_F(IsolationTest, MakesACrashAnErrorAndGoesOn) {
  EXPECT_EQ(refusal("crash"), "the compiler crashes on the generated shader (signal 6)");
  EXPECT_EQ(inIsolation("again", work), "again");
}

TEST_F(IsolationTest, TellsWhenThereAreNoProcessesLeft) {
  const pid_t maker = std::stoi(inIsolation("maker", work));
  EXPECT_NE(maker, getpid());
  refusal("crash");
  ASSERT_EQ(kill(maker, SIGKILL), 0);
  EXPECT_EQ(refusal("text"), "the system gives no process for the compiler");
  ASSERT_TRUE(isolateCompilers());
  EXPECT_EQ(inIsolation("text", work), "text");
}

TEST_F(IsolationTest, EndsWhatDoesNotEnd) {
  ASSERT_TRUE(isolateCompilers({1, 0}));
  EXPECT_EQ(refusal("spin"), "the compiler works on the generated shader for more than 1 s and was ended");
  EXPECT_EQ(inIsolation("again", work), "again");
}

Shader pixelShader(const std::string& body) {
  Shader shader;
  shader.text = "float4 main() : SV_Target { " + body + " }";
  shader.entryPoint = "main";
  return shader;
}

std::vector<std::string> textsOf(const CompileError& error) {
  std::vector<std::string> texts;
  for (const CompilerMessage& message : error.messages())
    texts.push_back(std::to_string(message.line) + ":" + std::to_string(message.column) + ": " +
                    message.text);
  return texts;
}

std::vector<std::string> errorsOf(const Shader& shader) {
  try {
    compileToSpirv(shader);
  } catch (const CompileError& error) {
    return textsOf(error);
  }
  return {};
}

TEST_F(IsolationTest, CompilesAsInThisProcess) {
  const Shader shader = pixelShader("return float4(1.0, 0.5, 0.25, 1.0);");
  const Shader wrong = pixelShader("return x;");
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  const auto here = [&](ShaderTarget target) {
    return compileShader(shader.text, shader.entryPoint, shader.stage, target, {});
  };
  for (const ShaderTarget target :
       {ShaderTarget::spirv, ShaderTarget::glsl, ShaderTarget::msl, ShaderTarget::hlsl})
    EXPECT_EQ(compile(shader, target), here(target));
  const std::vector<std::uint32_t> module = compileToSpirv(shader);
  EXPECT_EQ(module, compileToSpirv(shader.text, shader.entryPoint, shader.stage));
  EXPECT_EQ(translateSpirv(module, shader.stage, ShaderTarget::glsl), here(ShaderTarget::glsl));
  std::vector<std::string> expected;
  try {
    compileToSpirv(wrong.text, wrong.entryPoint, wrong.stage);
  } catch (const CompileError& error) {
    expected = textsOf(error);
  }
  EXPECT_FALSE(expected.empty());
  EXPECT_EQ(errorsOf(wrong), expected);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
