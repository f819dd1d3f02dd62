#include "host/diagnostics/include_warnings.h"

#include <algorithm>
#include <optional>

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Who names an include file, and where.
struct Namer {
  std::string file;
  TextPosition position;
  std::string who;  ///< "fragment `noise`"
};

class IncludeCheck {
public:
  explicit IncludeCheck(const CollapseJob& job) : job_(job), libraries_(job.libraries()) {
    libraries_.includes().createFlatIncludeArray(names_, done_, job.result()->getProfile(0)->includes());
  }

  std::vector<Diagnostic> run() const {
    std::vector<Diagnostic> warnings;
    for (const WString& name : names_) {
      if (!libraries_.includes().getIncludeContent(name.c_str()).empty()) continue;
      const IncludeFiles::File* const file = libraries_.includeFiles().find(name);
      if (file == nullptr) {
        warnings.push_back(missing(name));
      } else if (!file->fault.empty()) {
        warnings.push_back(diagnose(Finding::unreadableInclude, Severity::warning, file->path, {},
                                    "the include file cannot be read: " + file->fault + namedBy(name)));
      } else if (file->includes.empty()) {
        warnings.push_back(diagnose(Finding::emptyInclude, Severity::warning, file->path, {},
                                    "the include file is empty" + namedBy(name)));
      }
    }
    return warnings;
  }

private:
  Diagnostic missing(const WString& name) const {
    const Namer namer = findNamer(name).value_or(Namer{job_.document().file(), {}, "the result"});
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
    std::vector<std::string> known;
    for (const auto& [other, file] : libraries_.includeFiles().files()) known.push_back(toUtf8(other));
    return std::string(nearestName(name, known));
  }

  std::string namedBy(const WString& name) const {
    const std::optional<Namer> namer = findNamer(name);
    return namer ? "; " + namer->who + " includes it" : std::string();
  }

  /// The first fragment of the collapse that names it, or the first include file.
  std::optional<Namer> findNamer(const WString& name) const {
    const AShaderFragmentGraph& graph = *job_.graph();
    std::optional<Namer> found;
    const auto look = [&](const IShaderFragment* fragment) {
      if (!found && fragment != nullptr) found = namerIn(*fragment, name);
    };
    for (std::size_t i = 0; i < graph.getNumFragments(); ++i) look(graph.getFragment(i));
    for (std::size_t i = 0; i < graph.getNumPostprocessFragments(); ++i)
      look(graph.getPostprocessFragment(i));
    for (const ShadingEnvironment::Light& light : job_.environment().lights()) look(light.fragment.get());
    look(job_.environment().getOutputFragment());
    if (found) return found;

    for (const WString& other : names_) {
      const IncludeFiles::File* const file = libraries_.includeFiles().find(other);
      if (file == nullptr) continue;
      for (const IncludeFiles::Named& named : file->includes) {
        if (named.name == name) return Namer{file->path, named.position, "this include file"};
      }
    }
    return std::nullopt;
  }

  std::optional<Namer> namerIn(const IShaderFragment& fragment, const WString& name) const {
    const FragmentFiles::Entry* const entry = libraries_.files().find(fragment.key());
    if (entry == nullptr) return std::nullopt;
    const std::string who = "fragment " + inTicks(fragment.key());
    for (const FragmentFiles::NamedPlace& include : entry->includes) {
      if (include.name == name) return Namer{entry->file, include.position, who};
    }
    // Some kinds of code include what their text does not name.
    for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
      if (fragment.getProfile(i)->includes().contains(name)) return Namer{entry->file, entry->position, who};
    }
    return std::nullopt;
  }

  const CollapseJob& job_;
  const LoadedLibraries& libraries_;
  Array<WString> names_;
  Set<WString> done_;
};

}  // namespace

std::vector<Diagnostic> findIncludeWarnings(const CollapseJob& job) { return IncludeCheck(job).run(); }

}  // namespace TolmSDK::Graphics::sfg::host
