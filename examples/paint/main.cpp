// The program of the tutorial: a graph and its lights become a shader, and what a renderer binds for it.
//
//   paint STANDARD_LIBRARY OWN_LIBRARY GRAPH LIGHTS

#include <sfg/host/compile.h>
#include <sfg/host/job.h>

#include <iostream>

using namespace TolmSDK::Graphics::sfg;

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  try {
    const auto libraries = host::LibrarySet::load({{argv[1], argv[2]}, {argv[1], argv[2]}});
    host::CollapseOptions options;
    options.tool = host::CollapseTool::lightLoop;
    host::Job job(libraries, host::Document::fromFile(argv[3]), options, host::Document::fromFile(argv[4]));
    job.collapse();

    const auto names = host::NameStyle::readable;
    const host::Shader shader = job.assemble(host::ShaderStage::pixel, names);
    const host::ShaderInterface interface = job.reflect(host::ShaderStage::pixel, names);
    std::cout << shader.entryPoint << ": " << host::compileToSpirv(shader).size() << " words of SPIR-V\n";
    for (const host::InterfaceMember& member : interface.buffers.at(0).members) {
      std::cout << "  " << member.offset << ": " << member.type << ' ' << member.name << '\n';
    }
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
