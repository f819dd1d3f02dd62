#pragma once

// Which of its profiles each surface fragment is used with.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "collapse/instance_table.h"
#include "sfg/fragment_instance.h"
#include "sfg/shader_fragment.h"
#include "text/hash_index.h"
#include "text/text_store.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

/// The profiles of all instances of a table. A request (profile name, language, level of detail) is resolved
/// once, into a *choice*: the fragments' best profiles of the name "default", and those of other profiles
/// where a fragment has some of the name. Fragments that share their profiles are resolved together, and
/// requests that nothing answers but "default" have one choice. Another choice costs nothing when it is made:
/// an instance that is asked for its profile compares the choice's number with the one it took last.
class SurfaceProfiles {
public:
  /// What a request has come to.
  enum class Answer {
    failed,   // some instance has no profile for it
    same,     // the choice is the one before
    similar,  // some instances have their special profile of that name, or no longer that of another name
    other,    // any instance may have another profile
  };

  explicit SurfaceProfiles(InstanceTable& instances) : instances_(instances) {}

  /// Gives every instance its best profile of that name, else of the name "default". Where one has neither,
  /// only those in front of it, in the order of their names, take theirs.
  Answer choose(const WString& name, const UString& language, float lod);
  /// An instance was given a profile of its own, which it has until the next request.
  void setMixed() noexcept { isMixed_ = true; }
  /// Of the choice in force; 0 before the first.
  std::uint32_t number() const noexcept { return number_; }
  /// What an instance that took its profile under another number takes now.
  const IShaderFragmentProfile* profileOf(const FragmentInstance& instance) const;
  /// Whether any instance requires the current light.
  bool requiresCurrentLight();

  std::size_t countInstances() const { return instances_.size(); }
  bool isMember(const FragmentInstance& instance) const { return kindOf(instance) != kNone; }
  /// Whether the choice in force has a special profile for the instance, not its "default" one.
  bool isSpecial(const FragmentInstance& instance) const;
  /// Calls `use(instance)` for each of those.
  template <class Use>
  void forEachSpecial(Use&& use) const {
    if (choice_ == nullptr) return;
    for (const Special& special : choice_->special)
      for (std::uint32_t at = kinds_[special.kind].firstInstance; at != kNone; at = members_[at].next)
        use(*members_[at].instance);
  }

private:
  using Kind = std::uint32_t;  // of fragments that share their profiles
  static constexpr std::uint32_t kNone = UINT32_MAX;

  struct KindOfFragment {
    const AShaderFragment* fragment = nullptr;  // one of them
    std::uint32_t firstInstance = kNone;        // the others follow by Member::next
  };
  struct Member {
    FragmentInstance* instance = nullptr;
    Kind kind = kNone;
    std::uint32_t next = kNone;
  };
  struct Special {
    Kind kind;
    const IShaderFragmentProfile* profile;
  };
  struct Failure {
    std::wstring_view name;  // the first of the kind's instances
    Kind kind;
  };
  /// What every request for "default" of one language and level of detail comes to.
  struct Defaults {
    Array<const IShaderFragmentProfile*> profiles;  // by kinds
    Array<Failure> failures;                        // by names
    std::size_t litKinds = kNotFound;               // that require the current light; counted when asked for
  };
  struct Choice {
    Defaults* defaults;
    Array<Special> special;     // by kinds
    std::optional<bool> isLit;  // an instance requires the current light; found out when asked for
    std::uint32_t number = 0;
    std::uint32_t round = 0;  // in which the number is good
  };
  struct Request {
    WString key;
    Choice* choice;
  };

  bool isOutdated() const { return known_ != instances_.size() || !areAllCreated_; }
  void bringUpToDate();
  void learnInstances();
  Kind findKind(const AShaderFragment* fragment);
  void learnNames();
  Choice& resolve(const WString& name, const UString& language, float lod);
  Choice& findOrMake(const WString& name, const UString& language, float lod);
  Choice& makeDefault(const UString& language, float lod);
  Choice& makeNamed(const WString& name, const UString& language, float lod);
  void addSpecial(Choice& choice, Kind kind, const WString& name, const UString& language, float lod);
  void findFailures(Defaults& defaults) const;
  const Failure* findFailure(const Choice& choice) const;
  Kind kindOf(const FragmentInstance& instance) const {
    return instance.getNumber() < members_.size() ? members_[instance.getNumber()].kind : kNone;
  }
  static const Special* findSpecial(const Choice& choice, Kind kind);
  static const IShaderFragmentProfile* findProfile(const Choice& choice, Kind kind);
  static bool isLit(const Choice& choice);

  InstanceTable& instances_;

  // What is known of the instances.
  std::size_t known_ = 0;
  bool areAllCreated_ = true;
  Array<Member> members_;  // by the instances' numbers
  Array<KindOfFragment> kinds_;
  std::unordered_map<const void*, Kind> kindsByProfiles_;
  Array<Kind> kindsToAsk_;  // fragments of a host's own class
  bool areNamesKnown_ = false;
  TextStore names_;  // of profiles, with the language behind
  std::unordered_map<std::wstring_view, Array<Kind>> kindsByName_;

  // What requests have come to.
  std::deque<Defaults> defaults_;
  std::deque<Choice> choices_;
  Array<Request> requests_;
  HashIndex requestIndex_;
  WString soughtKey_;
  // The last one, which most lights ask for again.
  WString lastName_;
  UString lastLanguage_;
  float lastLOD_ = 0.0f;
  Choice* last_ = nullptr;

  // What is in force.
  Choice* choice_ = nullptr;
  bool isMixed_ = true;
  std::uint32_t number_ = 0;
  std::uint32_t lastNumber_ = 0;
  std::uint32_t round_ = 1;
};

}  // namespace TolmSDK::Graphics::sfg
