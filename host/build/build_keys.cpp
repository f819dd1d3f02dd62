#include "host/build/build_keys.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "host/library/loaded_libraries.h"
#include "host/modules/shader_compiler.h"
#include "sfg/version.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/sha1.h"
#include "tolmsdk/unicode.h"
#include "tolmsdk/version.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Changes whenever a part of a key means something else.
constexpr const char* kForm = "1";

template <class Number>
std::string numberText(Number number) {
  char text[64];
  const auto [end, error] = std::to_chars(std::begin(text), std::end(text), number);
  return std::string(std::begin(text), end);
}

std::string valueText(const Value& value) {
  if (const bool* const boolean = std::get_if<bool>(&value)) return *boolean ? "true" : "false";
  if (const double* const number = std::get_if<double>(&value)) return numberText(*number);
  std::string text = "[";
  for (const double number : std::get<std::vector<double>>(value)) text += numberText(number) + ",";
  return text + "]";
}

RefPtr<IObjectDataNode> parse(std::string_view json) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (json.starts_with(kByteOrderMark)) json.remove_prefix(kByteOrderMark.size());
  const RefPtr<IObjectDataNode> root(createJsonNode());
  root->loadFromText(fromUtf8(json));
  return root;
}

/// The texts under `key` of the objects in a list.
void addNames(Set<WString>& names, const IObjectDataNode* list, std::wstring_view key) {
  for (std::size_t i = 0; list != nullptr && i < list->size(); ++i) {
    const IObjectDataNode* const object = list->element(i);
    const IObjectDataNode* const name = object != nullptr ? object->member(key) : nullptr;
    if (name != nullptr && name->kind() == NodeKind::string) names.insert(name->asString());
  }
}

void addTexts(Set<WString>& names, const IObjectDataNode* list) {
  for (std::size_t i = 0; list != nullptr && i < list->size(); ++i) {
    const IObjectDataNode* const name = list->element(i);
    if (name != nullptr && name->kind() == NodeKind::string) names.insert(name->asString());
  }
}

Set<WString> fragmentsOf(std::string_view graph, std::string_view environment) {
  Set<WString> names;
  const RefPtr<IObjectDataNode> surface = parse(graph);
  addNames(names, surface->member(L"nodes"), L"fragment");
  addTexts(names, surface->member(L"preprocess"));
  addTexts(names, surface->member(L"postprocess"));
  if (environment.empty()) return names;
  const RefPtr<IObjectDataNode> scene = parse(environment);
  addNames(names, scene->member(L"lights"), L"fragment");
  const IObjectDataNode* const output = scene->member(L"output");
  if (output != nullptr && output->kind() == NodeKind::string) names.insert(output->asString());
  return names;
}

}  // namespace

KeyText& KeyText::add(std::string_view part) {
  text_.append(std::to_string(part.size())).append(":").append(part);
  return *this;
}

std::string KeyText::hash() const { return SHA1_GetBytesHash(text_); }

std::string collapseText(const BuildTask& task, const std::string& language) {
  const CollapseOptions& options = task.collapse;
  KeyText text;
  text.add(language).add(options.tool == CollapseTool::lightLoop ? "lightloop" : "default");
  text.add(numberText(options.surfaceLod)).add(numberText(options.lightLod));
  text.add(options.functionName).add(options.profileName);
  text.add(task.environment.empty() ? "unlit" : "lit");
  for (const NodeConstant& constant : options.constants)
    text.add(constant.node).add(constant.input).add(valueText(constant.value));
  return text.hash();
}

std::string moduleText(const CompileOptions& options) {
  return std::to_string(static_cast<int>(options.optimization)) + (options.debug ? " debug" : "");
}

std::string translationText(ShaderTarget target, const CompileOptions& options) {
  std::string text = std::to_string(static_cast<int>(target));
  if (target == ShaderTarget::glsl) text += " " + std::to_string(static_cast<int>(options.glslVersion));
  if (target == ShaderTarget::hlsl) text += " " + std::to_string(static_cast<int>(options.shaderModel));
  return text;
}

