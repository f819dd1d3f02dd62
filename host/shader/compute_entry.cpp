#include "host/shader/stage_entry.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::size_t kGroupSize = kComputeGroupSize;

/// The components of a widened value that are the value.
const wchar_t* narrowing(const TypeID& type) {
  constexpr const wchar_t* kSwizzles[] = {L"", L".x", L".xy", L".xyz", L""};
  return kSwizzles[componentCount(type)];
}

/// Elements of one buffer in, elements of another out.
class ComputeEntry : public StageEntry {
public:
  using StageEntry::StageEntry;

  void writeHeader(ShaderText& out) const override { out.write(L"#define SFG_COMPUTE 1\n"); }

  void writeStart(ShaderText& out) const override {
    writeElements(out);
    writeBuffers(out);
    out.writef(L"[numthreads(%Iu, 1, 1)]\nvoid %s(uint3 sfg_thread : SV_DispatchThreadID)\n{\n", kGroupSize,
               plan().entryPoint);
    out.write(L"    uint sfg_count;\n"
              L"    uint sfg_stride;\n"
              L"    sfg_outputs.GetDimensions(sfg_count, sfg_stride);\n"
              L"    if (sfg_thread.x >= sfg_count)\n"
              L"        return;\n");
    if (hasInput()) out.write(L"    sfg_ComputeInput sfg_in = sfg_inputs[sfg_thread.x];\n");
    out.write(L"    sfg_ComputeOutput sfg_out;\n");
  }

  void writeEnd(ShaderText& out) const override { out.write(L"    sfg_outputs[sfg_thread.x] = sfg_out;\n"); }

  WString varyingValue(const Varying& varying) const override {
    return L"sfg_in." + varying.name + narrowing(varying.type) +
           (varying.type == TypeID_bool ? L" != 0" : L"");
  }

  bool needsLocal(const Port& output) const override {
    return output.type == TypeID_bool || isMatrix(output.type) || componentCount(output.type) != 4;
  }

  WString resultValue(const Port& output, const WString& row) const override {
    WString wide = wideType(output.type).toString() + L"(" + row;
    for (std::size_t i = output.type.word(1); i < 4; ++i) wide += isInteger(output.type) ? L", 0" : L", 0.0";
    return wide + L")";
  }

private:
  bool hasInput() const { return !plan().varyings.empty(); }

  void writeElements(ShaderText& out) const {
    if (hasInput()) {
      out.write(L"\nstruct sfg_ComputeInput\n{\n");
      for (const Varying& varying : plan().varyings) {
        out.writef(L"    %s %s;\n", wideType(varying.type).toString(), varying.name);
      }
      out.write(L"};\n");
    }
    out.write(L"\nstruct sfg_ComputeOutput\n{\n");
    for (const Port& output : plan().outputs) {
      for (std::size_t row = 0; row < rowCount(output.type); ++row) {
        out.writef(L"    %s %s;\n", wideType(output.type).toString(), rowName(output, row));
      }
    }
    out.write(L"};\n\n");
  }

  void writeBuffers(ShaderText& out) const {
    if (hasInput()) {
      out.writef(L"StructuredBuffer<sfg_ComputeInput> sfg_inputs : register(t%Iu);\n",
                 plan().textures.size());
    }
    out.write(L"RWStructuredBuffer<sfg_ComputeOutput> sfg_outputs : register(u0);\n\n");
  }
};

}  // namespace

std::unique_ptr<StageEntry> makeComputeEntry(const ShaderPlan& plan) {
  return std::make_unique<ComputeEntry>(plan);
}

}  // namespace TolmSDK::Graphics::sfg::host
