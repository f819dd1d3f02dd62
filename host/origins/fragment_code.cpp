#include "host/origins/fragment_code.h"

#include <algorithm>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

struct FragmentCodes::File {
  explicit File(const std::string& text) : places(text), document(createJsonNode()) {
    document->loadFromText(fromUtf8(text));
  }
  JsonPlaces places;
  RefPtr<IObjectDataNode> document;
};

namespace {

void addLine(FragmentCode& code, const IObjectDataNode& line) {
  code.starts.push_back(code.text.size());
  code.literals.push_back(line.position());
  code.text += line.asString();
  code.text += L'\n';
}

}  // namespace

std::vector<const IObjectDataNode*> profileObjects(const IObjectDataNode& fragment) {
  std::vector<const IObjectDataNode*> profiles;
  if (const IObjectDataNode* const list = fragment.member(L"profiles")) {
    for (std::size_t i = 0; i < list->size(); ++i)
      if (const IObjectDataNode* const profile = list->element(i)) profiles.push_back(profile);
  }
  if (profiles.empty()) profiles.push_back(&fragment);
  return profiles;
}

std::unique_ptr<FragmentCode> readCode(const IObjectDataNode& fragment, const IObjectDataNode& profile,
                                       CodePart part, const std::string& file, const JsonPlaces& places) {
  const IObjectDataNode* const lines =
      profile.member(part == CodePart::predefine ? L"predefine" : L"implementation");
  if (lines == nullptr) return nullptr;

  auto code = std::make_unique<FragmentCode>();
  code->file = &file;
  code->places = &places;
  code->profile = profile.position();
  code->fragment = fragment.position();
  if (lines->kind() == NodeKind::string) addLine(*code, *lines);
  for (std::size_t i = 0; i < lines->size(); ++i)
    if (const IObjectDataNode* const line = lines->element(i)) addLine(*code, *line);
  code->tokens = tokensOf(code->text);
  return code;
}

TextPosition FragmentCode::placeOf(std::size_t offset) const {
  const auto next = std::upper_bound(starts.begin(), starts.end(), offset);
  if (next == starts.begin()) return profile;
  const auto line = static_cast<std::size_t>(next - starts.begin()) - 1;
  return places->inString(literals[line], offset - starts[line]);
}

const FragmentCodes::File* FragmentCodes::fileOf(const std::string& name) {
  const auto found = files_.find(name);
  if (found != files_.end()) return found->second.get();
  const std::string* const text = libraries_.texts().find(name);
  std::shared_ptr<const File> file;
  if (text != nullptr) {
    file = std::static_pointer_cast<const File>(
        libraries_.derived(name, [text] { return std::make_shared<const File>(*text); }));
  }
  return files_.emplace(name, std::move(file)).first->second.get();
}

const FragmentCode* FragmentCodes::find(const WString& fragment, std::size_t index, CodePart part) {
  const auto [place, isNew] = codes_.try_emplace({fragment, index, part});
  if (isNew) place->second = read(fragment, index, part);
  return place->second.get();
}

std::unique_ptr<FragmentCode> FragmentCodes::read(const WString& fragment, std::size_t index, CodePart part) {
  const FragmentFiles::Entry* const entry = libraries_.files().find(fragment);
  const File* const file = entry != nullptr ? fileOf(entry->file) : nullptr;
  const IObjectDataNode* const object = file != nullptr ? file->document->member(fragment) : nullptr;
  if (object == nullptr) return nullptr;
  const std::vector<const IObjectDataNode*> profiles = profileObjects(*object);
  if (index >= profiles.size()) return nullptr;
  return readCode(*object, *profiles[index], part, entry->file, file->places);
}

}  // namespace TolmSDK::Graphics::sfg::host
