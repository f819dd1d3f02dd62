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

TEST(ComputeEntryTest, DeclaresWhatTheStageTakesAndGives) {
  const ShaderPlan plan = makePlan(ShaderStage::compute);
  EXPECT_EQ(written(*makeComputeEntry(plan)), R"(#define SFG_COMPUTE 1

struct sfg_ComputeInput
{
    uint4 sfg_frontFacing;
    float4 uv;
    uint4 flag;
};

struct sfg_ComputeOutput
{
    float4 color;
    uint4 lit;
    float4 turn_row0;
    float4 turn_row1;
};

StructuredBuffer<sfg_ComputeInput> sfg_inputs : register(t0);
RWStructuredBuffer<sfg_ComputeOutput> sfg_outputs : register(u0);

[numthreads(64, 1, 1)]
void main(uint3 sfg_thread : SV_DispatchThreadID)
{
    uint sfg_count;
    uint sfg_stride;
    sfg_outputs.GetDimensions(sfg_count, sfg_stride);
    if (sfg_thread.x >= sfg_count)
        return;
    sfg_ComputeInput sfg_in = sfg_inputs[sfg_thread.x];
    sfg_ComputeOutput sfg_out;
    sfg_outputs[sfg_thread.x] = sfg_out;
)");
}

TEST(ComputeEntryTest, TakesNothingWithoutVaryings) {
  ShaderPlan plan = makePlan(ShaderStage::compute);
  plan.varyings.clear();
  plan.outputs.resize(1);
  EXPECT_EQ(written(*makeComputeEntry(plan)), R"(#define SFG_COMPUTE 1

struct sfg_ComputeOutput
{
    float4 color;
};

RWStructuredBuffer<sfg_ComputeOutput> sfg_outputs : register(u0);

[numthreads(64, 1, 1)]
void main(uint3 sfg_thread : SV_DispatchThreadID)
{
    uint sfg_count;
    uint sfg_stride;
    sfg_outputs.GetDimensions(sfg_count, sfg_stride);
    if (sfg_thread.x >= sfg_count)
        return;
    sfg_ComputeOutput sfg_out;
    sfg_outputs[sfg_thread.x] = sfg_out;
)");
}

TEST(ComputeEntryTest, TurnsValuesIntoThoseOfTheFunction) {
  const ShaderPlan plan = makePlan(ShaderStage::compute);
  const auto entry = makeComputeEntry(plan);
  std::string text;
  for (const Varying& varying : plan.varyings) text += toUtf8(entry->varyingValue(varying)) + "\n";
  for (const Port& output : plan.outputs) {
    text +=
        std::to_string(entry->needsLocal(output)) + " " + toUtf8(entry->resultValue(output, L"row")) + "\n";
  }
  EXPECT_EQ(text, R"(sfg_in.sfg_frontFacing.x != 0
sfg_in.uv.xy
sfg_in.flag.x != 0
1 float4(row, 0.0)
1 uint4(row, 0, 0, 0)
1 float4(row, 0.0, 0.0)
)");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
