#include "tests/numbers/vulkan_compute.h"

#include <cmath>
#include <cstdlib>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/numbers/compute_shader.h"
#include "tests/numbers/fragment_source.h"

namespace numbers_test {
namespace {

// Sets an environment variable while it lives.
class ScopedVariable {
public:
  ScopedVariable(char const* name, char const* value) : name_(name) {
    if (char const* old = std::getenv(name)) {
      old_ = old;
    }
    setenv(name, value, 1);
  }
  ~ScopedVariable() {
    if (old_) {
      setenv(name_, old_->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }
  ScopedVariable(ScopedVariable const&) = delete;
  ScopedVariable& operator=(ScopedVariable const&) = delete;

private:
  char const* name_;
  std::optional<std::string> old_;
};

TEST(VulkanCompute, SaysWhatToInstallWithoutADevice) {
  ScopedVariable const files("VK_DRIVER_FILES", "/nonexistent/driver.json");
  ScopedVariable const icds("VK_ICD_FILENAMES", "/nonexistent/driver.json");
  try {
    VulkanCompute const compute;
    FAIL() << "found " << compute.deviceName();
  } catch (VulkanError const& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("mesa-vulkan-drivers"));
  }
}

TEST(VulkanCompute, SkipsOnlyWhenAsked) {
  for (auto const& [value, skipped] : {std::pair{"1", true}, {"yes", true}, {"0", false}, {"", false}}) {
    ScopedVariable const variable("SFG_SKIP_VULKAN_TESTS", value);
    EXPECT_EQ(isVulkanSkipped(), skipped) << "`" << value << "`";
  }
}

TEST(VulkanCompute, RunsOncePerSampleAndLeavesTheRestNaN) {
  if (isVulkanSkipped()) {
    GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
  }
  Function function;
  function.inputs = {
      {{"a", "float2"}}, {{"turn", "float2x2"}}, {{"flag", "bool"}}, {{"factor", "float"}, true}};
  function.code = "float2 scaled(float2 v) { return v * factor; }\n";
  function.outputs = {{"product", "float2"}, {"copy", "float2x2"}, {"whole", "int"}};
  function.call = "product = scaled(mul(turn, a)); copy = turn; whole = flag ? int(a.x) : -1;";
  std::vector<float> inputs;
  for (std::size_t i = 0; i < kGroupSize; ++i) {
    float const x = static_cast<float>(i);
    inputs.insert(inputs.end(), {x, 2.0f, 1.0f, 3.0f, 5.0f, 7.0f, i % 2 == 0 ? 1.0f : 0.0f, 10.0f});
  }
  VulkanCompute compute;
  SCOPED_TRACE(compute.deviceName());
  std::vector<float> const outputs =
      compute.run(compileCompute(computeShader(function)), inputs, 7 * kGroupSize + 1, 1);
  for (std::size_t i = 0; i < kGroupSize; ++i) {
    float const x = static_cast<float>(i);
    std::vector<float> const sample(outputs.begin() + static_cast<std::ptrdiff_t>(7 * i),
                                    outputs.begin() + static_cast<std::ptrdiff_t>(7 * i + 7));
    EXPECT_THAT(sample, testing::ElementsAre((x + 6.0f) * 10.0f, (5.0f * x + 14.0f) * 10.0f, 1.0f, 3.0f, 5.0f,
                                             7.0f, i % 2 == 0 ? x : -1.0f));
  }
  EXPECT_TRUE(std::isnan(outputs.back()));
}

}  // namespace
}  // namespace numbers_test
