#include "host/documents/port_metadata.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "host/documents/document_reader.h"
#include "host/documents/keys.h"
#include "host/documents/near_name.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Words = std::span<const std::string_view>;

constexpr std::string_view kVectorKinds[] = {"direction", "normal", "position"};
constexpr std::string_view kVectorSpaces[] = {"object", "tangent", "view", "world"};
constexpr std::string_view kColorSpaces[] = {"data", "linear", "srgb"};

bool contains(Words words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

std::vector<double> numbersOf(const AValue& value) {
  std::vector<double> numbers;
  for (std::size_t i = 0; i < value.size(); ++i) numbers.push_back(value.get(i));
  return numbers;
}

/// Whether some component of `a` is above that of `b`; never when one of them is not given.
bool isAbove(const std::vector<double>& a, const std::vector<double>& b) {
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    if (a[i] > b[i]) return true;
  }
  return false;
}

/// What is described.
struct Subject {
  enum class Role { input, output, uniform };
  Role role = Role::input;
  std::wstring_view name;
  std::optional<TypeID> type;  ///< nil for a structure; nothing for one that no text gives
};

/// Reads the members of one port or uniform.
class MemberReader {
public:
  MemberReader(const Subject& subject, const WString& fragment, const TellProblem& tell)
      : subject_(subject), fragment_(fragment), tell_(tell) {}

  PortMetadata read(const IObjectDataNode& members) {
    for (std::size_t i = 0; i < members.size(); ++i) {
      const WString& key = members.memberName(i);
      const IObjectDataNode* const member = members.element(i);
      if (member != nullptr && !isCommentKey(key)) readMember(key, *member);
    }
    checkSpace(members);
    checkRange(members);
    return std::move(read_);
  }

  /// A text is the description.
  PortMetadata readText(const IObjectDataNode& text) {
    readMember(L"description", text);
    return std::move(read_);
  }

private:
  using Role = Subject::Role;

  void report(Finding kind, const IObjectDataNode& at, const std::string& what) {
    tell_(kind, at.position(),
          std::string(subject_.role == Role::uniform ? "uniform " : "port ") + inTicks(subject_.name) +
              " of fragment " + inTicks(fragment_) + ": " + what);
  }

  void readMember(std::wstring_view key, const IObjectDataNode& member) {
    if (key == L"label") return readWord(key, member, read_.label);
    if (key == L"description") return readWord(key, member, read_.description);
    if (key == L"space") return readWord(key, member, read_.space);
    if (key == L"kind") return readKind(member);
    if (key == L"value") return readDefault(member);
    if (key == L"min") return readBound(key, member, read_.min);
    if (key == L"max") return readBound(key, member, read_.max);
    if (key == L"step") readStep(member);
  }

  void readWord(std::wstring_view key, const IObjectDataNode& member, std::string& word) {
    word = member.asUtf8();
    if (word.empty())
      report(Finding::wrongKind, member, inTicks(key) + " must be a string that is not empty");
  }

  static std::string meantSpace(const std::string& word) {
    std::vector<std::string_view> known;
    known.insert(known.end(), std::begin(kVectorSpaces), std::end(kVectorSpaces));
    known.insert(known.end(), std::begin(kColorSpaces), std::end(kColorSpaces));
    return knownNamesHint(word, {known.begin(), known.end()});
  }

  void readKind(const IObjectDataNode& member) {
    readWord(L"kind", member, read_.kind);
    if (read_.kind.empty() || contains(kPortKinds, read_.kind)) return;
    const std::vector<std::string> known(std::begin(kPortKinds), std::end(kPortKinds));
    report(Finding::unknownWord, member,
           "unknown kind " + inTicks(read_.kind) + knownNamesHint(read_.kind, known));
    read_.kind.clear();
  }

  void readDefault(const IObjectDataNode& member) {
    if (subject_.role == Role::output) return report(Finding::wrongValue, member, "an output takes no value");
    std::optional<AValue> value = emptyValue(L"value", member);
    if (!value) return;
    if (readValue(member, *value)) {
      read_.value = numbersOf(*value);
    } else {
      reportMisfit(L"value", member, *value);
    }
  }

  /// One number stands for every component.
  void readBound(std::wstring_view key, const IObjectDataNode& member, std::vector<double>& numbers) {
    std::optional<AValue> value = emptyValue(key, member);
    if (!value) return;
    if (value->type() == TypeID_bool)
      return report(Finding::wrongValue, member, "a bool has no " + inTicks(key));
    bool isRead = true;
    if (member.kind() == NodeKind::number) {
      for (std::size_t i = 0; i < value->size(); ++i) isRead = isRead && value->set(i, member.asNumber());
    } else {
      isRead = readValue(member, *value);
    }
    if (!isRead) return reportMisfit(key, member, *value);
    numbers = numbersOf(*value);
  }

