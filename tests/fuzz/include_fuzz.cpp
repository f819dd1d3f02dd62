// Files, separated by form feeds and named a.h, b.h and so on, through the include reader and literal models
// of it.

#include <map>
#include <set>

#include "platform/test_folder.h"
#include "sfg/shader_includes.h"
#include "tests/fuzz/fuzz_input.h"

namespace TolmSDK::Graphics::sfg {
namespace {

struct ModelInclude {
  std::wstring content;
  std::set<std::wstring> names;
};
using ModelIncludes = std::map<std::wstring, ModelInclude>;

constexpr std::size_t kNone = std::wstring::npos;

ModelInclude readModel(const std::wstring& text) {
  ModelInclude include;
  std::size_t cursor = 0;
  for (std::size_t i = text.find(L"#include"); i != kNone; i = text.find(L"#include", cursor)) {
    include.content += text.substr(cursor, i - cursor);
    const std::size_t lineFeed = text.find(L'\n', i);
    cursor = lineFeed == kNone ? text.size() : lineFeed + 1;
    const std::size_t open = text.find(L'"', i);
    if (open == kNone || open >= cursor) continue;
    const std::size_t close = text.find(L'"', open + 1);
    if (close == kNone || close >= cursor) continue;
    const std::wstring name = text.substr(open + 1, close - open - 1);
    if (!name.empty()) include.names.insert(name);
  }
  include.content += text.substr(cursor);
  return include;
}

/// The depth-first walk by recursion; a name whose visit is under way is not entered again.
void flattenModel(const ModelIncludes& files, const std::wstring& name, std::set<std::wstring>& underWay,
                  std::set<std::wstring>& done, std::vector<std::wstring>& out) {
  if (!underWay.insert(name).second) return;
  const auto found = files.find(name);
  if (found != files.end())
    for (const std::wstring& included : found->second.names)
      flattenModel(files, included, underWay, done, out);
  underWay.erase(name);
  if (done.insert(name).second) out.push_back(name);
}

std::vector<std::string_view> splitFiles(std::string_view bytes) {
  constexpr std::size_t kMostFiles = 6;  // the model visits shared files again and again
  std::vector<std::string_view> files;
  while (files.size() + 1 < kMostFiles) {
    const std::size_t end = bytes.find('\f');
    if (end == std::string_view::npos) break;
    files.push_back(bytes.substr(0, end));
    bytes.remove_prefix(end + 1);
  }
  files.push_back(bytes);
  return files;
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace TolmSDK;
  using namespace TolmSDK::Graphics::sfg;
  const TestFolder folder;
  ModelIncludes model;
  Set<WString> names;
  for (const std::string_view file : splitFiles(bytesOf(data, size))) {
    const std::string name = std::string(1, static_cast<char>('a' + names.size())) + ".h";
    folder.write(name, file);
    const bool hasMark = file.substr(0, 3) == "\xEF\xBB\xBF";
    model[std::wstring(fromUtf8(name))] = readModel(std::wstring(fromUtf8(file.substr(hasMark ? 3 : 0))));
    names.insert(fromUtf8(name));
  }

  ShaderIncludes includes;
  includes.addIncludePath(folder.text().c_str());
  for (const auto& [name, include] : model) {
    require(std::wstring_view(includes.getIncludeContent(name.c_str())) == include.content,
            "the content is the model's");
    std::set<std::wstring> included;
    for (const WString& other : includes.getAncestorIncludes(name.c_str())) included.emplace(other);
    require(included == include.names, "the names included are the model's");
  }

  Array<WString> out;
  Set<WString> done;
  includes.createFlatIncludeArray(out, done, names);
  std::vector<std::wstring> expected;
  std::set<std::wstring> underWay;
  std::set<std::wstring> modelDone;
  for (const auto& [name, include] : model) flattenModel(model, name, underWay, modelDone, expected);
  require(std::vector<std::wstring>(out.begin(), out.end()) == expected, "the flat list is the model's");
  require(includes.getIncludesHash(names).size() == 40 * out.size(), "every file has its hash");
  return 0;
}
