// Compiles a graph for Vulkan and tells what the shader wants to be fed: wall GRAPH FRAGMENTS, with the
// folder of the standard fragments in SFG_LIBRARY.

#include <sfg/host/compile.h>
#include <sfg/host/job.h>

#include <cstdlib>
#include <fstream>
#include <iostream>

using namespace TolmSDK::Graphics::sfg;

int main(int argc, char** argv) try {
  const char* const standard = std::getenv("SFG_LIBRARY");
  if (argc != 3 || standard == nullptr) return 2;

  // Fragments and include files, read once for any number of graphs.
  const auto libraries = host::LibrarySet::load({{standard, argv[2]}, {standard, argv[2]}});

  // One graph becomes one shader.
  host::Job job(libraries, host::Document::fromFile(argv[1]));
  job.collapse();
  const host::Shader shader = job.assemble();
  const std::string module = host::compile(shader, host::ShaderTarget::spirv);
  std::ofstream("wall.spv", std::ios::binary) << module;
  std::cout << "wall.spv: entry point " << shader.entryPoint << '\n';

  // Its uniforms, by the names of nodes and inputs.
  const host::ShaderInterface interface = job.reflect(host::ShaderStage::pixel, host::NameStyle::readable);
  for (const host::InterfaceBuffer& buffer : interface.buffers) {
    for (const host::InterfaceMember& member : buffer.members)
      std::cout << buffer.name << " + " << member.offset << ": " << member.name << '\n';
  }
  return 0;
} catch (const host::CollapseError& error) {
  for (const host::Diagnostic& told : error.diagnostics())
    std::cerr << told.place() << ": " << told.text << '\n';
  return 1;
} catch (const std::exception& error) {
  std::cerr << "error: " << error.what() << '\n';
  return 1;
}
