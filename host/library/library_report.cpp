#include "host/library/library_report.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/documents/load_error.h"
#include "host/documents/near_name.h"
#include "host/documents/shader_names.h"
#include "host/library/language_dx11.h"
#include "host/library/prototype_fault.h"
#include "host/library/string_places.h"
#include "text/ascii.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// The elements of "profiles" that count, or the fragment itself.
std::vector<const IObjectDataNode*> profilesOf(const IObjectDataNode& fragment) {
  std::vector<const IObjectDataNode*> profiles;
  const IObjectDataNode* const list = fragment.member(L"profiles");
  for (std::size_t i = 0; list != nullptr && i < list->size(); ++i) {
    if (const IObjectDataNode* const profile = list->element(i)) profiles.push_back(profile);
  }
  if (profiles.empty()) profiles.push_back(&fragment);
  return profiles;
}

/// Takes " (line 3, column 4)" from the text.
TextPosition takePlace(std::string& text) {
  constexpr std::string_view kLine = " (line ";
  constexpr std::string_view kColumn = ", column ";
  const std::size_t start = text.rfind(kLine);
  if (start == text.npos) return {};
  TextPosition position;
  const char* const end = text.data() + text.size();
  const auto line = std::from_chars(text.data() + start + kLine.size(), end, position.line);
  const std::string_view rest(line.ptr, static_cast<std::size_t>(end - line.ptr));
  if (!rest.starts_with(kColumn)) return {};
  const auto column = std::from_chars(line.ptr + kColumn.size(), end, position.column);
  if (column.ptr == end || *column.ptr != ')') return {};
  text.erase(start, static_cast<std::size_t>(column.ptr - text.data()) + 1 - start);
  return position;
}

/// A message of the generator in the form of all diagnostics: `sfgError : "lod" must be ..!`
std::string asDiagnostic(std::string text) {
  constexpr std::string_view kPrefix = "sfgError : ";
  if (text.starts_with(kPrefix)) text.erase(0, kPrefix.size());
  const std::size_t last = text.find_last_not_of(" .!");
  text.resize(last == text.npos ? 0 : last + 1);
  std::replace(text.begin(), text.end(), '"', '`');
  const auto isUpper = [&](std::size_t i) { return i < text.size() && text[i] >= 'A' && text[i] <= 'Z'; };
  if (isUpper(0) && !isUpper(1)) text[0] = static_cast<char>(text[0] - 'A' + 'a');
  return text;
}

/// The number behind `prefix` in "profile 1 (line 3, column 7)".
std::optional<std::size_t> numberBehind(std::wstring_view text, std::string_view prefix) {
  const std::string narrow = toUtf8(text);
  if (!narrow.starts_with(prefix)) return std::nullopt;
  std::size_t number = 0;
  const auto [end, error] =
      std::from_chars(narrow.data() + prefix.size(), narrow.data() + narrow.size(), number);
  if (error != std::errc()) return std::nullopt;
  return number;
}

constexpr std::string_view kModes[] = {"function", "inline", "metaSL"};

bool isMode(std::string_view mode) {
  return std::any_of(std::begin(kModes), std::end(kModes),
                     [&](std::string_view known) { return equalsIgnoringCase(mode, known); });
}

bool isInline(std::string_view mode) { return equalsIgnoringCase(mode, "inline"); }

struct PlacedFault {
  TextPosition position;
  std::string text;
};

/// Lines of code as one text, with the way back.
class JoinedLines {
public:
  explicit JoinedLines(const IObjectDataNode& code) : code_(code) {
    for (std::size_t i = 0; i < code.size(); ++i) {
      starts_.push_back(text_.size());
      text_.append(code.elementOrNull(i)->asString()).append(1, L'\n');
    }
  }
  const WString& text() const { return text_; }
  TextPosition placeOf(std::size_t index) const {
    const auto next = std::upper_bound(starts_.begin(), starts_.end(), index);
    const auto line = static_cast<std::size_t>(next - starts_.begin()) - 1;
    return positionIn(*code_.elementOrNull(line), index - starts_[line]);
  }

private:
  const IObjectDataNode& code_;
  WString text_;
  std::vector<std::size_t> starts_;
};

