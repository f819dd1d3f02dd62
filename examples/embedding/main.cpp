// The programs of docs/embedding.md in a row.
//
//   embedding LIBRARY FOLDER

#include <iostream>

#include "embedding.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: embedding LIBRARY FOLDER\n";
    return 2;
  }
  try {
    const auto libraries = load(argv[1]);
    const host::Shader shader = shade(libraries);
    for (const host::Shader& other : shadeInThreads(libraries)) {
      if (other.text != shader.text) return 1;
    }
    std::cout << "entry point " << shader.entryPoint << ", uniforms";
    for (const std::string& uniform : shader.uniforms) std::cout << ' ' << uniform;
    std::cout << '\n';
    const char* const mistaken =
        R"({ "nodes": [ { "name": "a", "fragment": "lambertSurfac" } ], "node": [] })";
    for (const std::string& line : tell(libraries, mistaken)) std::cout << line << '\n';
    std::cout << "meant: " << meant(*libraries, "chekerPattern") << '\n';
    writeSchemas(argv[2]);
    if (!host::hasCompilers()) return 0;
    if (compileOrExplain(libraries).empty()) return 1;
    const std::vector<double> same = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const auto [vertex, pixel] = feedBoth(libraries, {{"sfg_matWorld", same},
                                                      {"sfg_matWorldInverseTranspose", same},
                                                      {"sfg_matWorldViewProj", same},
                                                      {"sfg_eyePosition", {0, 0, 4}}});
    std::cout << "vertices have";
    for (const host::InterfaceAttribute& attribute : vertex.description.attributes) {
      std::cout << ' ' << attribute.origin.name << " at " << *attribute.location;
    }
    std::cout << ", buffers are at";
    for (const auto* stage : {&vertex, &pixel}) {
      for (const auto& [binding, bytes] : stage->buffers)
        std::cout << ' ' << binding << " (" << bytes.size() << ')';
    }
    std::cout << '\n';
    for (const std::string& slider : sliders(pixel.description)) std::cout << slider << '\n';
    const std::vector<std::uint8_t> given = pixel.buffers.at(0);
    const std::vector<std::uint8_t> changed = withValue(pixel.description, "tiles.count", {4, 4});
    std::size_t count = 0;
    for (std::size_t i = 0; i < given.size(); ++i) count += changed.at(i) != given[i] ? 1 : 0;
    std::cout << count << " bytes change with tiles.count\n";
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << '\n';
    return 1;
  }
}
