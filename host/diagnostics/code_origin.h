#pragma once

// From a line of a generated shader back to the fragment that it comes from.

#include <memory>
#include <string>
#include <vector>

#include "host/job/collapse_job.h"
#include "host/shader_assembly.h"

namespace TolmSDK::Graphics::sfg::host {

/// Explains lines of one assembled shader. Reads the code of the fragments once, when it is made. Refers to
/// the job and the shader.
class OriginFinder {
public:
  OriginFinder(const CollapseJob& job, const AssembledShader& assembled);
  ~OriginFinder();
  OriginFinder(const OriginFinder&) = delete;
  OriginFinder& operator=(const OriginFinder&) = delete;

  /// What line `line` (counted from 1) shows and where it comes from: the include file, or the fragments
  /// whose functions, helpers, uniforms and results it names, each with its place in a library.
  std::vector<Diagnostic> find(std::size_t line) const;

private:
  class Users;

  Diagnostic include(const WString& name) const;
  std::wstring_view lineText(std::size_t line) const;

  const CollapseJob& job_;
  const AssembledShader& assembled_;
  std::vector<std::size_t> lineStarts_;
  std::unique_ptr<const Users> users_;
};

}  // namespace TolmSDK::Graphics::sfg::host