std::string outputText(const BuildTask& task) {
  KeyText text;
  text.add(std::to_string(static_cast<int>(task.stage)));
  text.add(task.names == NameStyle::readable ? "readable" : "generated");
  if (task.stage == ShaderStage::vertex) {
    const MeshLayout& mesh = task.mesh;
    for (const bool part : {mesh.normal, mesh.tangent, mesh.texCoord0, mesh.texCoord1, mesh.texCoord2,
                            mesh.texCoord3, mesh.color})
      text.add(part ? "1" : "0");
  }
  if (task.target) text.add(translationText(*task.target, task.compile)).add(moduleText(task.compile));
  text.add(task.reflection.empty() ? "" : "reflection");
  return text.hash();
}

const std::string& versionsText() {
  static const std::string text = KeyText()
                                      .add(kForm)
                                      .add(sfgVersion())
                                      .add(hostVersion())
                                      .add(platformVersion())
                                      .add(compilerVersions())
                                      .hash();
  return text;
}

Reached LibraryKeys::reached(std::string_view graph, std::string_view environment) const {
  // The generator adds these by itself.
  static const Set<WString> kAlways = {L"sfg_samplers.h"};
  KeyText key;
  std::vector<std::string> files;
  for (const WString& name : fragmentsOf(graph, environment)) {
    const Part& part = fragment(name);
    key.add(toUtf8(name)).add(part.hash);
    files.insert(files.end(), part.files.begin(), part.files.end());
  }
  addIncludes(key, files, kAlways);
  std::sort(files.begin(), files.end());
  files.erase(std::unique(files.begin(), files.end()), files.end());
  return {key.hash(), std::move(files)};
}

const LibraryKeys::Part& LibraryKeys::fragment(const WString& name) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto known = parts_.find(name);
  return known != parts_.end() ? known->second : parts_.emplace(name, makePart(name)).first->second;
}

LibraryKeys::Part LibraryKeys::makePart(const WString& name) const {
  const FragmentFiles::Entry* const entry = libraries_->loaded()->files().find(name);
  const IShaderFragment* const fragment = libraries_->language().findFragment(name);
  if (entry == nullptr || fragment == nullptr) return {};
  Part part;
  KeyText key;
  key.add(fragmentText(name, entry->file));
  part.files.push_back(entry->file);
  Set<WString> includes;
  for (std::size_t i = 0; i < fragment->getNumProfiles(); ++i) {
    const Set<WString>& own = fragment->getProfile(i)->includes();
    includes.insert(own.begin(), own.end());
  }
  addIncludes(key, part.files, includes);
  part.hash = key.hash();
  return part;
}

/// All fragments of a file are hashed when the first of them is asked for.
const std::string& LibraryKeys::fragmentText(const WString& name, const std::string& file) const {
  const LoadedLibraries& loaded = *libraries_->loaded();
  const std::string* const text = loaded.texts().find(file);
  if (text != nullptr && readFiles_.insert(file).second) {
    const RefPtr<IObjectDataNode> root = parse(*text);
    for (std::size_t i = 0; i < root->size(); ++i) {
      const FragmentFiles::Entry* const entry = loaded.files().find(root->memberName(i));
      if (entry == nullptr || entry->file != file || root->element(i) == nullptr) continue;
      texts_[root->memberName(i)] = SHA1_GetBytesHash(toUtf8(root->element(i)->toText()));
    }
  }
  return texts_[name];
}

void LibraryKeys::addIncludes(KeyText& key, std::vector<std::string>& files,
                              const Set<WString>& names) const {
  const LoadedLibraries& loaded = *libraries_->loaded();
  Array<WString> flat;
  Set<WString> done;
  loaded.includes().createFlatIncludeArray(flat, done, names);
  for (const WString& name : flat) {
    const std::vector<std::string>& sources = loaded.texts().includeFiles(name);
    key.add(toUtf8(name)).add(sources.empty() ? "missing" : "found");
    key.add(SHA1_GetBytesHash(toUtf8(loaded.includes().getIncludeContent(name.c_str()))));
    files.insert(files.end(), sources.begin(), sources.end());
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
