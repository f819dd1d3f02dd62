#pragma once

// What the host library throws. Whatever is thrown, the object asked stays as it was.
//
// Besides these, std::bad_alloc passes through: wherever memory runs out in a job that reads, collapses,
// warns or assembles. While a folder is listed, JSON is written (the hash of an interface is made of it) or a
// compiler runs, libraries below this one may end the process instead.

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "sfg/host/diagnostic.h"
#include "sfg/host/export.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

/// An input that cannot be used: a file, the place in it (zero where there is none) and what was expected.
/// Texts are UTF-8.
class SFG_HOST_API InputError : public std::runtime_error {
public:
  InputError(std::string file, TextPosition position, const std::string& reason,
             std::string identifier = "failure");
  /// A wrong argument ("wrong-usage"): no file.
  explicit InputError(const std::string& reason);
  ~InputError() override;

  /// Empty when no file is at fault.
  const std::string& file() const noexcept { return file_; }
  TextPosition position() const noexcept { return position_; }
  /// "graph.json:3:14", "graph.json", or empty: how a diagnostic starts.
  std::string place() const;
  /// One of diagnosticKinds().
  const std::string& identifier() const noexcept { return identifier_; }
  /// The same as data.
  Diagnostic diagnostic() const;
  /// What was found in the same document before, and may be why. Lives as long as the error.
  std::span<const Diagnostic> related() const noexcept { return related_; }
  void setRelated(std::vector<Diagnostic> related) { related_ = std::move(related); }
  /// What diagnostic() suggests.
  void setSuggestion(std::string suggestion) { suggestion_ = std::move(suggestion); }

private:
  std::string file_;
  TextPosition position_;
  std::string identifier_;
  std::vector<Diagnostic> related_;
  std::string suggestion_;
};

/// A graph that cannot be collapsed. what() is the generator's message; the diagnostics name the places in
/// the documents, each cause in front of what follows from it, and quote the message.
class SFG_HOST_API CollapseError : public std::runtime_error {
public:
  enum class Reason {
    refused,           ///< the generator threw
    noResult,          ///< the generator answered null: an output cannot be evaluated
    calledExpression,  ///< inline expressions are wired to inputs that are called as functions
  };

  CollapseError(Reason reason, const std::string& what, std::vector<Diagnostic> diagnostics);
  ~CollapseError() override;

  Reason reason() const noexcept { return reason_; }
  /// Lives as long as the error.
  std::span<const Diagnostic> diagnostics() const noexcept { return diagnostics_; }

private:
  Reason reason_;
  std::vector<Diagnostic> diagnostics_;
};

/// A result that cannot become a complete shader of the stage.
class SFG_HOST_API AssemblyError : public std::runtime_error {
public:
  explicit AssemblyError(const std::string& reason);
  ~AssemblyError() override;
};

/// A value of a shader cannot be set, or its buffer not be filled.
class SFG_HOST_API PackError : public std::runtime_error {
public:
  explicit PackError(const std::string& reason);
  ~PackError() override;
};

/// One complaint of a compiler.
struct CompilerMessage {
  std::size_t line = 0;  ///< of the text compiled, counted from 1; zero when unknown
  std::string text;
  std::size_t column = 0;  ///< in code points, counted from 1; zero when unknown
};

/// A compiler refused a text: the assembled shader, or (then a defect here or in a compiler) what was made of
/// it; or a compiler failed, or there is none.
class SFG_HOST_API CompileError : public std::runtime_error {
public:
  CompileError(const std::string& reason, std::vector<CompilerMessage> messages, bool inAssembledText);
  ~CompileError() override;

  const std::vector<CompilerMessage>& messages() const noexcept { return messages_; }
  /// Whether the messages' lines are lines of the assembled shader.
  bool inAssembledText() const noexcept { return inAssembledText_; }

private:
  std::vector<CompilerMessage> messages_;
  bool inAssembledText_;
};

}  // namespace TolmSDK::Graphics::sfg::host
