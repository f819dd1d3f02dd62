#pragma once

// One collapse: a library set, a graph, an environment and options; then the complete shader of its result.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sfg/host/diagnostic.h"
#include "sfg/host/document.h"
#include "sfg/host/errors.h"
#include "sfg/host/export.h"
#include "sfg/host/host_graph.h"
#include "sfg/host/library_set.h"
#include "sfg/host/reflect.h"
#include "sfg/host/shader.h"
#include "sfg/host/source_map.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/ref_object.h"

namespace TolmSDK::Graphics::sfg::host {

/// The default tool writes one function of the graph's inputs and outputs; the light loop a lit surface,
/// accumulated over the lights of the environment.
enum class CollapseTool { standard, lightLoop };

struct CollapseOptions {
  CollapseTool tool = CollapseTool::standard;
  float surfaceLod = 100.0f;
  float lightLod = 100.0f;
  /// Empty names are the tool's own. The light loop takes neither. A function's name can stand in code.
  std::string functionName;
  std::string profileName;
  /// A node or input that is not there, and a value that does not fit, are InputErrors of the job. Only for
  /// documents: a host's own graph gives its constants itself.
  std::vector<NodeConstant> constants;

  bool operator==(const CollapseOptions&) const = default;
};

/// One collapse over a set, which it keeps. Reads its documents when it is made and nothing later, so that
/// whatever happens to graph, files and set meanwhile does not reach it; only of a graph with node classes of
/// its own must nothing change until it is collapsed. Used by one thread at a time; any
/// number of jobs run at once, over one set or several.
class SFG_HOST_API Job {
public:
  /// Reads the documents. Throws InputError, without a set too.
  Job(std::shared_ptr<const LibrarySet> libraries, const Document& graph, const CollapseOptions& options = {},
      const std::optional<Document>& environment = std::nullopt);
  /// The same of a graph with the host's own node classes, which the job keeps and asks again in collapse().
  /// Throws InputError for what is wrong in it, too: a null node or parameter, a name used twice, a wire from
  /// what is not there.
  Job(std::shared_ptr<const LibrarySet> libraries, RefPtr<IHostGraph const> graph,
      const CollapseOptions& options = {}, const std::optional<Document>& environment = std::nullopt);
  /// `other` may then be destroyed or assigned to, nothing else.
  Job(Job&& other) noexcept;
  Job& operator=(Job&& other) noexcept;
  ~Job();

  /// What is odd in the documents: keys that nobody reads, and keys that stand twice. Collapsed or not.
  std::vector<Diagnostic> problems() const;
  /// What keeps any result from becoming a right shader, at its place: wires between types of which one does
  /// not become the other, types that nothing declares, interfaces that contradict their code, and arguments
  /// of `sfg_shader` that do not arrive as they are written. Collapsed or not; collapse() does not mind.
  std::vector<Diagnostic> errors() const;

  /// In which space the function writes the colours of the first output: what the libraries say of the port
  /// that writes them, else of the one before it that says something. "linear", "srgb", "data", or empty. An
  /// environment's output fragment is no part of the function. Collapsed or not.
  std::string colorSpace() const;

  /// Builds the graph and collapses it; a job that is collapsed stays as it is. Throws InputError (a
  /// post-process fragment that does not fit, a host's own graph that has changed since the job was made) and
  /// CollapseError; then it may be tried again.
  void collapse();
  bool isCollapsed() const noexcept;

  /// The steps below ask for a job that is collapsed, and throw std::logic_error of another.

  /// What is valid, but cannot become right code: each cause once, in the order of nodes, lights and
  /// fragments. `completeShader`: the result is assembled, so that graph inputs of a light loop are declared
  /// around it and include files are needed; else the errors() are among the warnings.
  std::vector<Diagnostic> warnings(bool completeShader = true) const;
  /// Everything the function needs put around it. The same text for the same result. Throws AssemblyError.
  ///
  /// A pixel stage takes varying state and graph inputs as attributes and writes each graph output to a
  /// target of its own. A compute stage reads element i of the buffer `sfg_inputs` and writes element i of
  /// `sfg_outputs` for each invocation i below the latter's length.
  ///
  /// A vertex stage computes from the vertices of a mesh what the pixel stage of the same job takes, and the
  /// position in clip space; graph inputs are handed through. It takes only those parts of a vertex that it
  /// needs, so it is the same for every mesh that has them; an AssemblyError names a state variable whose
  /// parts `mesh` lacks. The buffer of its matrices, `sfg_VertexUniforms`, has the number behind those of the
  /// pixel stage. `mesh` means nothing to others.
  Shader assemble(ShaderStage stage = ShaderStage::pixel, NameStyle names = NameStyle::generated,
                  const MeshLayout& mesh = {}) const;
  /// What that shader takes and gives, as its HLSL text has it; interfaceFor() tells what compilers make of
  /// it. A job keeps the shader that it assembled last: reflecting that, or explaining it, assembles nothing.
  /// Throws AssemblyError.
  ShaderInterface reflect(ShaderStage stage = ShaderStage::pixel, NameStyle names = NameStyle::generated,
                          const MeshLayout& mesh = {}) const;
  /// Where every character of that shader comes from, whatever the mesh. The graph is collapsed once more for
  /// it. Throws AssemblyError.
  SourceMap mapSources(ShaderStage stage = ShaderStage::pixel, NameStyle names = NameStyle::generated) const;
  /// What a compiler refused of a shader that assemble() made, in words that lead to the mistake, at its
  /// place in a library file, an include file or a document; behind it notes: who uses the code, and what the
  /// compiler said of which line of the text. Messages that only follow from the first are left out. The
  /// graph is collapsed once more for it.
  std::vector<Diagnostic> explain(const Shader& shader, const CompileError& error) const;
  /// The files that the result was made from: graph, environment, fragment libraries, include files.
  std::vector<std::string> files() const;
  /// The result fragment, whose one profile is the generated function. Lives as long as the job.
  const IShaderFragment& result() const;

  /// The generated function and what it needs as JSON, nothing assembled; "null\n" before collapse().
  std::string resultJson() const;

  /// The graph as a drawing in the language of Graphviz (`dot`): nodes with ports, types and values, wires in
  /// the colour of their type, the profiles that wrote code, which nodes are lit or unused, lights and
  /// chains. `title` stands above it; `pictures` are files to show in nodes, by their names. The graph is
  /// collapsed once more for it.
  std::string drawing(const std::string& title,
                      const std::map<std::string, std::string>& pictures = {}) const;

private:
  struct SFG_HOST_LOCAL State;
  State& collapsed() const;

  std::unique_ptr<State> state_;
};

}  // namespace TolmSDK::Graphics::sfg::host
