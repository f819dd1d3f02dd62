#include "tests/shaders/port_metadata.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "host/library/language_dx11.h"
#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/unicode.h"

namespace shaders_test {

namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics;
using namespace TolmSDK::Graphics::sfg;
using Names = std::set<std::string>;
using Faults = std::vector<std::string>;

const Names kTexts = {"description", "label", "kind", "space"};
const Names kNumbers = {"min", "max", "step"};
const Names kVectorKinds = {"direction", "normal", "position"};
const Names kKinds = {"angle", "color", "direction", "distance", "factor", "normal", "position", "uv"};
const Names kVectorSpaces = {"object", "tangent", "view", "world"};
const Names kColorSpaces = {"data", "linear", "srgb"};

enum class Role { input, output, uniform };

struct Port {
  Role role;
  std::string name;
  TypeID type;
  bool isCalled = false;  ///< as a function of the shader
};

std::string describe(const Port& port) {
  const char* const role = port.role == Role::input    ? "input"
                           : port.role == Role::output ? "output"
                                                       : "uniform";
  return std::string(role) + " `" + port.name + "`";
}

/// The faults of one port's object.
class PortCheck {
public:
  PortCheck(const Port& port, const Json& members, Faults& faults)
      : port_(port), members_(members), faults_(faults) {}

  void run() {
    checkDescription();
    if (!checkMembers()) return;
    checkKind();
    checkSpace();
    checkRange();
    checkValue();
  }

private:
  void report(const std::string& fault) { faults_.push_back(describe(port_) + ": " + fault); }
  std::string text(const char* member) const { return members_.value(member, ""); }

  void checkDescription() {
    const bool isTold = port_.role == Role::output && port_.name == "result";
    if (!isTold && !members_.contains("description")) report("no description");
  }

  /// Whether every member is known and of its JSON type.
  bool checkMembers() {
    const std::size_t before = faults_.size();
    for (const auto& [name, member] : members_.items()) {
      const bool isOfUniform = port_.role == Role::uniform && (name == "name" || name == "type");
      if (kTexts.contains(name)) {
        if (!member.is_string() || member.empty() || member == "") report("\"" + name + "\" is not a text");
      } else if (kNumbers.contains(name)) {
        if (!member.is_number()) report("\"" + name + "\" is not a number");
      } else if (name != "value" && !isOfUniform) {
        report("unknown member \"" + name + "\"");
      }
    }
    return faults_.size() == before;
  }

  void checkKind() {
    if (members_.contains("kind") && !kKinds.contains(text("kind"))) {
      report("unknown kind \"" + text("kind") + "\"");
    }
  }

  void checkSpace() {
    if (!members_.contains("space")) return;
    const std::string space = text("space");
    const bool isVector = kVectorKinds.contains(text("kind"));
    const bool isColor = text("kind") == "color" || isSamplerType(port_.type);
    if (!kVectorSpaces.contains(space) && !kColorSpaces.contains(space)) {
      report("unknown space \"" + space + "\"");
    } else if (!(kVectorSpaces.contains(space) ? isVector : isColor)) {
      report("\"" + space + "\" is no space of its kind");
    }
  }

  void checkRange() {
    if (members_.contains("min") && members_.contains("max") && members_["min"] > members_["max"]) {
      report("\"min\" is above \"max\"");
    }
    if (members_.contains("step") && !(members_["step"] > 0)) report("\"step\" is not above 0");
  }

  void checkValue() {
    const bool hasValue = members_.contains("value");
    const bool takesValue = port_.role != Role::output && componentCount(port_.type) != 0 && !port_.isCalled;
    if (hasValue != takesValue) report(hasValue ? "it takes no value" : "no value");
    if (!hasValue || !takesValue) return;
    if (!isOfType(members_["value"])) return report("the value is not a " + toUtf8(port_.type.toString()));
    if (!isInRange()) report("the value is outside of its range");
    if (!isOfUnitLength()) report("the value is not of unit length");
  }

  bool isOfType(const Json& value) const {
    const std::size_t count = componentCount(port_.type);
    if (count == 1) return isComponent(value);
    return value.is_array() && value.size() == count &&
           std::all_of(value.begin(), value.end(), [&](const Json& item) { return isComponent(item); });
  }

