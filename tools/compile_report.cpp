#include "tools/compile_report.h"

#include "host/code_origin.h"

namespace TolmSDK::Graphics::sfg::tools {

void reportCompileError(const host::CollapseJob& job, const host::AssembledShader& assembled,
                        const host::CompileError& error, host::Diagnostics& diagnostics) {
  diagnostics.error(job.document().file(), error.what());
  for (std::size_t i = 0; i < error.messages().size(); ++i) {
    const host::CompilerMessage& message = error.messages()[i];
    const bool hasLine = error.inAssembledText() && message.line != 0;
    const std::string place =
        hasLine ? "generated:" + std::to_string(message.line) : std::string("generated");
    diagnostics.error(place, message.text);
    // Where the line comes from is said once, behind all that is said about it.
    const bool moreOfTheLine =
        i + 1 < error.messages().size() && error.messages()[i + 1].line == message.line;
    if (!hasLine || moreOfTheLine) continue;
    for (const host::OriginNote& note : host::findOrigins(job, assembled, message.line)) {
      diagnostics.note(note.place.empty() ? place : note.place, note.text);
    }
  }
}

}  // namespace TolmSDK::Graphics::sfg::tools
