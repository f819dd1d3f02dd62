// Prints what it carries of a shader, or writes the shader's bytes.

#include <cstdio>
#include <cstring>

#include "materials.h"

int main(int argc, char** argv) {
  for (const materials::Shader& shader : materials::all) {
    if (argc > 1 && shader.file == argv[1]) {
      std::fwrite(shader.bytes.data(), 1, shader.bytes.size(), stdout);
      return 0;
    }
  }
  for (const materials::Shader& shader : materials::all) {
    const bool tellsHash = shader.reflection.find(shader.hash) != std::string_view::npos;
    std::printf("%s %zu %zu %s\n", shader.file.data(), shader.bytes.size(), shader.hash.size(),
                tellsHash ? "reflected" : "not reflected");
  }
}
