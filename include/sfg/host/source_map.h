#pragma once

// From places in a complete shader back to the files that its text comes from.

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "sfg/host/export.h"

namespace TolmSDK::Graphics::sfg::host {

class CollapseJob;
struct AssembledShader;

/// A node, light or fragment of a chain, and where its document names it. Texts are UTF-8.
struct SourceUser {
  std::string kind;  ///< "node", "light", "preprocess", "postprocess", "output"
  std::string name;  ///< of the node or light; else of the fragment
  std::string file;  ///< of the document
  std::size_t line = 0;
  std::size_t column = 0;
};

/// Where a piece of a shader comes from. Lines and columns are counted from 1, columns in code points; zero
/// where they are not known.
struct SourcePlace {
  enum class Kind {
    unknown,         ///< outside the shader
    implementation,  ///< the "implementation" of a fragment's profile
    predefine,       ///< its "predefine"
    include,         ///< an include file
    node,            ///< the use of a fragment: its node or light
    input,           ///< an input of a node: the wire, or the node when nothing is wired to it
    assembly,        ///< what is put around the function: structures, buffers, the entry point
  };
  Kind kind = Kind::unknown;
  /// The library, include or document file, or the name of a document in memory; empty where there is none.
  std::string file;
  std::size_t line = 0;
  std::size_t column = 0;
  /// The very character: of this token, under its own name or another. Otherwise it is what the text was put
  /// in for: the use that became a call, the call that became a value, the function that was given
  /// parameters.
  bool isExact = false;
  std::string token;     ///< as the source spells it; empty for nodes, inputs and assembly
  std::string fragment;  ///< whose code or use it is; empty for includes and assembly
  std::string input;     ///< of the kind `input`: its name
  /// Who uses the code; the first is the one for which it was written. Several nodes share equal code.
  std::vector<SourceUser> users;

  /// "lib.fraglib:12:7"
  SFG_HOST_API std::string place() const;
};

/// The origins of one assembled shader. Made by Job::mapSources(), complete by then: it neither reads files
/// nor needs the job any more, and says what files were when the library set was loaded. Immutable; any
/// number of threads may ask at once. Making it takes time in proportion to the shader and the files in use.
class SFG_HOST_API SourceMap {
public:
  SourceMap(SourceMap&& other) noexcept;
  SourceMap& operator=(SourceMap&& other) noexcept;
  ~SourceMap();

  /// The place of a character of the shader's text, both counted from 1, columns in code points. Blanks and
  /// comments are where the next token of their part of the shader is.
  SourcePlace find(std::size_t line, std::size_t column) const;

  /// The first bracket that is not closed, or closes nothing, and the first comment that is not closed, in
  /// the code of the fragments in use and in the include files: compilers tell such mistakes far behind them.
  /// The kind is unknown when there is none; the token is the bracket or "/*".
  const SourcePlace& findUnbalanced() const;

  /// For this library's own use. The assembled shader is the job's.
  SourceMap(const CollapseJob& job, const AssembledShader& assembled);

private:
  struct SFG_HOST_LOCAL Impl;
  std::unique_ptr<const Impl> impl_;
};

}  // namespace TolmSDK::Graphics::sfg::host
