#pragma once

// What one collapse knows of a fragment and of each of its profiles.

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/model/model_fragment.h"

namespace TolmSDK::Graphics::sfg::model {

struct ProfileInstance {
  const Profile* profile = nullptr;
  std::wstring functionName;
  std::vector<TextPort> outputs;
  std::vector<std::wstring> predefineValues;  ///< of the built-in calls
  std::vector<std::wstring> bodyValues;
  Pattern keywords;
  Pattern uniforms;
  Pattern shaders;
  bool areRequirementsWritten = false;
  bool isDefinitionWritten = false;
  bool isCallWritten = false;
  bool isShaderCallOpen = false;
  bool areOutputsDeclared = false;
  std::set<std::size_t> lightsWritten;

  std::vector<std::wstring> outputNames() const;
};

/// An input's uniform, and the expression that stands for the input when no fragment feeds it.
struct InputValue {
  bool isMade = false;
  bool isSampler = false;
  std::wstring uniform;  ///< as the result lists it; empty without one
  std::wstring text;
};

struct Instance {
  bool isCreated = false;
  std::size_t number = 0;  ///< order of creation
  Fragment fragment;
  ProfileInstance* active = nullptr;
  std::map<std::wstring, ProfileInstance> profiles;
  std::vector<Rule> uniformRules;
  std::vector<InputValue> inputs;
  std::vector<std::wstring> accumulators;
  bool areUniformsWritten = false;

  /// Starts over for a fragment; the first profile for the language is active.
  void create(const Fragment& made, const std::wstring& language);
  void activate(const Profile* profile);
  bool requiresLight() const { return active != nullptr && active->profile->readsCurrentLight(); }
  /// The variable or expression that holds an output; false when there is none of that index.
  bool findOutput(std::size_t index, std::wstring& name) const;

private:
  std::vector<std::wstring> valuesOf(const Profile& profile, const std::vector<BuiltinCall>& calls) const;
};

/// Rules that replace the text of each call by its value.
Pattern makeBuiltinPattern(const std::vector<BuiltinCall>& calls, const std::vector<std::wstring>& values);

}  // namespace TolmSDK::Graphics::sfg::model
