// Prints the names that documents and code may use, for the page that lists them: a line each, columns behind
// tabs.
//
//   print_names types     names in documents, number of components, value without one
//   print_names state     name, type, how it reaches the code

#include <cstring>
#include <iostream>

#include "tolmsdk/state_variables.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/unicode.h"
#include "tolmsdk/value.h"

namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics;

void printTypes() {
  for (const TypeID& type : allTypes()) {
    const AValue value(type);
    std::cout << toUtf8(type.toString()) << '\t' << toUtf8(ITypeTraits::getTypeName(type)) << '\t'
              << value.size() << '\t' << toUtf8(toShaderText(value)) << '\n';
  }
}

const char* wayOf(StateVariableKind kind) {
  switch (kind) {
  case StateVariableKind::uniform: return "uniform";
  case StateVariableKind::metaSL: return "metaSL";
  case StateVariableKind::varying: return "varying";
  case StateVariableKind::currentLight: return "light";
  }
  return "";
}

void printStateVariables() {
  for (const StateVariableInfo& state : allStateVariables()) {
    std::cout << toUtf8(state.name.view()) << '\t' << toUtf8(state.type.toString()) << '\t'
              << wayOf(state.kind) << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "types") == 0) return printTypes(), 0;
  if (argc == 2 && std::strcmp(argv[1], "state") == 0) return printStateVariables(), 0;
  return 2;
}
