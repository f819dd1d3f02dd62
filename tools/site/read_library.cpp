#include "tools/site/read_library.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>

#include "sfg/host/errors.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::site {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

std::string textOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// An empty object for what is none: the commands that work with a document tell what is wrong with it.
Json parsed(const std::string& text) {
  Json document = Json::parse(text.begin(), text.end(), nullptr, false);
  return document.is_object() ? document : Json::object();
}

const Json& memberOf(const Json& object, const char* name) {
  static const Json kNone;
  if (!object.is_object()) return kNone;
  const auto found = object.find(name);
  return found != object.end() ? *found : kNone;
}

std::string wordOf(const Json& object, const char* name) {
  const Json& member = memberOf(object, name);
  return member.is_string() ? member.get<std::string>() : std::string();
}

std::vector<std::string> wordsOf(const Json& object, const char* name) {
  std::vector<std::string> words;
  const Json& member = memberOf(object, name);
  if (!member.is_array()) return words;
  for (const Json& word : member) {
    if (word.is_string()) words.push_back(word.get<std::string>());
  }
  return words;
}

std::string joined(const std::vector<std::string>& words, const char* between) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += between;
    text += word;
  }
  return text;
}

std::string scalarText(const Json& value) {
  if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
  return value.is_number() ? site::numberText(value.get<double>()) : std::string();
}

/// "0.5", "(1, 0, 0)"; of equal components one, where that says it all.
std::string valueText(const Json& value, bool isShort = false) {
  if (!value.is_array()) return scalarText(value);
  std::vector<std::string> numbers;
  for (const Json& number : value) numbers.push_back(scalarText(number));
  const bool isSame = !numbers.empty() && std::count(numbers.begin(), numbers.end(), numbers.front()) ==
                                              static_cast<std::ptrdiff_t>(numbers.size());
  if (isShort && isSame) return numbers.front();
  std::string text = "(";
  text += joined(numbers, ", ");
  return text += ")";
}

std::string rangeText(const Json& words) {
  const std::string low = valueText(memberOf(words, "min"), true);
  const std::string high = valueText(memberOf(words, "max"), true);
  std::string text;
  if (!low.empty() && !high.empty()) return text.append(low).append(" to ").append(high);
  if (!low.empty()) return text.append("at least ").append(low);
  return high.empty() ? text : text.append("at most ").append(high);
}

Port portOf(Port::Role role, std::string name, std::string type, const Json& words) {
  Port port;
  port.role = role;
  port.name = std::move(name);
  port.type = std::move(type);
  port.description = words.is_string() ? words.get<std::string>() : wordOf(words, "description");
  port.label = wordOf(words, "label");
  port.kind = wordOf(words, "kind");
  port.space = wordOf(words, "space");
  port.value = valueText(memberOf(words, "value"));
  port.range = rangeText(words);
  port.step = valueText(memberOf(words, "step"), true);
  return port;
}

Port portOf(Port::Role role, const AParameter& parameter, const Json& words) {
  const std::string structure = toUtf8(parameter.getStructName());
  return portOf(role, toUtf8(parameter.getName()),
                structure.empty() ? toUtf8(parameter.getType().toString()) : structure, words);
}

/// Those of nodes of the fragment.
std::vector<Port> portsOf(const Json& object, const host::LibrarySet& libraries, const std::string& name) {
  std::vector<Port> ports;
  const Json& words = memberOf(object, "ports");
  const Json& shown = memberOf(object, "interface");
  const auto addShown = [&](const char* list, Port::Role role) {
    for (const Json& port : memberOf(shown, list)) {
      const std::string structure = wordOf(port, "struct");
      const std::string own = wordOf(port, "name");
      ports.push_back(portOf(role, own, structure.empty() ? wordOf(port, "type") : structure,
                             memberOf(words, own.c_str())));
    }
  };
  addShown("inputs", Port::Role::input);
  addShown("outputs", Port::Role::output);
  const auto* const found = libraries.library().acquireFragment(fromUtf8(name).c_str());
  if (found == nullptr) return ports;
  const RefPtr<IShaderFragment> copy(found->clone(L"shown"));
  if (auto* const fragment = dynamic_cast<AShaderFragment*>(copy.get());
      fragment != nullptr && ports.empty()) {
    fragment->generateAutoInputsOutputs(&libraries.language());
    const auto wordsFor = [&](const AParameter& port) {
      return memberOf(words, toUtf8(port.getName()).c_str());
    };
    for (std::size_t i = 0; i < fragment->getNumInputs(); ++i) {
      if (const AParameter* const input = fragment->getInput(i))
        ports.push_back(portOf(Port::Role::input, *input, wordsFor(*input)));
    }
    for (std::size_t i = 0; i < fragment->getNumOutputs(); ++i) {
      if (const AParameter* const output = fragment->getOutput(i))
        ports.push_back(portOf(Port::Role::output, *output, wordsFor(*output)));
    }
  }
  for (const Json& uniform : memberOf(object, "uniforms")) {
    const std::string structure = wordOf(uniform, "struct");
    ports.push_back(portOf(Port::Role::uniform, wordOf(uniform, "name"),
                           structure.empty() ? wordOf(uniform, "type") : structure, uniform));
  }
  return ports;
}

