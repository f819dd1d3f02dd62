#include "host/diagnostics/include_warnings.h"

#include <algorithm>
#include <optional>

#include "host/diagnostics/include_namer.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Of files that are missing; the others are counted.
constexpr std::size_t kMostTold = 1000;

class IncludeCheck {
public:
  explicit IncludeCheck(const CollapseJob& job) : job_(job), libraries_(job.libraries()), namers_(job) {
    for (const auto& [name, file] : libraries_.includeFiles().files()) known_.push_back(toUtf8(name));
  }

  std::vector<Diagnostic> run() {
    std::vector<Diagnostic> warnings;
    for (const WString& name : namers_.names()) {
      tellNameless(name, warnings);
      if (!libraries_.includes().getIncludeContent(name.c_str()).empty()) continue;
      const IncludeFiles::File* const file = libraries_.includeFiles().find(name);
      if (file == nullptr) {
        if (++missing_ <= kMostTold) warnings.push_back(missing(name));
      } else if (!file->fault.empty()) {
        warnings.push_back(diagnose(Finding::unreadableInclude, Severity::warning, file->path, {},
                                    "the include file cannot be read: " + file->fault + namedBy(name)));
      } else if (file->includes.empty()) {
        warnings.push_back(diagnose(Finding::emptyInclude, Severity::warning, file->path, {},
                                    "the include file is empty" + namedBy(name)));
      }
    }
    if (missing_ > kMostTold) {
      warnings.push_back(diagnose(Finding::missingInclude, Severity::warning, job_.document().file(), {},
                                  "the result includes " + std::to_string(missing_ - kMostTold) +
                                      " more files that are in no include folder"));
    }
    return warnings;
  }

private:
  void tellNameless(const WString& name, std::vector<Diagnostic>& warnings) const {
    const IncludeFiles::File* const file = libraries_.includeFiles().find(name);
    if (file == nullptr) return;
    for (const IncludeFiles::Nameless& line : file->nameless)
      warnings.push_back(
          diagnose(Finding::missingInclude, Severity::warning, file->path, line.position, line.text));
  }

  Diagnostic missing(const WString& name) const {
    const IncludeNamer namer =
        namers_.find(name).value_or(IncludeNamer{job_.document().file(), {}, "the result", {}});
    std::string meant;
    std::string text = namer.who + " includes " + inTicks(name) + ", which is in no include folder";
    if (libraries_.includeFolders().empty()) {
      text += "; none is given (see -I)";
    } else {
      meant = nearName(toUtf8(name));
      text += didYouMean(meant);
    }
    return diagnose(Finding::missingInclude, Severity::warning, namer.file, namer.position, text, meant);
  }

  std::string nearName(const std::string& name) const {
    const std::string bare = bareIncludeName(name);
    if (bare != name && libraries_.includeFiles().find(fromUtf8(bare)) != nullptr) return bare;
    return std::string(nearestName(bare, known_));
  }

  std::string namedBy(const WString& name) const {
    const std::optional<IncludeNamer> namer = namers_.find(name);
    return namer ? "; " + namer->who + " includes it" : std::string();
  }

  const CollapseJob& job_;
  const LoadedLibraries& libraries_;
  const IncludeNamers namers_;
  std::vector<std::string> known_;  ///< include files
  std::size_t missing_ = 0;
};

}  // namespace

std::vector<Diagnostic> findIncludeWarnings(const CollapseJob& job) { return IncludeCheck(job).run(); }

}  // namespace TolmSDK::Graphics::sfg::host