std::string placeholderName(std::wstring_view text) {
  const std::size_t first = text.find_first_not_of(L" \t");
  return first == text.npos ? std::string()
                            : toUtf8(text.substr(first, text.find_last_not_of(L" \t") + 1 - first));
}

bool isText(const IObjectDataNode& code) {
  if (code.kind() != NodeKind::array || code.size() == 0) return false;
  for (std::size_t i = 0; i < code.size(); ++i)
    if (code.elementOrNull(i)->kind() != NodeKind::string) return false;
  return true;
}

/// Whether it is text that begins as the generator wants it.
bool isWholeFunction(const IObjectDataNode& code) {
  return isText(code) && code.elementOrNull(0)->asString().starts_with(L"void ");
}

bool startsWithWord(std::wstring_view code) {
  return !code.empty() && ((code[0] >= L'a' && code[0] <= L'z') || (code[0] >= L'A' && code[0] <= L'Z'));
}

/// The first `{{` that no `}}` follows on its line.
std::optional<TextPosition> openPlaceholder(const IObjectDataNode& code) {
  for (std::size_t i = 0; i < code.size(); ++i) {
    const std::wstring_view text = code.elementOrNull(i)->asString();
    for (std::size_t at = text.find(L"{{"); at != text.npos; at = text.find(L"{{", at + 2)) {
      const std::size_t close = text.find(L"}}", at);
      if (close == text.npos || text.substr(at + 2, close - at - 2).find(L"{{") != text.npos)
        return positionIn(*code.elementOrNull(i), at);
    }
  }
  return std::nullopt;
}

/// Of an expression, which stands in parentheses wherever it is used: what only statements have.
std::optional<PlacedFault> findStatement(const IObjectDataNode& code) {
  const JoinedLines lines(code);
  const WString text = withBlankComments(lines.text());
  for (std::size_t at = text.find_first_of(L"{};#"); at != text.npos; at = text.find_first_of(L"{};#", at)) {
    const std::wstring_view rest = std::wstring_view(text).substr(at);
    const std::size_t close = rest.find(L'}');
    if (rest[0] == L'#') return std::nullopt;
    if (rest.starts_with(L"{{")) {
      at += rest.find(L"}}") + 2;
      continue;
    }
    const std::string name = close != rest.npos ? placeholderName(rest.substr(1, close - 1)) : std::string();
    if (rest[0] == L'{' && isIdentifier(name))
      return PlacedFault{lines.placeOf(at), "`{" + name + "}` is no placeholder; write `{{" + name + "}}`"};
    return PlacedFault{lines.placeOf(at),
                       "`" + toUtf8(rest.substr(0, 1)) + "` cannot stand in an expression"};
  }
  return std::nullopt;
}

/// Of the body, which reaches from the first `{` to the last `}` for the generator, whatever stands behind.
std::optional<PlacedFault> findBodyFault(const IObjectDataNode& code) {
  const JoinedLines lines(code);
  const WString text = withBlankComments(lines.text());
  const std::size_t last = text.find_last_not_of(L" \t\r\n");
  if (last == text.npos) return std::nullopt;
  const std::size_t open = text.find(L'{');
  if (open == text.npos) {
    return PlacedFault{lines.placeOf(last), "the function has no body: `{` is missing"};
  }
  const std::size_t close = text.rfind(L'}');
  if (close == text.npos || close < open) return PlacedFault{lines.placeOf(open), "`{` is not closed"};
  const std::size_t more = text.find_first_not_of(L" \t\r\n;", close + 1);
  if (more == text.npos) return std::nullopt;
  return PlacedFault{lines.placeOf(more),
                     "what stands behind the function's last `}` is left out; functions and declarations "
                     "beside it belong into `predefine`"};
}

/// Of the lines up to the first `{`, which are taken as one.
std::optional<PlacedFault> findPrototypeFault(const IObjectDataNode& code) {
  WString prototype;
  std::vector<std::size_t> starts;
  bool isWhole = false;
  for (std::size_t i = 0; i < code.size() && !isWhole; ++i) {
    const IObjectDataNode* const line = code.elementOrNull(i);
    if (line->kind() != NodeKind::string) return std::nullopt;
    starts.push_back(prototype.size());
    prototype += line->asString();
    isWhole = line->asString().find(L'{') != WString::npos;
  }
  if (!prototype.starts_with(L"void ")) return std::nullopt;
  PrototypeFault fault = prototypeFault(std::wstring_view(prototype).substr(0, prototype.find(L'{')));
  if (fault.text.empty()) return std::nullopt;
  const auto next = std::upper_bound(starts.begin(), starts.end(), fault.index);
  const auto element = static_cast<std::size_t>(next - starts.begin()) - 1;
  return PlacedFault{positionIn(*code.elementOrNull(element), fault.index - starts[element]),
                     std::move(fault.text)};
}

}  // namespace

