// The programs of docs/embedding.md in a row.
//
//   embedding LIBRARY

#include <iostream>

#include "embedding.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: embedding LIBRARY\n";
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
    if (host::hasCompilers() && compileOrExplain(libraries).empty()) return 1;
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << '\n';
    return 1;
  }
}
