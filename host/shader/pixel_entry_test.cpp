#include "host/shader/stage_entry.h"
#include "host/shader/stage_plan_fixture.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string written(const StageEntry& entry) {
  ShaderText text;
  entry.writeHeader(text);
  entry.writeStart(text);
  entry.writeEnd(text);
  return toUtf8(text.takeText());
}

TEST(PixelEntryTest, DeclaresWhatTheStageTakesAndGives) {
  const ShaderPlan plan = makePlan(ShaderStage::pixel);
  EXPECT_EQ(written(*makePixelEntry(plan)), R"(
struct sfg_PixelInput
{
    bool sfg_frontFacing : SV_IsFrontFace;
    float2 uv : GRAPHINPUT0;
    nointerpolation uint flag : GRAPHINPUT1;
};

struct sfg_PixelOutput
{
    float3 color : SV_Target0;
    uint lit : SV_Target1;
    float2 turn_row0 : SV_Target2;
    float2 turn_row1 : SV_Target3;
};

sfg_PixelOutput main(sfg_PixelInput sfg_in)
{
    sfg_PixelOutput sfg_out;
    return sfg_out;
)");
}

TEST(PixelEntryTest, TakesNothingWithoutVaryings) {
  ShaderPlan plan = makePlan(ShaderStage::pixel);
  plan.varyings.clear();
  plan.outputs.resize(1);
  EXPECT_EQ(written(*makePixelEntry(plan)), R"(
struct sfg_PixelOutput
{
    float3 color : SV_Target0;
};

sfg_PixelOutput main()
{
    sfg_PixelOutput sfg_out;
    return sfg_out;
)");
}

TEST(PixelEntryTest, TurnsValuesIntoThoseOfTheFunction) {
  const ShaderPlan plan = makePlan(ShaderStage::pixel);
  const auto entry = makePixelEntry(plan);
  std::string text;
  for (const Varying& varying : plan.varyings) text += toUtf8(entry->varyingValue(varying)) + "\n";
  for (const Port& output : plan.outputs) {
    text +=
        std::to_string(entry->needsLocal(output)) + " " + toUtf8(entry->resultValue(output, L"row")) + "\n";
  }
  EXPECT_EQ(text, R"(sfg_in.sfg_frontFacing
sfg_in.uv
sfg_in.flag != 0
0 row
1 row
1 row
)");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