  void readStep(const IObjectDataNode& member) {
    readBound(L"step", member, read_.step);
    if (std::all_of(read_.step.begin(), read_.step.end(), [](double step) { return step > 0.0; })) return;
    report(Finding::wrongValue, member, "`step` must be above 0");
    read_.step.clear();
  }

  /// A value of the subject's type to be read; nothing, which is told, when the type has none.
  std::optional<AValue> emptyValue(std::wstring_view key, const IObjectDataNode& member) {
    if (!subject_.type) {
      report(Finding::wrongValue, member,
             inTicks(key) + " needs a type, which the `interface` of an inline fragment gives");
      return std::nullopt;
    }
    const AValue value(*subject_.type);
    if (value.size() != 0) return value;
    report(Finding::wrongValue, member,
           inTicks(key) + " cannot be given: a texture or structure has no value");
    return std::nullopt;
  }

  void reportMisfit(std::wstring_view key, const IObjectDataNode& member, const AValue& value) {
    report(Finding::wrongValue, member,
           inTicks(key) + " does not fit the type " + inTicks(value.type().toString()) + ": expected " +
               expectedValueText(value.type()));
  }

  void checkSpace(const IObjectDataNode& members) {
    if (read_.space.empty()) return;
    const bool isVectors = contains(kVectorSpaces, read_.space);
    const bool isColors = contains(kColorSpaces, read_.space);
    const bool isOfColor = read_.kind == "color" || (subject_.type && isSamplerType(*subject_.type));
    if (isVectors ? contains(kVectorKinds, read_.kind) : isColors && isOfColor) return;
    const std::string space = inTicks(read_.space);
    report(!isVectors && !isColors ? Finding::unknownWord : Finding::wrongValue, *members.member(L"space"),
           isVectors  ? space + " is a space of directions, normals and positions (`kind`)"
           : isColors ? space + " is a space of colors (`kind`) and textures"
                      : "unknown space " + space + meantSpace(read_.space));
    read_.space.clear();
  }

  void checkRange(const IObjectDataNode& members) {
    if (isAbove(read_.min, read_.max)) {
      report(Finding::wrongValue, *members.member(L"min"), "`min` is above `max`");
      read_.min.clear();
      read_.max.clear();
    }
    if (isAbove(read_.min, read_.value))
      report(Finding::wrongValue, *members.member(L"value"), "`value` is below `min`");
    if (isAbove(read_.value, read_.max))
      report(Finding::wrongValue, *members.member(L"value"), "`value` is above `max`");
  }

  const Subject& subject_;
  const WString& fragment_;
  const TellProblem& tell_;
  PortMetadata read_;
};

class PortReader {
public:
  PortReader(const IObjectDataNode& object, const IShaderFragment& fragment, const ILanguageTraits& language,
             const TellProblem& tell)
      : object_(object), fragment_(fragment), language_(language), tell_(tell) {}

  FragmentPorts read() {
    if (const IObjectDataNode* const ports = object_.member(L"ports")) readPorts(*ports);
    const IObjectDataNode* const uniforms = object_.member(L"uniforms");
    for (std::size_t i = 0; uniforms != nullptr && i < fragment_.getNumUniforms(); ++i) {
      if (const IObjectDataNode* const uniform = uniforms->element(i)) readUniform(*uniform, i);
    }
    return std::move(read_);
  }

private:
  using Role = Subject::Role;

  void report(Finding kind, const IObjectDataNode& at, const std::string& what) {
    tell_(kind, at.position(), "fragment " + inTicks(fragment_.key()) + ": " + what);
  }

  void readPorts(const IObjectDataNode& ports) {
    if (ports.kind() != NodeKind::object)
      return report(Finding::wrongKind, ports, "`ports` must be an object");
    findSubjects();
    for (std::size_t i = 0; i < ports.size(); ++i) {
      const IObjectDataNode* const port = ports.element(i);
      if (port != nullptr && !isCommentKey(ports.memberName(i))) readPort(ports.memberName(i), *port);
    }
  }

  void readPort(const WString& name, const IObjectDataNode& port) {
    const auto subject = subjects_.find(name);
    if (subject == subjects_.end()) return report(Finding::unknownPort, port, noPort(name));
    MemberReader reader(subject->second, fragment_.key(), tell_);
    if (port.kind() == NodeKind::string) {
      read_.ports[name] = reader.readText(port);
    } else if (port.kind() == NodeKind::object) {
      read_.ports[name] = reader.read(port);
    } else {
      report(Finding::wrongKind, port, "port " + inTicks(name) + " must be a text or an object");
    }
  }