void LibraryReport::startFile(const WString& file) {
  finishFile();
  file_ = toUtf8(file);
  folderFiles_.insert(file_);
  isFirst_ = true;
}

/// Its problems were found fragment by fragment.
void LibraryReport::finishFile() {
  std::stable_sort(problems_.begin() + static_cast<std::ptrdiff_t>(fileStart_), problems_.end(),
                   [](const Diagnostic& a, const Diagnostic& b) {
                     return std::pair(a.line, a.column) < std::pair(b.line, b.column);
                   });
  fileStart_ = fragmentStart_ = problems_.size();
}

void LibraryReport::tell(Finding kind, Severity severity, TextPosition position, std::string text,
                         std::string suggestion) {
  problems_.push_back(diagnose(kind, severity, file_, position, std::move(text), std::move(suggestion)));
}

void LibraryReport::addNoFile(const std::string& path, const std::string& fault) {
  problems_.push_back(
      diagnose(Finding::unreadableFile, Severity::error, path, {}, "the library cannot be read: " + fault));
  lacksFile_ = true;
}

void LibraryReport::addFragment(const WString& name, const IObjectDataNode& object) {
  if (std::exchange(isFirst_, false)) tellRepeatedMembers(object);
  fragmentStart_ = problems_.size();
  tellEarlierDefinition(name, object);
  failures_.erase(name);
  faults_.erase(name);
  fragment_ = name;
  unknownKeys_ = findUnknownKeys(object, fragmentKeys());
  for (const UnknownKey& found : unknownKeys_) {
    problems_.push_back(host::describe(found, Severity::warning, file_));
  }
  if (object.kind() != NodeKind::object) return;
  const std::vector<const IObjectDataNode*> profiles = profilesOf(object);
  if (profiles.front() != &object) tellIgnoredKeys(object);
  for (const IObjectDataNode* const profile : profiles) tellProfile(*profile);
}

/// Of the whole file, whose fragments are seen once each.
void LibraryReport::tellRepeatedMembers(const IObjectDataNode& object) {
  for (const RepeatedMember& repeated : object.repeatedMembers()) {
    if (isCommentKey(repeated.name)) continue;
    if (repeated.depth != 1) {
      problems_.push_back(host::describe(repeated, file_));
      continue;
    }
    tell(Finding::repeatedFragment, Severity::warning, repeated.again,
         "fragment " + inTicks(repeated.name) + " is defined at " +
             InputError(file_, repeated.before, std::string()).place() +
             ", too; only the last definition counts");
  }
}

void LibraryReport::tellEarlierDefinition(const WString& name, const IObjectDataNode& object) {
  const FragmentFiles::Entry* const earlier = files_.find(name);
  if (earlier == nullptr) return;
  if (folderFiles_.contains(earlier->file)) {
    tell(Finding::repeatedFragment, Severity::warning, object.position(),
         "fragment " + inTicks(name) + " is defined at " + earlier->place() +
             ", too; only the last definition counts");
  } else if (!standardFiles_.contains(earlier->file)) {
    tell(Finding::hiddenFragment, Severity::note, object.position(),
         "fragment " + inTicks(name) + " replaces the one of an earlier folder, at " + earlier->place());
  }
}

/// Of a function that the generator takes; of another the failure tells it. Standard files are sound.
void LibraryReport::tellPrototype(const IObjectDataNode& profile) {
  const IObjectDataNode* const mode = profile.member(L"mode");
  const IObjectDataNode* const code = profile.member(L"implementation");
  if (isStandard_ || code == nullptr) return;
  if (mode != nullptr && isInline(mode->asUtf8())) return tellPlaceholders(*code);
  std::optional<PlacedFault> fault = findPrototypeFault(*code);
  if (!fault && isWholeFunction(*code)) fault = findBodyFault(*code);
  if (!fault) return;
  addFault(Finding::notLoaded, fault->position, "fragment " + inTicks(fragment_) + ": " + fault->text);
}

