// Prints what random scenes collapse to, ten times each, and fails when a repetition differs. The argument
// shifts the addresses of everything: two runs with different ones have to print the same.

#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <vector>

#include "tests/support/collapse.h"
#include "tests/support/random_scene.h"

using namespace TolmSDK;
using namespace TolmSDK::Graphics::sfg;

namespace {

/// Holds blocks of random sizes and frees some of them, so that later allocations land elsewhere and in
/// another order.
class AddressShift {
public:
  explicit AddressShift(unsigned seed) : random_(seed) { shift(1000); }
  void shift(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) blocks_.push_back(std::make_unique<char[]>(random_() % 700));
    for (std::size_t i = 0; i < count / 2; ++i) blocks_[random_() % blocks_.size()].reset();
  }

private:
  std::mt19937 random_;
  std::vector<std::unique_ptr<char[]>> blocks_;
};

}  // namespace

int main(int count, char** arguments) {
  AddressShift addresses(count > 1 ? static_cast<unsigned>(std::atoi(arguments[1])) : 0);
  for (unsigned seed = 1; seed <= 60; ++seed) {
    std::string first;
    for (int repetition = 0; repetition < 10; ++repetition) {
      addresses.shift(50);
      const test::RandomScene random(seed);
      const std::string text = test::collapseDefault(random.scene) + test::collapseLightLoop(random.scene);
      if (repetition == 0) first = text;
      if (text != first) {
        std::cerr << "scene " << seed << " differs in repetition " << repetition << '\n';
        return 1;
      }
    }
    std::cout << "scene " << seed << '\n' << first;
  }
  return 0;
}
