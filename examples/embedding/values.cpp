#include "embedding.h"

// Every value that a person may change: its path, what the library says of it, and where it lies.
std::vector<std::string> sliders(const host::ShaderInterface& description) {
  std::vector<std::string> lines;
  for (const host::InterfaceBuffer& buffer : description.buffers) {
    for (const host::InterfaceMember& member : buffer.members) {
      if (member.origin.kind == "stateVariable") continue;
      const std::string about = member.origin.port ? member.origin.port->description : member.type;
      lines.push_back(member.origin.path() + " (" + about + ") at " + std::to_string(member.offset) + " of " +
                      buffer.name);
    }
  }
  return lines;
}

// The bytes of the material's buffer with one value changed: nothing is compiled.
std::vector<std::uint8_t> withValue(const host::ShaderInterface& description, const std::string& path,
                                    const std::vector<double>& numbers) {
  return host::packBuffer(host::findBuffer(description, "sfg_Uniforms"), {{path, numbers}});
}
