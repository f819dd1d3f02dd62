#include "tests/numbers/fragment_source.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <stdexcept>

#include "host/documents/shading_environment.h"
#include "host/job/collapse_job.h"
#include "host/job/shader_options.h"
#include "host/modules/shader_compiler.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_collapse_tool_light_loop.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile.h"
#include "sfg/shader_includes.h"
#include "tests/numbers/reference_texture.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/text_parameter_list.h"
#include "tolmsdk/unicode.h"

namespace numbers_test {

namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics;
using namespace TolmSDK::Graphics::sfg;

host::LoadedLibraries const& libraries() {
  static host::LoadedLibraries const loaded({"library"}, {"library"}, "dx11");
  return loaded;
}

TypeID typeOf(std::string const& text) { return libraries().language().getTypeID(fromUtf8(text)); }

[[noreturn]] void refuse(FragmentProfile const& profile, std::string const& reason) {
  throw std::runtime_error(profile.fragment + ": " + reason);
}

Input const* findInput(Row const& row, std::string const& name) {
  auto const found = std::find_if(row.inputs.begin(), row.inputs.end(),
                                  [&](Input const& input) { return input.name == name; });
  return found == row.inputs.end() ? nullptr : &*found;
}

bool isInline(IShaderFragment const& fragment) {
  return fragment.getProfile(0)->getMode() == EShaderFragmentProfileMode::Inline;
}

// Textures are graph inputs that no row needs to name: there is only the one of reference_texture.h.
bool isTexture(std::string const& type) { return type.starts_with("sfg_sampler"); }

// As parameters, or as uniforms of lights.
bool hasTextures(ITextParameterList const& parameters, IShaderFragment const& result) {
  for (std::size_t i = 0; i < result.getNumUniforms(); ++i) {
    if (isTexture(toUtf8(result.getUniform(i)->getType().toString()))) {
      return true;
    }
  }
  for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
    if (isTexture(toUtf8(parameters.getInputType(i)))) {
      return true;
    }
  }
  return false;
}

// An expression's ports have the types of the row.
void addPortsOfExpression(IShaderFragment& fragment, Row const& row) {
  for (Input const& input : row.inputs) {
    fragment.addInput(typeOf(input.type), fromUtf8(input.name));
  }
  fragment.addOutput(typeOf(row.inlineType), L"result");
}

// A fragment that hands its input on: an expression cannot feed an output of the graph itself.
RefPtr<IShaderFragment> forwarder(std::string const& type) {
  RefPtr<IObjectDataNode> const node(createJsonNode());
  node->loadFromText(fromUtf8("{\"language\": [\"dx11\"], \"implementation\": [\"void forward(" + type +
                              " value, out " + type + " result)\", \"{\", \"result = value;\", \"}\"]}"));
  auto const fragment = makeRef<AShaderFragment>(L"forwarder");
  fragment->load(node.get());
  fragment->generateAutoInputsOutputs(&libraries().language());
  return RefPtr<IShaderFragment>(fragment.get());
}

// A graph of the one fragment: every port is an input or output of the graph.
RefPtr<AShaderFragmentGraph> graphOf(FragmentProfile const& profile, Row const& row) {
  IShaderFragment const* const found = libraries().language().findFragment(fromUtf8(profile.fragment));
  if (found == nullptr) {
    refuse(profile, "not in the library");
  }
  auto const graph = makeRef<AShaderFragmentGraph>();
  RefPtr<IShaderFragment> subject;
  if (isInline(*found)) {
    subject = RefPtr<IShaderFragment>(found->clone(L"subject"));
    addPortsOfExpression(*subject, row);
  } else {
    subject = host::cloneWithPorts(*found, L"subject", libraries().language());
  }
  graph->addFragment(subject.get());
  for (std::size_t i = 0; i < subject->getNumInputs(); ++i) {
    std::string const type = toUtf8(subject->getInputType(&libraries().language(), i));
    Input const* const input = findInput(row, toUtf8(subject->getInputName(i)));
    if (input == nullptr && !isTexture(type)) {
      continue;  // not connected
    }
    if (input != nullptr && input->type != type) {
      refuse(profile, "input `" + input->name + "` is a " + type);
    }
    graph->addInput(subject->getInput(i));
    subject->setInputConnection(i, graph->getNumInputs() - 1);
  }
  RefPtr<IShaderFragment> last = subject;
  if (isInline(*found)) {
    last = forwarder(row.inlineType);
    graph->addFragment(last.get());
    last->setInputConnection(std::size_t{0}, subject.get(), std::size_t{0});
  }
  for (std::size_t i = 0; i < last->getNumOutputs(); ++i) {
    graph->addOutput(last->getOutput(i));
    graph->setOutputConnection(i, last.get(), i);
  }
  return graph;
}