void LibraryReport::addFault(Finding kind, TextPosition position, const std::string& text) {
  tell(kind, Severity::error, position, text);
  faults_.try_emplace(fragment_, problems_.back());
}

void LibraryReport::tellNamelessIncludes(const IObjectDataNode& profile) {
  const IObjectDataNode* const includes = profile.member(L"includes");
  if (includes == nullptr || includes->kind() != NodeKind::array) return;
  for (std::size_t i = 0; i < includes->size(); ++i) {
    const IObjectDataNode& name = *includes->elementOrNull(i);
    if (name.kind() != NodeKind::string || !name.asString().empty()) continue;
    tell(Finding::missingInclude, Severity::warning, name.position(),
         "fragment " + inTicks(fragment_) + " includes a file without a name");
  }
}

/// Their names are those of inputs.
void LibraryReport::tellPlaceholders(const IObjectDataNode& code) {
  for (std::size_t i = 0; i < code.size(); ++i) {
    const IObjectDataNode& line = *code.elementOrNull(i);
    if (line.kind() != NodeKind::string) continue;
    const std::wstring_view text = line.asString();
    for (std::size_t at = text.find(L"{{"); at != text.npos; at = text.find(L"{{", at + 2)) {
      const std::size_t close = text.find(L"}}", at);
      if (close == text.npos) break;
      const std::string name = placeholderName(text.substr(at + 2, close - at - 2));
      if (isIdentifier(name)) continue;
      return addFault(Finding::badName, positionIn(line, at),
                      "fragment " + inTicks(fragment_) + ": " +
                          (name.empty() ? std::string("a placeholder names an input: `{{color}}`")
                                        : inTicks(std::string_view(name)) + " is no name of an input"));
    }
  }
  if (isText(code) && !openPlaceholder(code)) tellStatement(code);
}

void LibraryReport::tellStatement(const IObjectDataNode& code) {
  const std::optional<PlacedFault> fault = findStatement(code);
  if (fault)
    addFault(Finding::notLoaded, fault->position, "fragment " + inTicks(fragment_) + ": " + fault->text);
}

void LibraryReport::tellProfile(const IObjectDataNode& profile) {
  tellPrototype(profile);
  tellNamelessIncludes(profile);
  const IObjectDataNode* const mode = profile.member(L"mode");
  if (mode != nullptr && mode->kind() == NodeKind::string && !isMode(mode->asUtf8())) {
    const std::string name(mode->asUtf8());
    const std::string_view meant = nearestName(name, kModes);
    tell(Finding::unknownWord, Severity::warning, mode->position(),
         "`mode` is none of `function`, `inline`, `metaSL`: " + inTicks(name) + didYouMean(meant) +
             (meant.empty() ? "; it is taken" : " It is taken") + " for `function`",
         std::string(meant));
  }
  const IObjectDataNode* const languages = profile.member(L"language");
  if (languages == nullptr || languages->kind() != NodeKind::array || languages->size() == 0) return;
  const std::string known = toUtf8(LanguageDx11::kName);
  for (std::size_t i = 0; i < languages->size(); ++i) {
    if (languages->elementOrNull(i)->asUtf8() == known) return;
  }
  const IObjectDataNode& first = *languages->elementOrNull(0);
  if (first.kind() != NodeKind::string) return;
  tell(Finding::unknownLanguage, Severity::warning, first.position(),
       "the profile is for no language that is known: " + inTicks(first.asUtf8()) +
           knownNameHint(first.asUtf8(), known));
}

void LibraryReport::tellIgnoredKeys(const IObjectDataNode& object) {
  for (std::size_t i = 0; i < object.size(); ++i) {
    const std::string key = toUtf8(object.memberName(i));
    if (profileKeys().find(key) == nullptr) continue;
    tell(Finding::ignoredKey, Severity::warning, object.memberPosition(i),
         inTicks(key) + " has no effect beside `profiles`; it belongs into each of them");
  }
}

