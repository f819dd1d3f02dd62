#include "host/documents/key_check.h"

#include <algorithm>

#include "host/documents/diagnose.h"
#include "host/documents/near_name.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

bool isSame(std::wstring_view wide, std::string_view ascii) {
  return wide.size() == ascii.size() &&
         std::equal(wide.begin(), wide.end(), ascii.begin(),
                    [](wchar_t a, char b) { return a == static_cast<wchar_t>(b); });
}

const Key* findKey(const KeyTable& table, std::wstring_view name) {
  const auto found = std::find_if(table.keys.begin(), table.keys.end(),
                                  [&](const Key& key) { return isSame(name, key.name); });
  return found != table.keys.end() ? &*found : nullptr;
}

std::string_view nearestKey(std::string_view name, const KeyTable& table) {
  NearName search(name);
  for (const Key& key : table.keys) search.offer(key.name);
  return search.nearest();
}

/// The tables are not nested deeply, and so is this no deep recursion.
class KeyCheck {
public:
  void checkObject(const IObjectDataNode& object, const KeyTable& table) {
    if (object.kind() != NodeKind::object) return;
    for (std::size_t i = 0, count = object.size(); i < count; ++i) {
      const WString& name = object.memberName(i);
      if (isCommentKey(name)) continue;
      if (const Key* const key = findKey(table, name)) {
        checkValue(*object.elementOrNull(i), *key);
      } else {
        std::string text = toUtf8(name);
        const std::string_view meant = nearestKey(text, table);
        found_.push_back({&object, &table, std::move(text), object.memberPosition(i), meant});
      }
    }
  }

  std::vector<UnknownKey> take() { return std::move(found_); }

private:
  void checkValue(const IObjectDataNode& value, const Key& key) {
    switch (key.holds) {
    case Holds::object: return checkObject(value, *key.table);
    case Holds::objects:
      if (value.kind() == NodeKind::array) checkElements(value, *key.table);
      return;
    case Holds::namedObjects:
    case Holds::namedTexts:
      if (value.kind() == NodeKind::object) checkElements(value, *key.table);
      return;
    default: return;
    }
  }

  void checkElements(const IObjectDataNode& values, const KeyTable& table) {
    for (std::size_t i = 0, count = values.size(); i < count; ++i) {
      if (!isCommentKey(values.memberName(i))) checkObject(*values.elementOrNull(i), table);
    }
  }

  std::vector<UnknownKey> found_;
};

}  // namespace

std::vector<UnknownKey> findUnknownKeys(const IObjectDataNode& object, const KeyTable& table) {
  KeyCheck check;
  check.checkObject(object, table);
  return check.take();
}

Diagnostic describe(const UnknownKey& found, Severity severity, const std::string& file) {
  std::string text = "unknown key `";
  text.append(found.key).append("` of ").append(found.table->object).append(didYouMean(found.meant));
  if (found.meant.empty()) {
    text += "; its keys are ";
    for (const Key& key : found.table->keys) {
      text.append(&key == found.table->keys.data() ? "`" : ", `").append(key.name).append("`");
    }
  }
  return diagnose(Finding::unknownKey, severity, file, found.position, std::move(text),
                  std::string(found.meant));
}

Diagnostic describe(const RepeatedMember& repeated, const std::string& file) {
  std::string text = "the key `";
  text.append(toUtf8(repeated.name)).append("` stands at line ").append(std::to_string(repeated.before.line));
  text.append(", column ").append(std::to_string(repeated.before.column));
  text.append(" of the same object, too; only the last one counts");
  return diagnose(Finding::repeatedKey, Severity::warning, file, repeated.again, std::move(text));
}

}  // namespace TolmSDK::Graphics::sfg::host