std::string includedText(Set<WString> const& names) {
  Array<WString> flat;
  Set<WString> done;
  libraries().includes().createFlatIncludeArray(flat, done, names);
  std::string text;
  for (WString const& name : flat) {
    text += toUtf8(libraries().includes().getIncludeContent(name.c_str())) + "\n";
  }
  return text;
}

// The function's parameters and, as its body expects them, the state variables that travel as parameters.
ATextParameterList withState(IShaderFragmentProfile const& code) {
  ATextParameterList parameters(*code.getFunctionParameters());
  for (UString const& variable : code.stateVariables()) {
    WString const& name = libraries().language().getStateVariableParameterName(variable);
    if (!name.empty()) {
      parameters.addInput(L"inout " + libraries().language().getStateVariableTypeName(variable), name);
    }
  }
  return parameters;
}

// The name under which the collapsed function reads an input of the row: a parameter (a graph input or
// varying state), a state uniform, or a uniform of the fragment, which was given a longer name. Empty if it
// reads none.
std::string nameInCode(Input const& input, ITextParameterList const& parameters,
                       IShaderFragment const& result, AShaderFragmentGraph const& graph) {
  for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
    if (toUtf8(parameters.getInputName(i)) == input.name) {
      return input.name;
    }
  }
  bool const isGraphInput = graph.findInputIndex(fromUtf8(input.name).c_str()) != kNotFound;
  if (isGraphInput || isStateVariableUniform(UString(fromUtf8(input.name)))) {
    return input.name;
  }
  for (std::size_t i = 0; i < result.getNumUniforms(); ++i) {
    std::string const uniform = toUtf8(result.getUniform(i)->getName());
    if (uniform.starts_with(input.name)) {
      return uniform;
    }
  }
  return {};
}

// What the row names is filled from the sample (state that the code does not read, too); the rest, which the
// code mentions only for other connections, is zero.
void placeInputs(FragmentProfile const& profile, ITextParameterList const& parameters, Row const& row,
                 IShaderFragment const& result, AShaderFragmentGraph const& graph, Function& function) {
  std::set<std::string> locals;
  for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
    locals.insert(toUtf8(parameters.getInputName(i)));
  }
  std::set<std::string> filled;
  for (Input const& input : row.inputs) {
    std::string const name = nameInCode(input, parameters, result, graph);
    if (name.empty()) {
      if (!isStateVariable(UString(fromUtf8(input.name)))) {
        refuse(profile, "the code does not read `" + input.name + "`");
      }
      function.inputs.push_back({{input.name, input.type}, false});
      continue;
    }
    function.inputs.push_back({{name, input.type}, !locals.contains(name)});
    filled.insert(name);
  }
  for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
    std::string const name = toUtf8(parameters.getInputName(i));
    std::string const type = toUtf8(parameters.getInputType(i));
    if (!filled.contains(name)) {
      function.zeros.push_back({name, type.substr(type.rfind(' ') + 1)});
    }
  }
  std::string unset;
  for (std::size_t i = 0; i < result.getNumUniforms(); ++i) {
    std::string const name = toUtf8(result.getUniform(i)->getName());
    std::string const type = toUtf8(result.getUniform(i)->getType().toString());
    if (!filled.contains(name) && !isTexture(type)) {
      unset += "static " + type + " " + name + " = (" + type + ")0;\n";
    }
  }
  function.code = unset + function.code;
}

