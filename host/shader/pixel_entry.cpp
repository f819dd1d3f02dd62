#include "host/shader/stage_entry.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Attributes in, render targets out.
class PixelEntry : public StageEntry {
public:
  using StageEntry::StageEntry;

  void writeStart(ShaderText& out) const override {
    writeInput(out);
    writeOutput(out);
    out.writef(L"\nsfg_PixelOutput %s(%s)\n{\n", plan().entryPoint,
               plan().varyings.empty() ? L"" : L"sfg_PixelInput sfg_in");
    out.write(L"    sfg_PixelOutput sfg_out;\n");
  }

  void writeEnd(ShaderText& out) const override { out.write(L"    return sfg_out;\n"); }

  WString varyingValue(const Varying& varying) const override {
    const WString value = L"sfg_in." + varying.name;
    return varying.type == TypeID_bool && !isSystemBool(varying) ? value + L" != 0" : value;
  }

  bool needsLocal(const Port& output) const override {
    return output.type == TypeID_bool || isMatrix(output.type);
  }

  WString resultValue(const Port&, const WString& row) const override { return row; }

private:
  static bool isSystemBool(const Varying& varying) { return varying.semantic == L"SV_IsFrontFace"; }

  void writeInput(ShaderText& out) const {
    if (plan().varyings.empty()) return;
    out.write(L"\nstruct sfg_PixelInput\n{\n");
    for (const Varying& varying : plan().varyings) {
      const bool isWhole = isInteger(varying.type) && !isSystemBool(varying);
      const TypeID& type = isSystemBool(varying) ? TypeID_bool : carrierType(varying.type);
      out.writef(L"    %s%s %s : %s;\n", isWhole ? L"nointerpolation " : L"", type.toString(), varying.name,
                 varying.semantic);
    }
    out.write(L"};\n");
  }

  void writeOutput(ShaderText& out) const {
    out.write(L"\nstruct sfg_PixelOutput\n{\n");
    std::size_t target = 0;
    for (const Port& output : plan().outputs) {
      for (std::size_t row = 0; row < rowCount(output.type); ++row) {
        out.writef(L"    %s %s : SV_Target%Iu;\n", rowType(output.type).toString(), rowName(output, row),
                   target++);
      }
    }
    out.write(L"};\n");
  }
};

}  // namespace

std::unique_ptr<StageEntry> makePixelEntry(const ShaderPlan& plan) {
  return std::make_unique<PixelEntry>(plan);
}

}  // namespace TolmSDK::Graphics::sfg::host
