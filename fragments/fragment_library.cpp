#include "sfg/fragment_library.h"

#include <string_view>

#include "sfg/shader_fragment_profile_metasl.h"
#include "sfg/shader_includes.h"
#include "text/ascii.h"
#include "tolmsdk/debug_log.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/files.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {
namespace {

constexpr std::wstring_view kInclude = L"include:";
constexpr std::wstring_view kPredefine = L"predefine:";
constexpr std::wstring_view kNonConsolidatable = L"nonconsolidatable";

bool isLibraryFile(std::wstring_view path) { return equalsIgnoringCase(GetExtension(path), L"fraglib"); }

WString textOf(const wchar_t* text) { return text == nullptr ? WString() : WString(text); }

/// Reads the library files' fragments and hands each that loads to the library; the others are told, in lines
/// of a fixed form and one more each that says where and why.
class LibraryFileLoader {
public:
  LibraryFileLoader(FragmentLibrary& library, const WString& path, const FragmentLoading& loading)
      : library_(library), path_(path), loading_(loading) {}

  void load() const {
    if (loading_.onFile) loading_.onFile(path_);
    const RefPtr<IObjectDataNode> document(createJsonNode());
    const WString* const text = loading_.textOf ? loading_.textOf(path_) : nullptr;
    load(*document, text != nullptr ? document->loadFromText(*text) : document->loadFromFile(path_));
  }

  void loadText(std::wstring_view text) const {
    if (loading_.onFile) loading_.onFile(path_);
    const RefPtr<IObjectDataNode> document(createJsonNode());
    load(*document, document->loadFromText(text));
  }

private:
  void load(const IObjectDataNode& root, bool isRead) const {
    if (!isRead) return failFile(root.getLoadError());
    if (root.kind() != NodeKind::object) return failFile(L"a fragment library is an object of fragments");
    for (std::size_t i = 0, count = root.size(); i < count; ++i) {
      // Null is passed over, unless somebody wants to know.
      const IObjectDataNode* const node = loading_.onFailure ? root.elementOrNull(i) : root.element(i);
      if (node != nullptr) loadFragment(root.memberName(i), *node, i);
    }
  }

  void loadFragment(const WString& name, const IObjectDataNode& node, std::size_t index) const {
    if (loading_.isFragment && !loading_.isFragment(name)) return;
    if (loading_.onFragment) loading_.onFragment(path_, name, node);
    const auto fragment = makeRef<AShaderFragment>();
    ShaderIncludes& includes =
        loading_.includes != nullptr ? *loading_.includes : ShaderIncludes::Singleton();
    try {
      if (!fragment->load(&node, includes)) return logFragment(index);
    } catch (const Exception& error) {
      if (loading_.onFailure) {
        loading_.onFailure({path_, &name, &node, fragment->getLoadError(), error.getMessage()});
        return;
      }
      logFragment(index);
      log(L"Error: %s", error.getMessage());
      const TextPosition place = node.position();
      log(L"%s:%Iu:%Iu: fragment \"%s\": %s%s%s", path_, place.line, place.column, name,
          fragment->getLoadError(), fragment->getLoadError().empty() ? L"" : L": ", error.getMessage());
      return;
    }
    fragment->key() = name;
    library_.registerResource(name, fragment.get());
    if (loading_.onLoaded) loading_.onLoaded(node, *fragment);
  }

  void failFile(std::wstring_view reason) const {
    if (!loading_.onFailure) return logFile(reason);
    loading_.onFailure({path_, nullptr, nullptr, std::wstring_view(), reason});
  }

  void logFile(std::wstring_view reason) const {
    log(L"sfgError : Failed to load json file: %s!", path_);
    log(L"%s: %s", path_, reason);
  }
  void logFragment(std::size_t index) const {
    log(L"sfgError : Failed to load fragment %s: %d!", path_, index);
  }

  template <class... Arguments>
  void log(std::wstring_view format, const Arguments&... arguments) const {
    if (!loading_.onProblem) return debugLog(format, arguments...);
    loading_.onProblem(formatted(format, arguments...));
  }

  FragmentLibrary& library_;
  const WString& path_;
  const FragmentLoading& loading_;
};

void applyOption(std::wstring_view option, AShaderFragment& fragment, AShaderFragmentProfile& profile) {
  if (option.starts_with(kInclude)) {
    profile.includes().insert(WString(option.substr(kInclude.size())));
  } else if (option.starts_with(kPredefine)) {
    profile.predefines() += option.substr(kPredefine.size());
  } else if (option == kNonConsolidatable) {
    fragment.SetNonConsolidatable();
  }
}

}  // namespace

FragmentLibrary::FragmentLibrary() = default;
FragmentLibrary::~FragmentLibrary() = default;

bool FragmentLibrary::loadFragments(const wchar_t* folder) {
  return loadFragments(folder, FragmentLoading());
}

bool FragmentLibrary::loadFragments(const wchar_t* folder, const FragmentLoading& loading) {
  if (folder == nullptr) return true;
  for (const WString& path : EnumFiles(folder))
    if (isLibraryFile(path)) LibraryFileLoader(*this, path, loading).load();
  return true;
}

void FragmentLibrary::loadText(const WString& name, std::wstring_view text, const FragmentLoading& loading) {
  LibraryFileLoader(*this, name, loading).loadText(text);
}

bool FragmentLibrary::addFragment(const wchar_t* name, const wchar_t* prototype, const wchar_t* body,
                                  const wchar_t* const* options, int numOptions) {
  const auto fragment = makeRef<AShaderFragment>();
  fragment->key() = textOf(name);

  const auto profile = makeRef<AShaderFragmentProfileMetaSL>();
  profile->setLOD(100.0f);
  profile->setProfilename(WString(L"default"));
  profile->languages().insert(UString(L"dx11"));
  profile->setFunctionPrototype(textOf(prototype));
  profile->setFunctionBody(textOf(body));
  profile->addMetaSLRequirements();
  for (int i = 0; options != nullptr && i < numOptions; ++i)
    if (options[i] != nullptr) applyOption(options[i], *fragment, *profile);
  profile->stateVariables().insert(StateVariable_matViewProj);

  fragment->registerProfile(profile.get());
  registerResource(fragment->key(), fragment.get());
  return true;
}

const IShaderFragment* FragmentLibrary::acquireFragment(const wchar_t* name) const {
  return dynamic_cast<const IShaderFragment*>(acquireResource(textOf(name)));
}

}  // namespace TolmSDK::Graphics::sfg
