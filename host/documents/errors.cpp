#include "sfg/host/errors.h"

#include "host/documents/diagnostic_kinds.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::string placeOf(const std::string& file, std::size_t line, std::size_t column) {
  if (file.empty() || line == 0) return file;
  const std::string place = file + ":" + std::to_string(line);
  return column == 0 ? place : place + ":" + std::to_string(column);
}

}  // namespace

std::string Diagnostic::place() const { return placeOf(file, line, column); }

InputError::InputError(std::string file, TextPosition position, const std::string& reason,
                       std::string identifier)
    : std::runtime_error(reason), file_(std::move(file)), position_(position),
      identifier_(std::move(identifier)) {}
InputError::InputError(const std::string& reason)
    : InputError(std::string(), TextPosition(), reason, std::string(identifierOf(Finding::wrongUsage))) {}
InputError::~InputError() = default;

std::string InputError::place() const { return placeOf(file_, position_.line, position_.column); }

Diagnostic InputError::diagnostic() const {
  return {Severity::error, file_, position_.line, position_.column, what(), identifier_, suggestion_};
}

CollapseError::CollapseError(Reason reason, const std::string& what, std::vector<Diagnostic> diagnostics)
    : std::runtime_error(what), reason_(reason), diagnostics_(std::move(diagnostics)) {}
CollapseError::~CollapseError() = default;

AssemblyError::AssemblyError(const std::string& reason) : std::runtime_error(reason) {}
AssemblyError::~AssemblyError() = default;

PackError::PackError(const std::string& reason) : std::runtime_error(reason) {}
PackError::~PackError() = default;

CompileError::CompileError(const std::string& reason, std::vector<CompilerMessage> messages,
                           bool inAssembledText)
    : std::runtime_error(reason), messages_(std::move(messages)), inAssembledText_(inAssembledText) {}
CompileError::~CompileError() = default;

}  // namespace TolmSDK::Graphics::sfg::host
