#include "tests/numbers/fragment_source.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace numbers_test {

namespace {

using Json = nlohmann::ordered_json;

std::string readText(std::string const& path) {
  std::ifstream file(path);
  if (!file) {
    throw std::runtime_error("cannot read `" + path + "`");
  }
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

Json const& document(std::string const& file) {
  static std::map<std::string, Json> loaded;
  auto const [at, isNew] = loaded.try_emplace(file);
  if (isNew) {
    at->second = Json::parse(readText("library/" + file));
  }
  return at->second;
}

std::vector<Json> profileObjects(Json const& fragment) {
  if (fragment.contains("profiles")) {
    return fragment.at("profiles").get<std::vector<Json>>();
  }
  return {fragment};
}

std::string joinedLines(Json const& profile, char const* key) {
  std::string text;
  if (profile.contains(key)) {
    for (Json const& line : profile.at(key)) {
      text += line.get<std::string>() + "\n";
    }
  }
  return text;
}

void addInclude(std::string const& name, std::set<std::string>& seen, std::string& code) {
  if (!seen.insert(name).second) {
    return;
  }
  std::istringstream text(readText("library/" + name));
  std::string own;
  static std::regex const include("\\s*#include\\s+\"([^\"]+)\".*");
  for (std::string line; std::getline(text, line);) {
    std::smatch match;
    if (std::regex_match(line, match, include)) {
      addInclude(match[1], seen, code);
    } else {
      own += line + "\n";
    }
  }
  code += own;
}

}  // namespace

std::vector<FragmentProfile> profilesIn(std::string const& file) {
  std::vector<FragmentProfile> result;
  for (auto const& [name, fragment] : document(file).items()) {
    std::vector<Json> const objects = profileObjects(fragment);
    for (std::size_t i = 0; i < objects.size(); ++i) {
      result.push_back({name, objects[i].value("name", "default"), objects[i].value("lod", 100.0), i});
    }
  }
  return result;
}

Function functionOf(std::string const& file, FragmentProfile const& profile, Row const& row) {
  Json const object = profileObjects(document(file).at(profile.fragment)).at(profile.index);
  Function function;
  std::set<std::string> seen;
  for (Json const& include : object.value("includes", Json::array())) {
    addInclude(include.get<std::string>(), seen, function.code);
  }
  function.code += joinedLines(object, "predefine");
  std::string text = joinedLines(object, "implementation");
  static std::regex const connected("sfg_isConnected\\([^)]*\\)");
  text = std::regex_replace(text, connected, "true");

  if (object.value("mode", "") == "inline") {
    static std::regex const placeholder("\\{\\{([^}]*)\\}\\}");
    for (Input const& input : row.inputs) {
      function.parameters.push_back({input.name, input.type});
    }
    function.outputs = {{"result", row.inlineType}};
    function.call = "result = " + std::regex_replace(text, placeholder, "($1)") + ";";
    return function;
  }

  static std::regex const prototype("void\\s+(\\w+)\\s*\\(([^)]*)\\)");
  std::smatch match;
  if (!std::regex_search(text, match, prototype)) {
    throw std::runtime_error(profile.fragment + ": no prototype");
  }
  function.call = match[1].str() + "(";
  std::istringstream parameters(match[2].str());
  bool first = true;
  for (std::string parameter; std::getline(parameters, parameter, ',');) {
    std::istringstream words(parameter);
    std::string type, name;
    words >> type;
    bool const isOutput = type == "out";
    if (isOutput) {
      words >> type;
    }
    words >> name;
    (isOutput ? function.outputs : function.parameters).push_back({name, type});
    function.call += (first ? "" : ", ") + name;
    first = false;
  }
  function.call += ");";
  for (std::size_t i = 0; i < row.inputs.size(); ++i) {
    if (i >= function.parameters.size()) {
      function.globals.push_back({row.inputs[i].name, row.inputs[i].type});
    } else if (row.inputs[i].name != function.parameters[i].name ||
               row.inputs[i].type != function.parameters[i].type) {
      throw std::runtime_error(profile.fragment + ": the row's input `" + row.inputs[i].name + "` is `" +
                               function.parameters[i].type + " " + function.parameters[i].name + "`");
    }
  }
  if (row.inputs.size() < function.parameters.size()) {
    throw std::runtime_error(profile.fragment + ": the row has too few inputs");
  }
  static std::map<std::string, std::string> const varying = {
      {"sfg_texCoord0", "float2"},   {"sfg_objectPosition", "float3"}, {"sfg_objectNormal", "float3"},
      {"sfg_worldNormal", "float3"}, {"sfg_worldTangent", "float3"},   {"sfg_worldBinormal", "float3"},
  };
  for (auto const& [name, type] : varying) {
    if (text.find(name) != std::string::npos &&
        std::none_of(row.inputs.begin(), row.inputs.end(), [&](Input const& i) { return i.name == name; })) {
      function.code = "static " + type + " " + name + " = (" + type + ")0;\n" + function.code;
    }
  }
  function.code += text;
  return function;
}

}  // namespace numbers_test
