#include "host/documents/other_kind.h"

#include "host/documents/diagnose.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Keys that documents of every kind may have.
bool isOfEveryKind(const std::string& key) { return key == "description" || key == "$schema"; }

bool isFragment(const IObjectDataNode& object) {
  return object.kind() == NodeKind::object &&
         (object.member(L"implementation") != nullptr || object.member(L"profiles") != nullptr);
}

/// "a graph"; null where nothing tells.
const char* kindOf(const IObjectDataNode& root) {
  if (root.member(L"nodes") != nullptr && root.member(L"outputs") != nullptr) return "a graph";
  if (root.member(L"lights") != nullptr) return "an environment";
  for (std::size_t i = 0; i < root.size(); ++i)
    if (isFragment(*root.elementOrNull(i))) return "a library of fragments";
  return nullptr;
}

}  // namespace

void refuseOtherKind(const DocumentReader& reader, const KeyTable& table, const std::string& wanted) {
  const IObjectDataNode& root = reader.root();
  for (std::size_t i = 0; i < root.size(); ++i) {
    const std::string key = toUtf8(root.memberName(i));
    if (!isOfEveryKind(key) && table.find(key) != nullptr) return;
  }
  if (const char* const found = kindOf(root)) {
    throw inputError(Finding::wrongKind, reader.file(), reader.positionOf(root),
                     "this is " + std::string(found) + ", not " + wanted);
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
