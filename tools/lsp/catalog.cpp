#include "tools/lsp/catalog.h"

#include <algorithm>
#include <set>
#include <utility>

#include "sfg/shader_fragment.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

namespace fs = std::filesystem;

const PortCard* findPort(const std::vector<PortCard>& ports, const std::string& name) {
  const auto found =
      std::find_if(ports.begin(), ports.end(), [&](const PortCard& port) { return port.name == name; });
  return found != ports.end() ? &*found : nullptr;
}

/// What stands in the text; of a string its content.
std::string writtenAs(const JsonScan& scan, std::uint32_t object, std::string_view key) {
  const std::uint32_t item = scan.find(object, key);
  if (item == JsonScan::kNone) return std::string();
  return scan[item].kind == JsonScan::Kind::string
             ? scan.textOf(item)
             : std::string(scan.text().substr(scan[item].begin, scan[item].span().size()));
}

/// Adds what the object says of a port.
void describe(PortCard& card, const JsonScan& scan, std::uint32_t item) {
  if (item == JsonScan::kNone) return;
  if (scan[item].kind == JsonScan::Kind::string) {
    card.description = scan.textOf(item);
    return;
  }
  card.description = scan.textOf(item, "description");
  card.label = scan.textOf(item, "label");
  card.value = writtenAs(scan, item, "value");
  card.min = writtenAs(scan, item, "min");
  card.max = writtenAs(scan, item, "max");
  card.step = writtenAs(scan, item, "step");
  card.kind = scan.textOf(item, "kind");
  card.space = scan.textOf(item, "space");
}

/// The ports that a node of the fragment has: those of its code.
void addPorts(FragmentCard& card, const IShaderFragment& fragment, const ILanguageTraits& language) {
  const RefPtr<IShaderFragment> clone(fragment.clone(WString()));
  auto* const ours = dynamic_cast<AShaderFragment*>(clone.get());
  if (ours == nullptr) return;
  ours->generateAutoInputsOutputs(&language);
  for (std::size_t i = 0; i < ours->getNumInputs(); ++i) {
    PortCard& port = card.inputs.emplace_back();
    port.name = toUtf8(ours->getInputName(i));
    port.type = toUtf8(ours->getInputType(&language, i));
  }
  for (std::size_t i = 0; i < ours->getNumOutputs(); ++i) {
    PortCard& port = card.outputs.emplace_back();
    port.name = toUtf8(ours->getOutputName(i));
    port.type = toUtf8(ours->getOutputType(&language, i));
  }
}

/// The first object of code: a profile, or the fragment itself.
std::uint32_t firstProfile(const JsonScan& scan, std::uint32_t fragment) {
  const std::uint32_t profiles = scan.find(fragment, "profiles");
  if (profiles == JsonScan::kNone || scan.first(profiles) == scan.end(profiles)) return fragment;
  return scan.first(profiles);
}

}  // namespace

const PortCard* FragmentCard::input(const std::string& port) const { return findPort(inputs, port); }
const PortCard* FragmentCard::output(const std::string& port) const { return findPort(outputs, port); }

std::vector<PortCard> readParameters(const JsonScan& scan, std::uint32_t array) {
  std::vector<PortCard> cards;
  if (array == JsonScan::kNone || scan[array].kind != JsonScan::Kind::array) return cards;
  for (std::uint32_t i = scan.first(array); i != scan.end(array); i = scan[i].next) {
    if (scan[i].kind != JsonScan::Kind::object) continue;
    PortCard& card = cards.emplace_back();
    describe(card, scan, i);
    card.name = scan.textOf(i, "name");
    const std::string structure = scan.textOf(i, "struct");
    card.type = structure.empty() ? scan.textOf(i, "type") : structure;
  }
  return cards;
}

Catalog::Catalog(std::shared_ptr<const host::LibrarySet> libraries, TextOf textOf)
    : libraries_(std::move(libraries)), textOf_(std::move(textOf)), fragments_(libraries_->fragments()) {}

const FragmentCard* Catalog::find(const std::string& fragment) const {
  if (const auto known = cards_.find(fragment); known != cards_.end()) return &known->second;
  const auto info = std::lower_bound(
      fragments_.begin(), fragments_.end(), fragment,
      [](const host::FragmentInfo& one, const std::string& name) { return one.name < name; });
  if (info == fragments_.end() || info->name != fragment) return nullptr;
  return &cards_.emplace(fragment, makeCard(*info)).first->second;
}

FragmentCard Catalog::makeCard(const host::FragmentInfo& info) const {
  FragmentCard card{info.name, info.description, info.file, {}, {}, {}, {}};
  const ILanguageTraits& language = libraries_->language();
  if (const IShaderFragment* const fragment = language.findFragment(fromUtf8(info.name)))
    addPorts(card, *fragment, language);
  const ScannedText* const text = textOf_(info.file);
  if (text == nullptr) return card;
  const JsonScan& scan = text->scan();
  const std::uint32_t object = scan.find(scan.root(), info.name);
  if (object == JsonScan::kNone) return card;
  card.mode = scan.textOf(firstProfile(scan, object), "mode");
  card.uniforms = readParameters(scan, scan.find(object, "uniforms"));

  // An expression's parameters have no types but those that the library shows.
  const std::uint32_t interface = scan.find(object, "interface");
  if (interface != JsonScan::kNone) {
    card.inputs = readParameters(scan, scan.find(interface, "inputs"));
    card.outputs = readParameters(scan, scan.find(interface, "outputs"));
  }
  const std::uint32_t ports = scan.find(object, "ports");
  for (std::vector<PortCard>* const list : {&card.inputs, &card.outputs}) {
    for (PortCard& port : *list) describe(port, scan, scan.find(ports, port.name));
  }
  return card;
}

const std::vector<std::string>& Catalog::profileNames() const {
  if (profileNames_) return *profileNames_;
  std::set<std::string> names;
  const ILanguageTraits& language = libraries_->language();
  for (const host::FragmentInfo& info : fragments_) {
    const IShaderFragment* const fragment = language.findFragment(fromUtf8(info.name));
    for (std::size_t i = 0; fragment != nullptr && i < fragment->getNumProfiles(); ++i)
      names.insert(toUtf8(fragment->getProfile(i)->getProfilename()));
  }
  return profileNames_.emplace(names.begin(), names.end());
}

const std::vector<std::string>& Catalog::includeNames() const {
  if (includeNames_) return *includeNames_;
  std::set<std::string> names;
  for (const fs::path& folder : libraries_->folders().includes) {
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
      if (file->path().extension() == ".h") names.insert(file->path().filename().string());
    }
  }
  return includeNames_.emplace(names.begin(), names.end());
}

std::optional<fs::path> Catalog::findInclude(const std::string& name) const {
  if (name.empty() || name.find('/') != name.npos) return std::nullopt;
  for (const fs::path& folder : libraries_->folders().includes) {
    std::error_code error;
    if (fs::path file = folder / name; fs::is_regular_file(file, error)) return file;
  }
  return std::nullopt;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
