#include "benchmarks/picture_cases.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "pictures/material.h"
#include "pictures/mesh.h"
#include "render/renderer.h"
#include "sfg/host/job.h"
#include "sfg/host/library_set.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

constexpr const char* kMaterial = "examples/materials/brick.json";
constexpr const char* kEnvironment = "examples/environments/studio.json";
constexpr const char* kWire = R"("b": { "node": "dirt", "output": "result" })";
constexpr const char* kOtherWire = R"("b": { "node": "weathering", "output": "result" })";

std::string textOf(const char* file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The material with one wire from another node.
std::string withOtherWire() {
  std::string text = textOf(kMaterial);
  const std::size_t at = text.find(kWire);
  if (at == text.npos) throw std::logic_error("the material has no such wire");
  return text.replace(at, std::string_view(kWire).size(), kOtherWire);
}

/// A material on a sphere, as somebody sees it who edits it. Libraries are loaded and the device is opened
/// once for all rounds.
class Desk {
public:
  Desk() : moment_{pictures::cameraFor(mesh_, 30, 20), {}, 0} { options_.size = vk::Extent2D(256, 256); }

  void collapse(const host::Document& graph) {
    host::CollapseOptions options;
    options.tool = host::CollapseTool::lightLoop;
    job_.emplace(libraries_, graph, options, host::Document::fromFile(kEnvironment));
    job_->collapse();
  }
  void compile() { material_ = pictures::compileMaterial(*job_); }
  void makeView() {
    view_.emplace(device_, material_, mesh_, pictures::Textures(), pictures::Settings(), options_);
  }
  pictures::Shot draw() { return view_->shoot(moment_); }
  pictures::Shot drawWith(double mortar) {
    view_->set({{"pattern.mortar", {mortar}}});
    return draw();
  }
  pictures::Shot drawAnew(const host::Document& graph) {
    collapse(graph);
    compile();
    makeView();
    return draw();
  }

private:
  std::shared_ptr<const host::LibrarySet> libraries_ = host::LibrarySet::load({{"library"}, {"library"}});
  render::Device device_;
  pictures::Mesh mesh_ = pictures::makeShape("sphere");
  pictures::Moment moment_;
  pictures::ViewOptions options_{.samples = 4};
  std::optional<host::Job> job_;
  pictures::Material material_;
  std::optional<pictures::View> view_;
};

host::Document material() { return host::Document::fromFile(kMaterial); }

/// A round behind a picture that is there.
Case caseOf(const std::string& name, const std::function<std::function<void()>(Desk&)>& roundOver) {
  return {name, {0}, [roundOver](std::size_t) {
            const auto desk = std::make_shared<Desk>();
            desk->drawAnew(material());
            Work work;
            work.usesThreads = true;
            work.round = [desk, round = roundOver(*desk)] { round(); };
            return work;
          }};
}

void requireOther(const pictures::Shot& one, const pictures::Shot& other) {
  if (one.colors.texels == other.colors.texels) throw std::logic_error("the change shows nothing else");
}

std::function<void()> firstPicture(Desk& desk) {
  return [&desk] { desk.drawAnew(material()); };
}

std::function<void()> nextValue(Desk& desk) {
  requireOther(desk.drawWith(0.12), desk.drawWith(0.2));
  return [&desk, isThick = false]() mutable {
    isThick = !isThick;
    const pictures::Compilations before = pictures::compilations();
    desk.drawWith(isThick ? 0.2 : 0.12);
    if (pictures::compilations() != before) throw std::logic_error("a value was changed and code compiled");
  };
}

std::function<void()> nextWire(Desk& desk) {
  const host::Document other = host::Document::fromText(withOtherWire(), "other wire");
  requireOther(desk.drawAnew(material()), desk.drawAnew(other));
  return [&desk, other, isOther = false]() mutable {
    isOther = !isOther;
    desk.drawAnew(isOther ? other : material());
  };
}

}  // namespace

std::string whyNoPictures() {
  const char* const skip = std::getenv("SFG_SKIP_VULKAN_TESTS");
  if (skip != nullptr && *skip != '\0' && std::string_view(skip) != "0")
    return "SFG_SKIP_VULKAN_TESTS is set";
  if (!std::filesystem::exists(kMaterial)) return "this is not the repository's root";
  if (render::listDevices().empty()) return "no device can draw";
  return {};
}

std::vector<Case> pictureCases() {
  if (!whyNoPictures().empty()) return {};
  const auto step = [](const char* name, auto work) {
    return caseOf(name, [work](Desk& desk) { return [&desk, work] { work(desk); }; });
  };
  return {caseOf("picture", firstPicture),
          step("picture: collapse", [](Desk& desk) { desk.collapse(material()); }),
          step("picture: compile", [](Desk& desk) { desk.compile(); }),
          step("picture: pipeline", [](Desk& desk) { desk.makeView(); }),
          caseOf("picture: value", nextValue),
          caseOf("picture: wire", nextWire)};
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks
