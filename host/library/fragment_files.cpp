#include "host/library/fragment_files.h"

#include "host/documents/input_error.h"
#include "text/ascii.h"
#include "tolmsdk/files.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kExtension = L"fraglib";

}  // namespace

std::string FragmentFiles::Entry::place() const { return InputError(file, position, std::string()).place(); }

FragmentFiles::FragmentFiles(const std::vector<std::string>& folders) {
  for (const std::string& folder : folders) {
    for (const std::string& file : fragmentLibraryFiles(folder)) {
      const RefPtr<IObjectDataNode> document(createJsonNode());
      if (!document->loadFromFile(fromUtf8(file))) continue;
      for (std::size_t i = 0; i < document->size(); ++i) {
        const IObjectDataNode* const fragment = document->element(i);
        if (fragment == nullptr || document->kind() != NodeKind::object) continue;
        const IObjectDataNode* const description = fragment->member(L"description");
        entries_.insert_or_assign(
            document->memberName(i),
            Entry{file, fragment->position(), description != nullptr ? description->asString() : WString()});
      }
    }
  }
}

const FragmentFiles::Entry* FragmentFiles::find(const WString& fragment) const {
  const auto found = entries_.find(fragment);
  return found != entries_.end() ? &found->second : nullptr;
}

std::vector<std::string> fragmentLibraryFiles(const std::string& folder) {
  std::vector<std::string> files;
  for (const WString& path : EnumFiles(fromUtf8(folder))) {
    if (equalsIgnoringCase(GetExtension(path), kExtension)) files.push_back(toUtf8(path));
  }
  return files;
}

}  // namespace TolmSDK::Graphics::sfg::host
