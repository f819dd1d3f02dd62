#include "host/job/collapse_job.h"

#include <filesystem>
#include <mutex>

#include "host/documents/document_reader.h"
#include "host/job/called_expressions.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_collapse_tool_light_loop.h"
#include "sfg/shader_includes.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

void requireFolder(const std::string& folder) {
  std::error_code error;
  if (std::filesystem::is_directory(folder, error)) return;
  throw InputError(std::filesystem::exists(folder, error) ? "`" + folder + "` is not a folder"
                                                          : "the folder `" + folder + "` does not exist");
}

/// Once per process and folder: registered again, every file would hold its text twice.
void registerIncludeFolder(const std::string& folder) {
  static std::mutex mutex;
  static Set<std::string> registered;
  std::error_code error;
  const std::filesystem::path canonical = std::filesystem::canonical(folder, error);
  const std::lock_guard lock(mutex);
  if (!registered.insert(error ? folder : canonical.string()).second) return;
  ShaderIncludes::Singleton().addIncludePath(fromUtf8(folder).c_str());
}

void requireLanguage(const std::string& language) {
  const std::string known = toUtf8(LanguageDx11::kName);
  if (language != known) throw InputError("unknown language `" + language + "`; known is `" + known + "`");
}

template <class Tool>
RefPtr<IShaderFragment> collapseWith(const CollapseSettings& settings, const AShaderFragmentGraph& graph,
                                     const ShadingEnvironment& environment, const ShaderOptions& options,
                                     const LanguageDx11& language) {
  const RefPtr<Tool> tool = makeRef<Tool>();
  if (!settings.functionName.empty()) tool->setCollpaseFunctionName(fromUtf8(settings.functionName));
  if (!settings.profileName.empty()) tool->setCollapseProfileName(fromUtf8(settings.profileName));
  return RefPtr<IShaderFragment>(tool->collapse(&graph, &environment, &options, &language));
}

}  // namespace

LoadedLibraries::LoadedLibraries(const std::vector<std::string>& libraryFolders,
                                 const std::vector<std::string>& includeFolders,
                                 const std::string& language) {
  requireLanguage(language);
  for (const std::string& folder : libraryFolders) requireFolder(folder);
  for (const std::string& folder : includeFolders) requireFolder(folder);

  // Includes first: a fragment's hash string holds those of its include files.
  for (const std::string& folder : includeFolders) registerIncludeFolder(folder);
  for (const std::string& folder : libraryFolders) library_.loadFragments(fromUtf8(folder).c_str());
  language_ = makeRef<LanguageDx11>(&library_);
}

CollapseJob::CollapseJob(const CollapseSettings& settings)
    : settings_(settings), libraries_(settings.libraryFolders, settings.includeFolders, settings.language) {
  const LanguageDx11& language = libraries_.language();
  document_ = loadGraphDocument(settings.graphFile, language);
  environment_ = settings.environmentFile.empty() ? makeRef<ShadingEnvironment>()
                                                  : loadEnvironment(settings.environmentFile, language);
  options_ = makeRef<ShaderOptions>(language.getLanguageString(), settings.surfaceLod, settings.lightLod,
                                    environment_.get());
}

void CollapseJob::run() {
  const LanguageDx11& language = libraries_.language();
  graph_ = buildGraph(*document_, language);
  if (std::vector<CalledExpression> wires = findCalledExpressions(*this); !wires.empty()) {
    throw CalledExpressionError(std::move(wires));
  }
  result_ =
      settings_.tool == CollapseTool::lightLoop
          ? collapseWith<AShaderCollapseToolLightLoop>(settings_, *graph_, *environment_, *options_, language)
          : collapseWith<AShaderCollapseToolDefault>(settings_, *graph_, *environment_, *options_, language);
}

}  // namespace TolmSDK::Graphics::sfg::host
