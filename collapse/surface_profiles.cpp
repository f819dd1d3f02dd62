#include "collapse/surface_profiles.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <typeinfo>
#include <utility>

#include "sfg/shader_fragment_profile_base.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {

namespace {

const WString kDefault(L"default");

bool requiresLight(const IShaderFragmentProfile* profile) {
  const auto* ours = dynamic_cast<const AShaderFragmentProfile*>(profile);
  return ours != nullptr && ours->stateVariables().contains(StateVariable_currentLight);
}

/// A fragment of a host's own class may choose its profile as it likes.
bool isOwnClass(const AShaderFragment* fragment) {
  return fragment != nullptr && typeid(*fragment) != typeid(AShaderFragment);
}

}  // namespace

SurfaceProfiles::Answer SurfaceProfiles::choose(const WString& name, const UString& language, float lod) {
  if (isOutdated()) {
    bringUpToDate();
    learnInstances();
  }
  Choice& choice = resolve(name, language, lod);
  if (const Failure* failure = findFailure(choice)) {
    bringUpToDate();
    for (std::size_t i = 0; i < known_; ++i) {
      FragmentInstance& instance = instances_[i].instance;
      if (*instances_[i].name < failure->name) instance.activate(findProfile(choice, kindOf(instance)));
    }
    isMixed_ = true;
    return Answer::failed;
  }
  if (choice_ == &choice && !isMixed_) return Answer::same;

  const bool isSimilar = !isMixed_ && choice_ != nullptr && choice_->defaults == choice.defaults;
  // With new numbers for all choices the instances give up profiles of their own.
  if (isMixed_) ++round_;
  if (choice.round != round_) {
    choice.round = round_;
    choice.number = ++lastNumber_;
  }
  choice_ = &choice;
  number_ = choice.number;
  isMixed_ = false;
  return isSimilar ? Answer::similar : Answer::other;
}

const IShaderFragmentProfile* SurfaceProfiles::profileOf(const FragmentInstance& instance) const {
  const Kind kind = kindOf(instance);
  return choice_ != nullptr && kind != kNone ? findProfile(*choice_, kind) : nullptr;
}

bool SurfaceProfiles::requiresCurrentLight() {
  if (choice_ == nullptr || isMixed_ || isOutdated()) {
    for (std::size_t i = 0; i < instances_.size(); ++i)
      if (instances_[i].instance.requiresCurrentLight()) return true;
    return false;
  }
  if (!choice_->isLit) choice_->isLit = isLit(*choice_);
  return *choice_->isLit;
}

bool SurfaceProfiles::isSpecial(const FragmentInstance& instance) const {
  if (choice_ == nullptr || choice_->special.empty()) return false;
  const Kind kind = kindOf(instance);
  return kind != kNone && findSpecial(*choice_, kind) != nullptr;
}

// What is known of the instances.

/// Every instance takes its profile of the choice in force.
void SurfaceProfiles::bringUpToDate() {
  for (std::size_t i = 0; i < instances_.size(); ++i) instances_[i].instance.getActiveProfileInstance();
}

void SurfaceProfiles::learnInstances() {
  choice_ = nullptr;
  last_ = nullptr;
  isMixed_ = true;
  choices_.clear();
  defaults_.clear();
  requests_.clear();
  requestIndex_.clear();
  members_.clear();
  kinds_.clear();
  kindsByProfiles_.clear();
  kindsToAsk_.clear();
  kindsByName_.clear();
  areNamesKnown_ = false;

  known_ = instances_.size();
  areAllCreated_ = true;
  members_.reserve(known_ + 1);
  for (std::size_t i = 0; i < known_; ++i) {
    FragmentInstance& instance = instances_[i].instance;
    if (instance.getFragment() == nullptr) areAllCreated_ = false;
    const Kind kind = findKind(instance.getFragment());
    const std::uint32_t number = instance.getNumber();
    if (members_.size() <= number) members_.resize(number + std::size_t{1});
    members_[number] = {&instance, kind, std::exchange(kinds_[kind].firstInstance, number)};
  }
}

SurfaceProfiles::Kind SurfaceProfiles::findKind(const AShaderFragment* fragment) {
  const auto next = static_cast<Kind>(kinds_.size());
  if (isOwnClass(fragment)) {
    kindsToAsk_.push_back(next);
  } else {
    const void* profiles = fragment != nullptr ? fragment->getProfileTable() : nullptr;
    const auto known = kindsByProfiles_.find(profiles);
    if (known != kindsByProfiles_.end()) return known->second;
    kindsByProfiles_.emplace(profiles, next);
  }
  kinds_.push_back({fragment, kNone});
  return next;
}

void SurfaceProfiles::learnNames() {
  if (std::exchange(areNamesKnown_, true)) return;
  Array<std::wstring_view> keys;
  for (Kind kind = 0; kind < kinds_.size(); ++kind) {
    const AShaderFragment* fragment = kinds_[kind].fragment;
    if (fragment == nullptr || isOwnClass(fragment)) continue;
    keys.clear();
    fragment->appendProfileKeys(keys);
    for (const std::wstring_view key : keys) {
      auto known = kindsByName_.find(key);
      if (known == kindsByName_.end()) known = kindsByName_.try_emplace(names_.add(key)).first;
      known->second.push_back(kind);
    }
  }
}

// What requests come to.

