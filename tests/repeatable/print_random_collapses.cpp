// Prints what the tools make of random scenes, so that two builds can be compared by diff:
//
//   print_random_collapses FIRST COUNT

#include <cstdlib>
#include <iostream>

#include "tests/support/collapse.h"
#include "tests/support/random_scene.h"

using namespace TolmSDK::Graphics::sfg;

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "usage: print_random_collapses FIRST COUNT\n";
    return 2;
  }
  const unsigned long first = std::strtoul(arguments[1], nullptr, 10);
  const unsigned long scenes = std::strtoul(arguments[2], nullptr, 10);
  for (unsigned long seed = first; seed < first + scenes; ++seed) {
    const test::RandomScene random(static_cast<unsigned>(seed));
    std::cout << "scene " << seed << ", default\n"
              << test::collapseDefault(random.scene) << "\nscene " << seed << ", light loop\n"
              << test::collapseLightLoop(random.scene) << '\n';
  }
  return 0;
}