  bool isComponent(const Json& item) const {
    const std::uint32_t kind = port_.type.word(0);
    if (kind == TypeID_bool.word(0)) return item.is_boolean();
    if (kind == TypeID_int.word(0)) return item.is_number_integer();
    if (kind == TypeID_uint.word(0)) return item.is_number_unsigned();
    return item.is_number();
  }

  /// The components of a value of the right type.
  std::vector<double> components() const {
    const Json& value = members_["value"];
    if (!value.is_array()) return {value.is_boolean() ? double(value.get<bool>()) : value.get<double>()};
    return value.get<std::vector<double>>();
  }

  bool isInRange() const {
    for (const double component : components()) {
      if (members_.contains("min") && component < members_["min"].get<double>()) return false;
      if (members_.contains("max") && component > members_["max"].get<double>()) return false;
    }
    return true;
  }

  bool isOfUnitLength() const {
    if (text("kind") != "direction" && text("kind") != "normal") return true;
    double squared = 0.0;
    for (const double component : components()) squared += component * component;
    return std::abs(std::sqrt(squared) - 1.0) < 1e-3;
  }

  const Port& port_;
  const Json& members_;
  Faults& faults_;
};

TypeID typeOf(const std::string& text) {
  static const RefPtr<host::LanguageDx11> language(makeRef<host::LanguageDx11>(nullptr));
  return language->getTypeID(fromUtf8(text));
}

/// The ports that the "interface" of an inline fragment documents.
std::vector<Port> documentedPorts(const Json& interface) {
  std::vector<Port> ports;
  for (const Role role : {Role::input, Role::output}) {
    for (const Json& port : interface.at(role == Role::input ? "inputs" : "outputs")) {
      ports.push_back({role, port.at("name").get<std::string>(), typeOf(port.at("type").get<std::string>())});
    }
  }
  return ports;
}

/// The parameters of the first profile's code.
std::vector<Port> portsOfCode(const Json& document) {
  const RefPtr<IObjectDataNode> node(createJsonNode());
  node->loadFromText(fromUtf8(document.dump()));
  const auto fragment = makeRef<AShaderFragment>(L"checked");
  fragment->load(node.get());
  const auto& profile = dynamic_cast<const AShaderFragmentProfile&>(*fragment->getProfile(0));
  const ITextParameterList& parameters = *profile.getFunctionParameters();
  std::vector<Port> ports;
  for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
    const WString& name = parameters.getInputName(i);
    ports.push_back({Role::input, toUtf8(name), typeOf(toUtf8(parameters.getInputType(i))),
                     profile.hasShaderFunctions(name)});
  }
  for (std::size_t i = 0; i < parameters.getNumOutputs(); ++i) {
    const TypeID type = typeOf(toUtf8(parameters.getOutputType(i)));
    ports.push_back({Role::output, toUtf8(parameters.getOutputName(i)), type});
  }
  return ports;
}

/// A text is the description alone.
Json membersOf(const Json& metadata, const std::string& port) {
  const Json members = metadata.value(port, Json::object());
  return members.is_object() ? members : Json{{"description", members}};
}

}  // namespace

std::vector<std::string> portFaults(const Json& fragment) {
  Faults faults;
  const Json metadata = fragment.value("ports", Json::object());
  const std::vector<Port> ports = fragment.value("mode", "") == "inline"
                                      ? documentedPorts(fragment.at("interface"))
                                      : portsOfCode(fragment);
  for (const Port& port : ports) PortCheck(port, membersOf(metadata, port.name), faults).run();
  for (const auto& entry : metadata.items()) {
    const std::string& name = entry.key();
    const bool isPort =
        std::any_of(ports.begin(), ports.end(), [&](const Port& port) { return port.name == name; });
    if (!isPort) faults.push_back("`" + name + "` is neither an input nor an output");
  }
  for (const Json& uniform : fragment.value("uniforms", Json::array())) {
    const Port port = {Role::uniform, uniform.at("name").get<std::string>(),
                       typeOf(uniform.at("type").get<std::string>())};
    PortCheck(port, uniform, faults).run();
  }
  return faults;
}

}  // namespace shaders_test
