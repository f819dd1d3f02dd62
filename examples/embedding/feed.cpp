#include "embedding.h"

// A stage of a collapsed job as a renderer takes it: the module, where its attributes are, and the bytes of
// its constant buffers with the values of the scene in them.
Stage feed(const host::Job& job, host::ShaderStage stage, const State& state) {
  const host::Shader shader = job.assemble(stage, host::NameStyle::readable);
  Stage fed;
  fed.spirv = host::compileToSpirv(shader);
  const host::ShaderInterface assembled = job.reflect(stage, host::NameStyle::readable);
  fed.description = host::interfaceFor(assembled, host::ShaderTarget::spirv);
  for (const host::InterfaceBuffer& buffer : fed.description.buffers) {
    std::vector<host::ValueSetting> settings;
    for (const host::InterfaceMember& member : buffer.members) {
      const auto known = state.find(member.origin.name);
      if (member.origin.kind == "stateVariable" && known != state.end()) {
        settings.push_back({member.name, known->second});
      }
    }
    fed.buffers[*buffer.place.binding] = host::packBuffer(buffer, settings);
  }
  return fed;
}

// The pair of shaders that draws a mesh with the material: the vertex stage gives what the pixel stage takes.
std::pair<Stage, Stage> feedBoth(const std::shared_ptr<const host::LibrarySet>& libraries,
                                 const State& state) {
  host::CollapseOptions options;
  options.tool = host::CollapseTool::lightLoop;
  host::Job job(libraries, host::Document::from(describe()), options, host::Document::from(scene()));
  job.collapse();
  return {feed(job, host::ShaderStage::vertex, state), feed(job, host::ShaderStage::pixel, state)};
}
