#include "host/origins/collapse_record.h"

#include <algorithm>

#include "sfg/fragment_profile_instance.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

const std::vector<std::size_t>& nobody() {
  static const std::vector<std::size_t> none;
  return none;
}

std::size_t indexOf(const AShaderFragment& fragment, const AShaderFragmentProfile* profile) {
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i)
    if (fragment.getProfile(i) == profile) return i;
  return kNotFound;
}

}  // namespace

std::size_t CollapseRecord::writerOf(const FragmentProfileInstance& instance) {
  const auto [known, isNew] = writerNumbers_.emplace(
      std::pair<const void*, const void*>(instance.getFragment(), instance.getProfile()), writers_.size());
  if (!isNew) return known->second;
  Writer writer{instance.getFragment(),
                instance.getProfile(),
                indexOf(*instance.getFragment(), instance.getProfile()),
                instance.isInlineProfile(),
                {}};
  if (!writer.isInline) {
    for (std::size_t i = 0; i < instance.getNumOutputs(); ++i)
      instance.appendOutputName(writer.outputs.emplace_back(), i);
  }
  users_[writer.profile].push_back(known->second);
  writers_.push_back(std::move(writer));
  return known->second;
}

void CollapseRecord::onPredefines(const FragmentProfileInstance& instance, std::wstring_view code,
                                  std::span<const WrittenSymbol> written) {
  const std::size_t writer = writerOf(instance);
  if (written.empty()) return;
  codes_.push_back({writer, false, WString(code), {written.begin(), written.end()}, WString()});
}

void CollapseRecord::onDefinition(const FragmentProfileInstance& instance, std::wstring_view code,
                                  std::span<const WrittenSymbol> written) {
  const std::size_t writer = writerOf(instance);
  if (written.empty()) return;
  WString name;
  instance.appendFunctionName(name);
  codes_.push_back({writer, true, WString(code), {written.begin(), written.end()}, std::move(name)});
}

void CollapseRecord::onCall(const FragmentProfileInstance& instance, const Array<WString>& inputValues,
                            std::wstring_view text, std::size_t bodyLength) {
  const std::size_t writer = writerOf(instance);
  if (instance.isInlineProfile()) {
    if (instance.getNumOutputs() != 0)
      expressions_.insert_or_assign(instance.getOutputName(0), Expression{writer, inputValues});
    return;
  }
  WString name;
  instance.appendFunctionName(name);
  std::vector<std::size_t>& callers = callers_[name];
  if (callers.empty() || callers.back() != writer) callers.push_back(writer);
  calls_.push_back({writer, bodyLength, WString(text), inputValues});
}

/// The text stands in front of the length that was told or, when it was put together elsewhere first, behind.
void CollapseRecord::placeCalls(std::wstring_view body) {
  for (Call& call : calls_) {
    const std::size_t told = call.place;
    const std::size_t size = call.text.size();
    call.place = kNotFound;
    if (told > body.size()) continue;
    if (told >= size && body.substr(told - size, size) == call.text) {
      call.place = told - size;
    } else if (body.substr(told, size) == call.text) {
      call.place = told;
    }
  }
  std::erase_if(calls_, [](const Call& call) { return call.place == kNotFound || call.text.empty(); });
  std::stable_sort(calls_.begin(), calls_.end(),
                   [](const Call& a, const Call& b) { return a.place < b.place; });
}

const CollapseRecord::Expression* CollapseRecord::findExpression(const WString& text) const {
  const auto found = expressions_.find(text);
  return found != expressions_.end() ? &found->second : nullptr;
}

const std::vector<std::size_t>& CollapseRecord::callersOf(const WString& function) const {
  const auto found = callers_.find(function);
  return found != callers_.end() ? found->second : nobody();
}

const std::vector<std::size_t>& CollapseRecord::usersOf(const AShaderFragmentProfile* profile) const {
  const auto found = users_.find(profile);
  return found != users_.end() ? found->second : nobody();
}

}  // namespace TolmSDK::Graphics::sfg::host
