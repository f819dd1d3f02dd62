// A host with a graph of its own: the editor's node classes are what the generator walks over. Nothing is
// translated, and no file but the fragment library's is read.
//
//   own_graph LIBRARY     prints the shader's text, what it takes and gives, and the size of its module

#include <sfg/host/compile.h>
#include <sfg/host/job.h>

#include <exception>
#include <iostream>
#include <string>
#include <vector>

using namespace TolmSDK;
using namespace TolmSDK::Graphics;
using namespace TolmSDK::Graphics::sfg;

namespace {

using Parameter = RefPtr<AParameter const>;

/// A port, or a slider where it has numbers to start with.
Parameter port(const TypeID& type, const wchar_t* name, const std::vector<double>& numbers = {}) {
  const RefPtr<AParameter> parameter = makeRef<AParameter>(type, name);
  AValue value(type);
  for (std::size_t i = 0; i < numbers.size(); ++i) value.set(i, numbers[i]);
  parameter->setDefaultValue(value);
  return parameter;
}

/// A node of the editor: its class decides which fragment it stands for and which ports it shows.
class EditorNode : public RefCounted<INodeAccessor> {
public:
  std::string title;

  void connect(std::size_t input, const RefPtr<EditorNode>& source) { sources_.at(input) = source; }

  std::size_t getNumInputs() const override { return inputs_.size(); }
  const AParameter* getInput(std::size_t index) const override { return inputs_[index].get(); }
  std::size_t getNumOutputs() const override { return 1; }
  const AParameter* getOutput(std::size_t) const override { return output_.get(); }
  bool getInputConnection(std::size_t index, const INodeAccessor*& source,
                          std::size_t& output) const override {
    if (!sources_[index]) return false;
    source = sources_[index].get();
    output = 0;
    return true;
  }

protected:
  EditorNode(std::string name, std::vector<Parameter> inputs, Parameter output)
      : title(std::move(name)), inputs_(std::move(inputs)), output_(std::move(output)),
        sources_(inputs_.size()) {}

private:
  std::vector<Parameter> inputs_;
  Parameter output_;
  std::vector<RefPtr<EditorNode>> sources_;
};

class Coordinates : public EditorNode {
public:
  Coordinates() : EditorNode("coordinates", {}, port(TypeID_fvec2, L"result")) {}
  const wchar_t* getFragmentName() const override { return L"texCoord"; }
};

class Noise : public EditorNode {
public:
  Noise() : EditorNode("noise", {port(TypeID_fvec2, L"position")}, port(TypeID_float, L"result")) {}
  const wchar_t* getFragmentName() const override { return L"valueNoise2"; }
};

class Ramp : public EditorNode {
public:
  Ramp(const std::vector<double>& low, const std::vector<double>& high)
      : EditorNode("ramp",
                   {port(TypeID_fvec3, L"low", low), port(TypeID_fvec3, L"high", high),
                    port(TypeID_float, L"position")},
                   port(TypeID_fvec3, L"result")) {}
  const wchar_t* getFragmentName() const override { return L"colorRampTwo"; }
};

class Color : public EditorNode {
public:
  Color() : EditorNode("output", {port(TypeID_fvec3, L"color")}, port(TypeID_fvec4, L"result")) {}
  const wchar_t* getFragmentName() const override { return L"outputColor"; }
};

/// The editor's document. The last node is the material.
class EditorGraph : public RefCounted<host::IHostGraph> {
public:
  template <class Node, class... Arguments>
  RefPtr<Node> add(const Arguments&... arguments) {
    const RefPtr<Node> node = makeRef<Node>(arguments...);
    nodes_.push_back(node);
    return node;
  }

  std::size_t getNumInputs() const override { return 0; }
  const AParameter* getInput(std::size_t) const override { return nullptr; }
  std::size_t getNumOutputs() const override { return 1; }
  const AParameter* getOutput(std::size_t) const override { return color_.get(); }
  bool getOutputConnection(std::size_t, const INodeAccessor*& source, std::size_t& output) const override {
    source = nodes_.back().get();
    output = 0;
    return true;
  }
  std::size_t getNumNodes() const override { return nodes_.size(); }
  const INodeAccessor* getNode(std::size_t index) const override { return nodes_[index].get(); }
  std::string getNodeName(std::size_t node) const override { return nodes_[node]->title; }

private:
  std::vector<RefPtr<EditorNode>> nodes_;
  Parameter color_ = port(TypeID_fvec4, L"color");
};

/// Noise over the texture coordinates, as a color.
RefPtr<EditorGraph> makeMaterial() {
  const auto graph = makeRef<EditorGraph>();
  const auto coordinates = graph->add<Coordinates>();
  const auto noise = graph->add<Noise>();
  const auto ramp = graph->add<Ramp>(std::vector<double>{0.1, 0.2, 0.4}, std::vector<double>{0.9, 0.9, 0.7});
  const auto color = graph->add<Color>();
  noise->connect(0, coordinates);
  ramp->connect(2, noise);
  color->connect(0, ramp);
  return graph;
}

void describe(const host::ShaderInterface& shader) {
  for (const host::InterfaceAttribute& attribute : shader.attributes) {
    std::cout << "// takes " << attribute.type << ' ' << attribute.name << ": " << attribute.meaning << '\n';
  }
  for (const host::InterfaceBuffer& buffer : shader.buffers) {
    for (const host::InterfaceMember& member : buffer.members) {
      std::cout << "// " << buffer.name << '+' << member.offset << ": " << member.type << ' '
                << member.origin.path() << '\n';
    }
  }
}

void run(const std::string& library) {
  const auto libraries = host::LibrarySet::load({{library}, {library}});
  host::CollapseOptions options;
  options.functionName = "shadeMaterial";

  host::Job job(libraries, RefPtr<host::IHostGraph const>(makeMaterial()), options);
  job.collapse();
  const host::Shader shader = job.assemble(host::ShaderStage::pixel, host::NameStyle::readable);
  std::cout << shader.text;
  host::ShaderInterface reflection = job.reflect(host::ShaderStage::pixel, host::NameStyle::readable);
  describe(reflection);
  if (!host::hasCompilers()) return;

  const std::vector<std::uint32_t> spirv = host::compileToSpirv(shader);
  reflection = host::interfaceFor(reflection, host::ShaderTarget::spirv);
  host::markUsed(reflection, spirv);
  for (const host::InterfaceBuffer& buffer : reflection.buffers) {
    std::cout << "// bind " << buffer.name << " at " << *buffer.place.binding << '\n';
  }
  std::cout << "// " << spirv.size() << " words of SPIR-V\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: own_graph LIBRARY\n";
    return 2;
  }
  try {
    run(argv[1]);
    return 0;
  } catch (const host::CollapseError& error) {
    for (const host::Diagnostic& diagnostic : error.diagnostics()) std::cerr << diagnostic.text << '\n';
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << '\n';
  }
  return 1;
}
