// An ordinary main for fuzz targets: replays every file of the corpus folders named on the command line, then
// a number of reproducible mutations of them, so that the targets are exercised wherever the tests run.
//
//   x_fuzz [--mutations N] [--seed S] [--last FILE] [FILE_OR_FOLDER]...
//
// --last writes each mutation there before it runs, so that one that crashes can be kept.

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

// Of targets that change their inputs in ways of their own.
extern "C" [[gnu::weak]] std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                                             std::size_t capacity, unsigned seed);

namespace {

namespace fs = std::filesystem;

constexpr int kWrongUsage = 2;

using Bytes = std::vector<std::uint8_t>;

struct Arguments {
  std::uint64_t mutations = 0;
  std::uint64_t seed = 1;
  fs::path last;
  std::vector<fs::path> corpora;
};

bool readNumber(char const* text, std::uint64_t& number) {
  std::string_view const view = text == nullptr ? std::string_view() : std::string_view(text);
  auto const [end, error] = std::from_chars(view.data(), view.data() + view.size(), number);
  return !view.empty() && error == std::errc() && end == view.data() + view.size();
}

// Answers false on anything it does not know.
bool readArguments(char** first, Arguments& arguments) {
  for (; *first != nullptr; ++first) {
    std::string_view const word = *first;
    if (word == "--mutations" || word == "--seed") {
      ++first;
      if (!readNumber(*first, word == "--seed" ? arguments.seed : arguments.mutations)) return false;
    } else if (word == "--last") {
      if (*++first == nullptr) return false;
      arguments.last = *first;
    } else if (word.starts_with("--")) {
      return false;
    } else {
      arguments.corpora.emplace_back(word);
    }
  }
  return true;
}

// The files below the given paths, in an order that is the same on every machine.
std::vector<fs::path> findFiles(std::vector<fs::path> const& corpora) {
  std::vector<fs::path> files;
  for (fs::path const& corpus : corpora) {
    if (!fs::is_directory(corpus)) {
      files.push_back(corpus);
      continue;
    }
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(corpus))
      if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

Bytes readFile(fs::path const& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream)
    throw fs::filesystem_error("cannot read", path,
                               std::make_error_code(std::errc::no_such_file_or_directory));
  return Bytes(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

// Hands the bytes over in a buffer of exactly their size, so that an address sanitizer sees a read past the
// end.
void run(Bytes const& bytes) {
  auto const exact = std::make_unique<std::uint8_t[]>(bytes.size());
  if (!bytes.empty()) std::memcpy(exact.get(), bytes.data(), bytes.size());
  LLVMFuzzerTestOneInput(exact.get(), bytes.size());
}

// One edit, which flips a bit, sets, drops, doubles or cuts, or splices another file in.
void edit(Bytes& bytes, std::vector<Bytes> const& inputs, std::mt19937_64& random) {
  auto const below = [&random](std::size_t limit) {
    return limit == 0 ? 0 : static_cast<std::size_t>(random() % limit);
  };
  auto const at = [](Bytes& all, std::size_t position) {
    return all.begin() + static_cast<std::ptrdiff_t>(position);
  };
  constexpr std::string_view kTelling = "{}[]()<>;:,.\"\\/*#\n\r\t 0_\x80\xff";

  std::size_t const index = below(bytes.size());
  std::uint8_t const telling = static_cast<std::uint8_t>(kTelling[below(kTelling.size())]);
  switch (bytes.empty() ? 1 : below(6)) {
  case 0: bytes[index] = static_cast<std::uint8_t>(bytes[index] ^ (1U << below(8))); break;
  case 1: bytes.insert(at(bytes, index), telling); break;
  case 2: bytes[index] = telling; break;
  case 3:
    bytes.erase(at(bytes, index),
                at(bytes, index + below(std::min<std::size_t>(16, bytes.size() - index) + 1)));
    break;
  case 4: bytes.resize(index); break;
  default: {
    Bytes const& other = inputs[below(inputs.size())];
    std::size_t const begin = below(other.size());
    std::size_t const length = below(std::min<std::size_t>(64, other.size() - begin) + 1);
    auto const from = other.begin() + static_cast<std::ptrdiff_t>(begin);
    bytes.insert(at(bytes, index), from, from + static_cast<std::ptrdiff_t>(length));
    break;
  }
  }
}

// What LLVMFuzzerMutate() draws from.
std::mt19937_64 ofMutators;

// One changed copy: a few edits, or what the target makes of it.
Bytes mutate(std::vector<Bytes> const& inputs, std::mt19937_64& random) {
  constexpr std::size_t kRoom = 4096;
  Bytes bytes = inputs[static_cast<std::size_t>(random() % inputs.size())];
  if (LLVMFuzzerCustomMutator != nullptr && random() % 2 == 0) {
    ofMutators.seed(random());
    std::size_t const size = bytes.size();
    bytes.resize(size + kRoom);
    bytes.resize(LLVMFuzzerCustomMutator(bytes.data(), size, bytes.size(), static_cast<unsigned>(random())));
    return bytes;
  }
  for (std::size_t edits = 1 + static_cast<std::size_t>(random() % 4); edits != 0; --edits)
    edit(bytes, inputs, random);
  return bytes;
}

int replay(Arguments const& arguments) {
  std::vector<fs::path> const files = findFiles(arguments.corpora);
  if (files.empty()) {
    std::cerr << "no corpus file found\n";
    return kWrongUsage;
  }

  // The files as they are. Each is named before it runs, so that a crash shows which one it was.
  std::vector<Bytes> inputs;
  for (fs::path const& file : files) {
    std::cout << file.string() << std::endl;
    inputs.push_back(readFile(file));
    run(inputs.back());
  }

  // Mutations of them: number n depends on the seed and n alone, so that `--seed S+n --mutations 1` repeats
  // it.
  for (std::uint64_t n = 0; n != arguments.mutations; ++n) {
    std::mt19937_64 random(arguments.seed + n);
    std::cout << "--seed " << arguments.seed + n << " --mutations 1" << std::endl;
    Bytes const mutation = mutate(inputs, random);
    if (!arguments.last.empty()) {
      std::ofstream(arguments.last, std::ios::binary)
          .write(reinterpret_cast<char const*>(mutation.data()),
                 static_cast<std::streamsize>(mutation.size()));
    }
    run(mutation);
  }
  std::cout << inputs.size() << " files and " << arguments.mutations << " mutations replayed\n";
  return 0;
}

}  // namespace

// What mutators call for an edit of some bytes.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t capacity) {
  Bytes bytes(data, data + size);
  edit(bytes, {bytes}, ofMutators);
  bytes.resize(std::min(bytes.size(), capacity));
  std::copy(bytes.begin(), bytes.end(), data);
  return bytes.size();
}

int main(int argc, char** argv) {
  Arguments arguments;
  if (argc < 1 || !readArguments(argv + 1, arguments)) {
    std::cerr << "usage: x_fuzz [--mutations N] [--seed S] [--last FILE] [FILE_OR_FOLDER]...\n";
    return kWrongUsage;
  }
  try {
    return replay(arguments);
  } catch (std::exception const& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