  /// What there is is told once.
  std::string noPort(const WString& name) {
    std::string text = "it has no port " + inTicks(name);
    if (std::exchange(hasListed_, true)) return text;
    text += subjects_.empty() ? "; its ports are none" : "; its ports are";
    std::string separator = " ";
    for (const auto& [known, subject] : subjects_) {
      text += separator + inTicks(known);
      separator = ", ";
    }
    return text;
  }

  void readUniform(const IObjectDataNode& object, std::size_t index) {
    const AParameter& uniform = *fragment_.getUniform(index);
    const Subject subject{Role::uniform, uniform.getName(), uniform.getType()};
    PortMetadata metadata = MemberReader(subject, fragment_.key(), tell_).read(object);
    if (metadata != PortMetadata()) read_.uniforms[uniform.getName()] = std::move(metadata);
  }

  /// The parameters of the first profile's code.
  void findSubjects() {
    if (fragment_.getNumProfiles() == 0) return;
    const IShaderFragmentProfile& profile = *fragment_.getProfile(0);
    const ITextParameterList& list = *profile.getFunctionParameters();
    if (profile.getMode() == EShaderFragmentProfileMode::Inline) return findPlaceholders(list);
    for (std::size_t i = 0; i < list.getNumInputs(); ++i) {
      add({Role::input, list.getInputName(i), language_.getTypeID(list.getInputType(i))});
    }
    for (std::size_t i = 0; i < list.getNumOutputs(); ++i) {
      add({Role::output, list.getOutputName(i), language_.getTypeID(list.getOutputType(i))});
    }
  }

  void findPlaceholders(const ITextParameterList& list) {
    for (std::size_t i = 0; i < list.getNumInputs(); ++i) {
      add({Role::input, placeholderName(list.getInputName(i)), std::nullopt});
    }
    const IObjectDataNode* const interface = object_.member(L"interface");
    if (interface == nullptr) return;
    for (const Role role : {Role::input, Role::output}) {
      const IObjectDataNode* const ports = interface->member(role == Role::input ? L"inputs" : L"outputs");
      for (std::size_t i = 0; ports != nullptr && i < ports->size(); ++i) {
        const RefPtr<AParameter> port = makeRef<AParameter>();
        if (port->load(ports->element(i))) addDocumented(role, *port);
      }
    }
  }

  /// Of "{{a}}", as the expression's parameter list has it.
  static std::wstring_view placeholderName(std::wstring_view name) {
    constexpr std::size_t kBraces = 2;
    const bool isBraced = name.starts_with(L"{{") && name.ends_with(L"}}") && name.size() >= 2 * kBraces;
    return isBraced ? name.substr(kBraces, name.size() - 2 * kBraces) : name;
  }

  /// An expression's inputs are its placeholders, whatever is documented; its output has no other name.
  void addDocumented(Role role, const AParameter& documented) {
    const auto known = subjects_.find(documented.getName());
    if (known != subjects_.end()) {
      known->second.type = documented.getType();
    } else if (role == Role::output) {
      add({role, documented.getName(), documented.getType()});
    }
  }

  void add(const Subject& subject) {
    const auto [entry, isNew] = subjects_.emplace(WString(subject.name), subject);
    if (isNew) entry->second.name = entry->first;
  }

  const IObjectDataNode& object_;
  const IShaderFragment& fragment_;
  const ILanguageTraits& language_;
  const TellProblem& tell_;
  Map<WString, Subject> subjects_;
  bool hasListed_ = false;  ///< the ports that there are
  FragmentPorts read_;
};

const PortMetadata* findIn(const Map<WString, PortMetadata>& known, const WString& name) {
  const auto found = known.find(name);
  return found != known.end() ? &found->second : nullptr;
}

}  // namespace

FragmentPorts readPorts(const IObjectDataNode& object, const IShaderFragment& fragment,
                        const ILanguageTraits& language, const TellProblem& tell) {
  return PortReader(object, fragment, language, tell).read();
}

std::span<const std::string_view> portKinds() { return kPortKinds; }
std::span<const std::string_view> portSpaces() { return kPortSpaces; }

const PortMetadata* findPort(const LibraryPorts& libraries, const WString& fragment, const WString& port) {
  const auto found = libraries.find(fragment);
  return found != libraries.end() ? findIn(found->second.ports, port) : nullptr;
}

const PortMetadata* findUniform(const LibraryPorts& libraries, const WString& fragment,
                                const WString& uniform) {
  const auto found = libraries.find(fragment);
  return found != libraries.end() ? findIn(found->second.uniforms, uniform) : nullptr;
}

std::optional<AValue> portValue(const PortMetadata* port, const TypeID& type) {
  AValue value(type);
  if (port == nullptr || port->value.empty() || port->value.size() != value.size()) return std::nullopt;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (!value.set(i, port->value[i])) return std::nullopt;
  }
  return value;
}

}  // namespace TolmSDK::Graphics::sfg::host