Profile profileOf(const Json& object) {
  Profile profile;
  profile.name = wordOf(object, "name").empty() ? "default" : wordOf(object, "name");
  const Json& level = memberOf(object, "lod");
  profile.level = level.is_string() ? level.get<std::string>() : level.is_null() ? "100" : scalarText(level);
  profile.languages = joined(wordsOf(object, "language"), ", ");
  profile.mode = wordOf(object, "mode");
  profile.includes = wordsOf(object, "includes");
  std::vector<std::string> lines = wordsOf(object, "predefine");
  if (!lines.empty()) lines.emplace_back();
  for (std::string& line : wordsOf(object, "implementation")) lines.push_back(std::move(line));
  for (const std::string& line : lines) profile.code.append(line).append("\n");
  return profile;
}

Fragment fragmentOf(const host::FragmentInfo& info, const Json& object, const host::LibrarySet& libraries) {
  Fragment fragment;
  fragment.name = info.name;
  fragment.description = info.description;
  fragment.source = wordOf(object, "source");
  fragment.topic = fs::path(info.file).stem().string();
  fragment.place = fs::path(info.file).filename().string();
  fragment.place.append(", line ").append(std::to_string(info.line));
  fragment.ports = portsOf(object, libraries, info.name);
  if (const Json& profiles = memberOf(object, "profiles"); profiles.is_array()) {
    for (const Json& profile : profiles) fragment.profiles.push_back(profileOf(profile));
  } else {
    fragment.profiles.push_back(profileOf(object));
  }
  return fragment;
}

std::vector<fs::path> filesIn(const fs::path& folder, const char* extension) {
  std::vector<fs::path> files;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (entry.path().extension() == extension && entry.is_regular_file()) files.push_back(entry.path());
  }
  if (error) throw host::InputError(folder.string() + ": cannot be read as a folder");
  std::sort(files.begin(), files.end());
  return files;
}

void addUses(std::set<std::string>& names, const Json& list) {
  if (!list.is_array()) return;
  for (const Json& use : list)
    names.insert(use.is_string() ? use.get<std::string>() : wordOf(use, "fragment"));
}

Example exampleOf(const fs::path& file, const std::string& text, const Json& document) {
  Example example;
  example.name = file.stem().string();
  example.file = file.string();
  example.text = text;
  example.description = wordOf(document, "description");
  example.isEnvironment = memberOf(document, "nodes").is_null();
  for (const char* const list : {"nodes", "lights", "preprocess", "postprocess"})
    addUses(example.fragments, memberOf(document, list));
  example.fragments.insert(wordOf(document, "output"));
  example.fragments.erase(std::string());
  return example;
}

void readExamples(Site& site, const std::vector<fs::path>& folders) {
  for (const fs::path& folder : folders) {
    for (const fs::path& file : filesIn(folder, ".json")) {
      const std::string text = textOf(file);
      const Json document = parsed(text);
      if (memberOf(document, "nodes").is_array() || memberOf(document, "lights").is_array())
        site.examples.push_back(exampleOf(file, text, document));
    }
  }
  std::map<std::string, Fragment*> byName;
  for (Fragment& fragment : site.fragments) byName.emplace(fragment.name, &fragment);
  for (std::size_t i = 0; i < site.examples.size(); ++i) {
    for (const std::string& name : site.examples[i].fragments) {
      if (const auto used = byName.find(name); used != byName.end()) used->second->examples.push_back(i);
    }
  }
}

void readIncludes(Site& site, const std::vector<fs::path>& folders) {
  std::map<std::string, std::string> texts;
  for (const fs::path& folder : folders) {
    for (const fs::path& file : filesIn(folder, ".h")) texts.emplace(file.filename().string(), textOf(file));
  }
  for (auto& [name, text] : texts) site.includes.push_back({name, std::move(text)});
}

}  // namespace

std::string numberText(double number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.6g", number);
  return text.data();
}

Site readSite(const host::LibrarySet& libraries, const std::vector<fs::path>& exampleFolders) {
  Site site;
  std::map<std::string, Json> files;
  for (const host::FragmentInfo& info : libraries.fragments()) {
    auto file = files.find(info.file);
    if (file == files.end()) file = files.emplace(info.file, parsed(textOf(info.file))).first;
    site.fragments.push_back(fragmentOf(info, memberOf(file->second, info.name.c_str()), libraries));
  }
  readIncludes(site, libraries.folders().includes);
  readExamples(site, exampleFolders);
  return site;
}

}  // namespace TolmSDK::Graphics::sfg::site
