#include "tests/model/model_temps.h"

#include <map>
#include <set>
#include <vector>

#include "tests/model/scanner.h"

namespace TolmSDK::Graphics::sfg::model {
namespace {

constexpr wchar_t kDeclared = 0xE000;
constexpr wchar_t kUsed = 0xE001;
constexpr wchar_t kEnd = 0xE002;

class Namer {
public:
  explicit Namer(const std::wstring& text) : text_(text), scanner_(text) {}

  std::wstring run() {
    for (std::size_t pos = 0; pos < text_.size();) {
      std::size_t behind = pos;
      scanner_.skipComment(behind);
      if (behind == pos) scanner_.skipMacros(behind);
      if (behind != pos) {
        // What stands in a comment or preprocessor line is copied, its variables under their own names.
        while (pos < behind) copyOne(pos, false);
      } else {
        copyOne(pos, true);
      }
    }
    return out_;
  }

private:
  void copyOne(std::size_t& pos, bool isCode) {
    const wchar_t c = text_[pos];
    if (c == kDeclared) {
      const std::wstring name = takeName(pos);
      current_[name] = isCode ? declare(name) : name;
      out_ += current_[name];
      return;
    }
    if (c == kUsed) {
      out_ += current_[takeName(pos)];
      return;
    }
    if (isCode && c == L'{') blocks_.emplace_back();
    if (isCode && c == L'}' && blocks_.size() > 1) blocks_.pop_back();
    out_ += c;
    pos += 1;
  }

  std::wstring takeName(std::size_t& pos) const {
    const std::size_t end = text_.find(kEnd, pos);
    const std::wstring name = text_.substr(pos + 1, end - pos - 1);
    pos = end + 1;
    return name;
  }

  std::wstring declare(const std::wstring& name) {
    std::wstring candidate = name;
    for (int number = 2; blocks_.back().contains(candidate); ++number)
      candidate = name + std::to_wstring(number);
    blocks_.back().insert(candidate);
    return candidate;
  }

  const std::wstring& text_;
  Scanner scanner_;
  std::wstring out_;
  std::vector<std::set<std::wstring>> blocks_{1};
  std::map<std::wstring, std::wstring> current_;  ///< the names that the call at hand declared
};

}  // namespace

std::wstring markDeclared(const std::wstring& name) { return kDeclared + name + kEnd; }
std::wstring markUsed(const std::wstring& name) { return kUsed + name + kEnd; }
std::wstring nameMarked(const std::wstring& text) { return Namer(text).run(); }

}  // namespace TolmSDK::Graphics::sfg::model
