// Reading of fragment objects.

#include <utility>

#include "profiles/object_reader.h"
#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_profile_base.h"
#include "sfg/shader_includes.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/sha1.h"

namespace TolmSDK::Graphics::sfg {
namespace {

/// "profile 2 (line 4, column 7)"
WString describe(std::wstring_view what, std::size_t index, TextPosition place) {
  return formatted(L"%s %Iu (line %Iu, column %Iu)", what, index, place.line, place.column);
}

/// The members of "profiles" that are not null; without any the object itself is its one profile.
Array<const IObjectDataNode*> gatherProfiles(const IObjectDataNode& node) {
  Array<const IObjectDataNode*> profiles;
  if (const IObjectDataNode* list = node.member(L"profiles")) {
    requireKind(NodeKind::array, L"profiles", L"an array of objects", *list);
    for (std::size_t i = 0, count = list->size(); i < count; ++i)
      if (const IObjectDataNode* profile = list->element(i)) profiles.push_back(profile);
  }
  if (profiles.empty()) profiles.push_back(&node);
  return profiles;
}

}  // namespace

bool AShaderFragment::load(const IObjectDataNode* node) { return load(node, ShaderIncludes::Singleton()); }

bool AShaderFragment::load(const IObjectDataNode* node, ShaderIncludes& includes) {
  clear();
  loadError_.clear();
  if (node == nullptr) return false;
  requireKind(NodeKind::object, L"fragment", L"an object", *node);
  loadProfiles(*node);
  loadUniforms(*node);
  buildHash(*node, includes);
  return true;
}

void AShaderFragment::loadProfiles(const IObjectDataNode& node) {
  const Array<const IObjectDataNode*> objects = gatherProfiles(node);
  for (std::size_t i = 0; i < objects.size(); ++i) {
    try {
      requireKind(NodeKind::object, L"profiles", L"an array of objects", *objects[i]);
      const RefPtr<AShaderFragmentProfile> profile = AShaderFragmentProfile::loadProfile(objects[i]);
      if (!profile) throw Exception(L"sfgError : Failed to load profile %d!", i);
      registerProfile(profile.get());
    } catch (const Exception&) {
      loadError_ = describe(L"profile", i, objects[i]->position());
      throw;
    }
  }
}

void AShaderFragment::loadUniforms(const IObjectDataNode& node) {
  const IObjectDataNode* list = node.member(L"uniforms");
  if (list == nullptr) return;
  requireKind(NodeKind::array, L"uniforms", L"an array of parameter objects", *list);
  for (std::size_t i = 0, count = list->size(); i < count; ++i) {
    const auto uniform = makeRef<AParameter>();
    if (!uniform->load(list->element(i))) {
      loadError_ =
          describe(L"uniform", i, list->elementOrNull(i)->position()) + L": " + uniform->getLoadError();
      throw Exception(L"sfgError : Failed to load uniform %i!", i);
    }
    addUniform(uniform.get());
  }
}

void AShaderFragment::buildHash(const IObjectDataNode& node, ShaderIncludes& includes) {
  WString hash = SHA1_GetStringHash(node.toText());
  Set<WString> names;
  for (const IShaderFragmentProfile* profile : profiles_->list)
    names.insert(profile->includes().begin(), profile->includes().end());
  hash += includes.getIncludesHash(names);
  hashString_ = std::make_shared<const WString>(std::move(hash));
}

}  // namespace TolmSDK::Graphics::sfg