void LibraryReport::addFailure(const FragmentLoadFailure& failure) {
  if (failure.fragment == nullptr) {
    const LoadError error = documentError(toUtf8(failure.reason));
    const bool isNoObject =
        error.kind == Finding::unreadableFile && failure.reason.find(L"object") != failure.reason.npos;
    tell(isNoObject ? Finding::wrongKind : error.kind, Severity::error,
         isNoObject ? TextPosition{1, 1} : error.position, error.text);
    lacksFile_ = true;
    return;
  }
  const Diagnostic told = describe(failure);
  // A warning at the same place is the same finding.
  const auto isSame = [&](const Diagnostic& problem) {
    return problem.line == told.line && problem.column == told.column;
  };
  problems_.erase(std::remove_if(problems_.begin() + static_cast<std::ptrdiff_t>(fragmentStart_),
                                 problems_.end(), isSame),
                  problems_.end());
  problems_.push_back(told);
  failures_.insert_or_assign(*failure.fragment, told);
  faults_.erase(*failure.fragment);
}

Diagnostic LibraryReport::describe(const FragmentLoadFailure& failure) {
  const std::string fragment = "fragment " + inTicks(*failure.fragment) + ": ";
  const std::vector<const IObjectDataNode*> profiles = profilesOf(*failure.object);
  const std::size_t index = numberBehind(failure.part, "profile ").value_or(profiles.size());
  const IObjectDataNode* const profile = index < profiles.size() ? profiles[index] : nullptr;
  if (profile != nullptr && profile->kind() == NodeKind::object) {
    for (const std::wstring_view key : {L"language", L"implementation"}) {
      if (profile->member(key) == nullptr) return describeMissing(failure, *profile, key);
    }
  }

  if (numberBehind(failure.part, "uniform ")) {
    const std::size_t text = failure.part.find(L"): ");
    const LoadError error =
        parameterError(toUtf8(text != failure.part.npos ? failure.part.substr(text + 3) : failure.reason));
    return diagnose(error.kind, Severity::error, file_,
                    error.position.line != 0 ? error.position : failure.object->position(),
                    fragment + error.text);
  }

  std::string reason = toUtf8(failure.reason);
  TextPosition position = takePlace(reason);
  Finding kind = Finding::wrongKind;
  const IObjectDataNode* line = nullptr;
  if (position.line == 0) {
    // Of the code.
    kind = Finding::notLoaded;
    const IObjectDataNode* const code = profile != nullptr ? profile->member(L"implementation") : nullptr;
    line = code != nullptr ? code->elementOrNull(0) : nullptr;
    if (code != nullptr && code->kind() == NodeKind::array && line == nullptr)
      reason = "`implementation` is empty";
    position = line != nullptr      ? line->position()
               : code != nullptr    ? code->position()
               : profile != nullptr ? profile->position()
                                    : failure.object->position();
  }
  std::string text = asDiagnostic(std::move(reason));
  if (line != nullptr && text == "function result type is not void" && !startsWithWord(line->asString()))
    text = "the code must begin with `void`, without blanks or comments in front";
  if (line != nullptr && text.find("{{ }} mismatch") != text.npos) {
    text = "`{{` is not closed by `}}`";
    position = openPlaceholder(*profile->member(L"implementation")).value_or(position);
  }
  if (line != nullptr && text == "incorrect function declaration") {
    if (std::optional<PlacedFault> fault = findPrototypeFault(*profile->member(L"implementation"))) {
      position = fault->position;
      text = std::move(fault->text);
    }
  }
  return diagnose(kind, Severity::error, file_, position, fragment + text);
}

Diagnostic LibraryReport::describeMissing(const FragmentLoadFailure& failure, const IObjectDataNode& profile,
                                          std::wstring_view key) {
  const std::string name = toUtf8(key);
  for (const UnknownKey& found : unknownKeys_) {
    if (found.object != &profile || found.meant != name) continue;
    Diagnostic told = host::describe(found, Severity::error, file_);
    told.text += " Without it fragment " + inTicks(*failure.fragment) + " cannot be loaded";
    return told;
  }
  return diagnose(Finding::missingKey, Severity::error, file_, profile.position(),
                  "fragment " + inTicks(*failure.fragment) + ": " + inTicks(name) + " is missing");
}

std::vector<Diagnostic> LibraryReport::take() {
  finishFile();
  return std::move(problems_);
}

}  // namespace TolmSDK::Graphics::sfg::host