SurfaceProfiles::Choice& SurfaceProfiles::resolve(const WString& name, const UString& language, float lod) {
  if (last_ != nullptr && lastLOD_ == lod && lastLanguage_ == language && lastName_ == name) return *last_;
  last_ = &findOrMake(name, language, lod);
  lastName_ = name;
  lastLanguage_ = language;
  lastLOD_ = lod;
  return *last_;
}

SurfaceProfiles::Choice& SurfaceProfiles::findOrMake(const WString& name, const UString& language,
                                                     float lod) {
  const auto bits = std::bit_cast<std::uint32_t>(lod);
  WString& key = soughtKey_;
  key = name;
  key += L'\0';
  key += language.view();
  key += static_cast<wchar_t>(bits & 0xffff);
  key += static_cast<wchar_t>(bits >> 16);
  const std::size_t hash = std::hash<std::wstring_view>()(key);
  const std::size_t known = requestIndex_.find(hash, [&](std::size_t i) { return requests_[i].key == key; });
  if (known != kNotFound) return *requests_[known].choice;

  Request request{key, nullptr};
  request.choice = name == kDefault ? &makeDefault(language, lod) : &makeNamed(name, language, lod);
  requests_.push_back(std::move(request));
  requestIndex_.add(hash, requests_.size() - 1);
  return *requests_.back().choice;
}

SurfaceProfiles::Choice& SurfaceProfiles::makeDefault(const UString& language, float lod) {
  Defaults& defaults = defaults_.emplace_back();
  defaults.profiles.reserve(kinds_.size());
  for (const KindOfFragment& kind : kinds_) {
    const bool isCreated = kind.fragment != nullptr;
    defaults.profiles.push_back(isCreated ? kind.fragment->findBestProfile(kDefault, language, lod)
                                          : nullptr);
  }
  findFailures(defaults);
  return choices_.emplace_back(Choice{&defaults, {}, {}});
}

/// That of "default" when no instance has another profile of the name.
SurfaceProfiles::Choice& SurfaceProfiles::makeNamed(const WString& name, const UString& language, float lod) {
  Choice& byDefault = resolve(kDefault, language, lod);
  learnNames();
  Choice choice{byDefault.defaults, {}, {}};
  const auto found = kindsByName_.find(name + language.str());
  if (found != kindsByName_.end())
    for (const Kind kind : found->second) addSpecial(choice, kind, name, language, lod);
  for (const Kind kind : kindsToAsk_) addSpecial(choice, kind, name, language, lod);
  if (choice.special.empty()) return byDefault;
  std::sort(choice.special.begin(), choice.special.end(),
            [](const Special& a, const Special& b) { return a.kind < b.kind; });
  return choices_.emplace_back(std::move(choice));
}

void SurfaceProfiles::addSpecial(Choice& choice, Kind kind, const WString& name, const UString& language,
                                 float lod) {
  const IShaderFragmentProfile* best = kinds_[kind].fragment->findBestProfile(name, language, lod);
  if (best != nullptr && best != choice.defaults->profiles[kind]) choice.special.push_back({kind, best});
}

void SurfaceProfiles::findFailures(Defaults& defaults) const {
  Array<std::size_t> failureOf;
  for (Kind kind = 0; kind < kinds_.size(); ++kind) {
    if (defaults.profiles[kind] != nullptr) continue;
    failureOf.resize(kinds_.size(), kNotFound);
    failureOf[kind] = defaults.failures.size();
    defaults.failures.push_back({{}, kind});
  }
  if (failureOf.empty()) return;
  Array<bool> hasName(defaults.failures.size(), false);
  for (std::size_t i = 0; i < known_; ++i) {
    const std::size_t at = failureOf[kindOf(instances_[i].instance)];
    if (at == kNotFound) continue;
    std::wstring_view& first = defaults.failures[at].name;
    first = hasName[at] ? std::min<std::wstring_view>(first, *instances_[i].name) : *instances_[i].name;
    hasName[at] = true;
  }
  std::sort(defaults.failures.begin(), defaults.failures.end(),
            [](const Failure& a, const Failure& b) { return a.name < b.name; });
}

/// The first of the instances without a profile.
const SurfaceProfiles::Failure* SurfaceProfiles::findFailure(const Choice& choice) const {
  for (const Failure& failure : choice.defaults->failures)
    if (findSpecial(choice, failure.kind) == nullptr) return &failure;
  return nullptr;
}

const SurfaceProfiles::Special* SurfaceProfiles::findSpecial(const Choice& choice, Kind kind) {
  const auto found = std::lower_bound(choice.special.begin(), choice.special.end(), kind,
                                      [](const Special& a, Kind sought) { return a.kind < sought; });
  return found != choice.special.end() && found->kind == kind ? &*found : nullptr;
}

const IShaderFragmentProfile* SurfaceProfiles::findProfile(const Choice& choice, Kind kind) {
  const Special* special = findSpecial(choice, kind);
  return special != nullptr ? special->profile : choice.defaults->profiles[kind];
}

bool SurfaceProfiles::isLit(const Choice& choice) {
  Defaults& defaults = *choice.defaults;
  if (defaults.litKinds == kNotFound)
    defaults.litKinds = static_cast<std::size_t>(
        std::count_if(defaults.profiles.begin(), defaults.profiles.end(), requiresLight));
  std::size_t lit = defaults.litKinds;
  for (const Special& special : choice.special) {
    if (requiresLight(special.profile)) return true;
    if (requiresLight(defaults.profiles[special.kind])) --lit;
  }
  return lit != 0;
}

}  // namespace TolmSDK::Graphics::sfg
