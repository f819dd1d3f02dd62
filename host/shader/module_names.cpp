#include "host/shader/module_names.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "host/shader/interface_names.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Words = std::vector<std::uint32_t>;

constexpr std::size_t kHeader = 5;

// Of the binary form of SPIR-V.
enum Operation : std::uint32_t {
  opName = 5,
  opEntryPoint = 15,
  opTypeStruct = 30,
  opTypePointer = 32,
  opVariable = 59
};
enum ExecutionModel : std::uint32_t { modelVertex = 0 };
enum StorageClass : std::uint32_t { classInput = 1, classUniform = 2, classOutput = 3, classFunction = 7 };

struct Instruction {
  std::size_t start;  ///< among the module's words
  std::uint32_t operation;
  std::size_t length;
};

std::vector<Instruction> instructionsOf(const Words& module) {
  std::vector<Instruction> instructions;
  for (std::size_t at = kHeader; at < module.size();) {
    const std::size_t length = module[at] >> 16;
    if (length == 0 || length > module.size() - at) break;
    instructions.push_back({at, module[at] & 0xffffu, length});
    at += length;
  }
  return instructions;
}

std::string textAt(const Words& module, std::size_t first, std::size_t end) {
  std::string text;
  for (std::size_t at = first; at < end; ++at) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
      const char c = static_cast<char>((module[at] >> shift) & 0xffu);
      if (c == '\0') return text;
      text += c;
    }
  }
  return text;
}

void appendText(Words& words, const std::string& text) {
  for (std::size_t i = 0; i <= text.size(); i += 4) {
    std::uint32_t word = 0;
    for (std::size_t k = i; k < i + 4 && k < text.size(); ++k) {
      word |= static_cast<std::uint32_t>(static_cast<unsigned char>(text[k])) << (8 * (k - i));
    }
    words.push_back(word);
  }
}

using Names = std::unordered_map<std::uint32_t, std::string>;

/// New names, by the number of what has them.
Names findNames(const Words& module, const std::vector<Instruction>& instructions) {
  Names old;
  Names names;
  std::unordered_map<std::uint32_t, std::uint32_t> pointees;
  bool isVertex = false;
  const auto nameOf = [&](std::uint32_t id) {
    const auto found = old.find(id);
    return found == old.end() ? std::string() : found->second;
  };
  for (const Instruction& i : instructions) {
    const std::uint32_t* const words = &module[i.start];
    if (i.operation == opEntryPoint) {
      isVertex = words[1] == modelVertex;
    } else if (i.operation == opName) {
      old[words[1]] = textAt(module, i.start + 2, i.start + i.length);
    } else if (i.operation == opTypePointer) {
      pointees[words[1]] = words[3];
    } else if (i.operation == opVariable) {
      // Members of structures are taken apart: "sfg_in.uv". Blocks have no variable, buffers have.
      const std::string name = nameOf(words[2]);
      const std::size_t dot = name.find('.');
      if (words[3] == classInput && dot != name.npos) {
        const std::string member = name.substr(dot + 1);
        names[words[2]] = isVertex ? vertexAttributeName(member) : attributeName(member);
      }
      if (words[3] == classOutput && dot != name.npos) {
        const std::string member = name.substr(dot + 1);
        names[words[2]] = isVertex ? attributeName(member) : renderTargetName(member);
      }
      if (words[3] == classUniform && name.empty()) {
        names[words[2]] = blockVariable(nameOf(pointees[words[1]]));
      }
    }
  }
  return names;
}

Words headerOf(const Words& module) {
  return {module.begin(), module.begin() + static_cast<std::ptrdiff_t>(std::min(kHeader, module.size()))};
}

void append(Words& words, const Words& module, const Instruction& instruction) {
  const auto first = module.begin() + static_cast<std::ptrdiff_t>(instruction.start);
  words.insert(words.end(), first, first + static_cast<std::ptrdiff_t>(instruction.length));
}

/// Structures and variables outside functions.
std::unordered_set<std::uint32_t> findGlobals(const Words& module,
                                              const std::vector<Instruction>& instructions) {
  std::unordered_set<std::uint32_t> globals;
  for (const Instruction& i : instructions) {
    const std::uint32_t* const words = &module[i.start];
    if (i.operation == opTypeStruct && i.length > 1) globals.insert(words[1]);
    if (i.operation == opVariable && i.length > 3 && words[3] != classFunction) globals.insert(words[2]);
  }
  return globals;
}

}  // namespace

Words dropLocalNames(const Words& module) {
  const std::vector<Instruction> instructions = instructionsOf(module);
  const std::unordered_set<std::uint32_t> globals = findGlobals(module, instructions);
  Words words = headerOf(module);
  for (const Instruction& i : instructions) {
    const bool isLocalName = i.operation == opName && i.length > 1 && !globals.contains(module[i.start + 1]);
    if (!isLocalName) append(words, module, i);
  }
  return words;
}

Words nameModuleInterface(const Words& module) {
  const std::vector<Instruction> instructions = instructionsOf(module);
  const Names names = findNames(module, instructions);
  Words renamed = headerOf(module);
  for (const Instruction& i : instructions) {
    const auto found = i.operation == opName ? names.find(module[i.start + 1]) : names.end();
    if (found == names.end()) {
      append(renamed, module, i);
      continue;
    }
    const std::size_t start = renamed.size();
    renamed.insert(renamed.end(), {opName, found->first});
    appendText(renamed, found->second);
    renamed[start] |= static_cast<std::uint32_t>(renamed.size() - start) << 16;
  }
  return renamed;
}

}  // namespace TolmSDK::Graphics::sfg::host
