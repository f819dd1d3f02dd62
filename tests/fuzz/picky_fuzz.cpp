// A target that prints each input and ends the process at one that holds "crash".

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string_view const text(reinterpret_cast<char const*>(data), size);
  std::cout << '<' << text << '>' << std::endl;
  if (text.find("crash") != std::string_view::npos) std::_Exit(77);
  return 0;
}
