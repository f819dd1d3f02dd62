#pragma once

// Lints of libraries that a test writes down.

#include "host/lints/lints.h"
#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {

/// Each test has a folder of its own, which is library and include folder.
class LintFixture : public JobFixture {
protected:
  /// The lints of the folder, a line each: "lib.fraglib:1:2: text [identifier]".
  std::string lints() const { return linesOf(lintLibraries(*load())); }
  /// The same of a library of these fragments.
  std::string lintsOf(const std::string& fragments) const {
    writeLibrary("{ " + fragments + " }");
    return lints();
  }
  std::string lintsOfGraph(const std::string& graph) const {
    return linesOf(lintGraph(*load(), Document::fromText(graph, "graph.json")));
  }

private:
  std::string linesOf(const std::vector<Diagnostic>& lints) const {
    std::string text;
    for (const Diagnostic& lint : lints) {
      text += lint.severity == Severity::warning ? std::string() : "not a warning: ";
      text += lint.place() + ": " + lint.text + " [" + lint.identifier + "]\n";
    }
    const std::string folder = folder_.string() + "/";
    for (std::size_t at = text.find(folder); at != text.npos; at = text.find(folder))
      text.erase(at, folder.size());
    return text;
  }
};

}  // namespace TolmSDK::Graphics::sfg::host
