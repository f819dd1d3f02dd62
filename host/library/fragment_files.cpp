#include "host/library/fragment_files.h"

#include "sfg/host/errors.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

std::string FragmentFiles::Entry::place() const { return InputError(file, position, std::string()).place(); }

void FragmentFiles::addFile(const WString& file) { files_.push_back(toUtf8(file)); }

void FragmentFiles::addFragment(const WString& file, const WString& name, const IObjectDataNode& object) {
  const IObjectDataNode* const description = object.member(L"description");
  entries_.insert_or_assign(name, Entry{toUtf8(file), object.position(),
                                        description != nullptr ? description->asString() : WString()});
}

const FragmentFiles::Entry* FragmentFiles::find(const WString& fragment) const {
  const auto found = entries_.find(fragment);
  return found != entries_.end() ? &found->second : nullptr;
}

}  // namespace TolmSDK::Graphics::sfg::host