template <typename Tool>
Function collapseWith(FragmentProfile const& profile, Row const& row,
                      host::ShadingEnvironment const& environment, double lightLod) {
  RefPtr<AShaderFragmentGraph> const graph = graphOf(profile, row);
  auto const options = makeRef<host::ShaderOptions>(UString(L"dx11"), static_cast<float>(profile.lod),
                                                    static_cast<float>(lightLod), &environment);
  auto const tool = makeRef<Tool>();
  IShaderFragment const* const result =
      tool->collapse(graph.get(), &environment, options.get(), &libraries().language());
  if (result == nullptr) {
    refuse(profile, "the collapse answers null");
  }

  IShaderFragmentProfile const& code = *result->getProfile(0);
  ATextParameterList const parameters = withState(code);
  WString definition = L"void " + code.getFunctionName() + L"(";
  parameters.writeParameters(definition, L"    ", true);
  definition += L")\n{\n" + code.getFunctionBody() + L"}\n";
  WString call = code.getFunctionName() + L"(";
  parameters.writeParameters(call, L"        ", false);
  call += L");";

  Function function;
  function.code = (hasTextures(parameters, *result) ? textureOnDevice() : std::string()) +
                  includedText(code.includes()) + toUtf8(code.predefines()) + toUtf8(definition);
  function.call = toUtf8(call);
  placeInputs(profile, parameters, row, *result, *graph, function);
  for (std::size_t i = 0; i < parameters.getNumOutputs(); ++i) {
    function.outputs.push_back({toUtf8(parameters.getOutputName(i)), toUtf8(parameters.getOutputType(i))});
  }
  return function;
}

}  // namespace

std::vector<FragmentProfile> profilesIn(std::string const& file) {
  RefPtr<IObjectDataNode> const document(createJsonNode());
  if (!document->loadFromFile(fromUtf8("library/" + file))) {
    throw std::runtime_error("library/" + file + ": " + toUtf8(document->getLoadError()));
  }
  std::vector<FragmentProfile> result;
  for (std::size_t i = 0; i < document->size(); ++i) {
    std::string const key = toUtf8(document->memberName(i));
    IShaderFragment const* const fragment = libraries().language().findFragment(document->memberName(i));
    if (fragment == nullptr) {
      throw std::runtime_error("library/" + file + ": `" + key + "` does not load");
    }
    for (std::size_t p = 0; p < fragment->getNumProfiles(); ++p) {
      IShaderFragmentProfile const& profile = *fragment->getProfile(p);
      result.push_back({key, toUtf8(profile.getProfilename()), static_cast<double>(profile.getLOD())});
    }
  }
  return result;
}

std::string includeText(std::string const& name) {
  libraries();
  Set<WString> names;
  names.insert(fromUtf8(name));
  return includedText(names);
}

Function collapsedFunction(FragmentProfile const& profile, Row const& row) {
  return collapseWith<AShaderCollapseToolDefault>(profile, row, *makeRef<host::ShadingEnvironment>(), 100.0);
}

Function litFunction(FragmentProfile const& profile, Row const& row, std::string const& environmentFile,
                     double lightLod) {
  RefPtr<host::ShadingEnvironment> const environment =
      host::loadEnvironment(environmentFile, libraries().language());
  return collapseWith<AShaderCollapseToolLightLoop>(profile, row, *environment, lightLod);
}

std::vector<std::uint32_t> compileCompute(std::string const& hlsl) {
  try {
    std::string const bytes =
        host::compileShader(hlsl, "main", host::ShaderStage::compute, host::ShaderTarget::spirv);
    std::vector<std::uint32_t> words(bytes.size() / sizeof(std::uint32_t));
    std::memcpy(words.data(), bytes.data(), words.size() * sizeof(std::uint32_t));
    return words;
  } catch (host::CompileError const& error) {
    std::string complaint = error.what();
    for (host::CompilerMessage const& message : error.messages()) {
      complaint += "\nline " + std::to_string(message.line) + ": " + message.text;
    }
    throw std::runtime_error(complaint + "\nin\n" + hlsl);
  }
}

}  // namespace numbers_test
