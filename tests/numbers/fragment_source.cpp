#include "tests/numbers/fragment_source.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "host/collapse_job.h"
#include "host/shader_compiler.h"
#include "host/shader_options.h"
#include "host/shading_environment.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile.h"
#include "sfg/shader_includes.h"
#include "tolmsdk/object_data_node.h"
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

bool isInline(IShaderFragment const& fragment) {
  return fragment.getProfile(0)->getMode() == EShaderFragmentProfileMode::Inline;
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
  if (subject->getNumInputs() > row.inputs.size()) {
    refuse(profile, "the row has too few inputs");
  }
  for (std::size_t i = 0; i < subject->getNumInputs(); ++i) {
    std::string const port = toUtf8(subject->getInputName(i));
    std::string const type = toUtf8(subject->getInputType(&libraries().language(), i));
    if (row.inputs[i].name != port || row.inputs[i].type != type) {
      refuse(profile, "input " + std::to_string(i) + " is `" + type + " " + port + "`");
    }
    graph->addInput(subject->getInput(i));
    subject->setInputConnection(i, i);
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
  ShaderIncludes::Singleton().createFlatIncludeArray(flat, done, names);
  std::string text;
  for (WString const& name : flat) {
    text += toUtf8(ShaderIncludes::Singleton().getIncludeContent(name.c_str())) + "\n";
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

// Every parameter that the row names is filled from the sample, a further one (state the code names, but not
// for connected inputs) is zero; what the row names beyond the parameters is a uniform.
void placeInputs(ITextParameterList const& parameters, Row const& row, Function& function) {
  auto const isParameter = [&](std::string const& name) {
    for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
      if (toUtf8(parameters.getInputName(i)) == name) {
        return true;
      }
    }
    return false;
  };
  for (Input const& input : row.inputs) {
    function.inputs.push_back({{input.name, input.type}, !isParameter(input.name)});
  }
  for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
    std::string const name = toUtf8(parameters.getInputName(i));
    std::string type = toUtf8(parameters.getInputType(i));
    type = type.substr(type.rfind(' ') + 1);
    if (std::none_of(row.inputs.begin(), row.inputs.end(),
                     [&](Input const& input) { return input.name == name; })) {
      function.zeros.push_back({name, type});
    }
  }
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

Function collapsedFunction(FragmentProfile const& profile, Row const& row) {
  RefPtr<AShaderFragmentGraph> const graph = graphOf(profile, row);
  auto const environment = makeRef<host::ShadingEnvironment>();
  auto const options =
      makeRef<host::ShaderOptions>(UString(L"dx11"), static_cast<float>(profile.lod), 100.0f, nullptr);
  auto const tool = makeRef<AShaderCollapseToolDefault>();
  IShaderFragment const* const result =
      tool->collapse(graph.get(), environment.get(), options.get(), &libraries().language());
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
  function.code = includedText(code.includes()) + toUtf8(code.predefines()) + toUtf8(definition);
  function.call = toUtf8(call);
  placeInputs(parameters, row, function);
  for (std::size_t i = 0; i < parameters.getNumOutputs(); ++i) {
    function.outputs.push_back({toUtf8(parameters.getOutputName(i)), toUtf8(parameters.getOutputType(i))});
  }
  return function;
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
