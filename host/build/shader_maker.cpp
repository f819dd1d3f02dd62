#include "host/build/shader_maker.h"

#include <utility>

#include "host/build/build_keys.h"
#include "host/build/value_free_text.h"
#include "host/documents/diagnose.h"
#include "sfg/host/compile.h"

namespace TolmSDK::Graphics::sfg::host {

std::vector<std::uint32_t> wordsOf(const std::string& bytes) {
  std::vector<std::uint32_t> words(bytes.size() / 4);
  for (std::size_t i = 0; i < words.size(); ++i) {
    for (unsigned k = 0; k < 4; ++k)
      words[i] |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[4 * i + k])) << (8 * k);
  }
  return words;
}

std::string CompiledTexts::keyOf(const Shader& shader, const std::optional<ShaderTarget>& target,
                                 const CompileOptions& options) {
  KeyText key;
  key.add(shader.text).add(shader.entryPoint).add(std::to_string(static_cast<int>(shader.stage)));
  if (target) key.add(versionsText()).add(translationText(*target, options)).add(moduleText(options));
  return key.hash();
}

std::shared_ptr<const std::string> CompiledTexts::find(const std::string& key) {
  if (cache_ == nullptr) return nullptr;
  const StepTimer timer(times_, BuildStep::cache);
  std::optional<std::string> bytes = cache_->find(key);
  return bytes ? std::make_shared<const std::string>(std::move(*bytes)) : nullptr;
}

template <class Make>
CompiledTexts::Answer CompiledTexts::once(const std::string& key, const Make& make) {
  std::promise<std::shared_ptr<const std::string>> promise;
  {
    std::unique_lock<std::mutex> lock(mutex_);
    if (const auto* const known = texts_.find(key)) {
      const auto answer = *known;
      lock.unlock();
      return {answer.get(), false};
    }
    texts_.insert(key, promise.get_future().share());
  }
  try {
    Answer answer{find(key), false};
    if (!answer.bytes) {
      answer = {std::make_shared<const std::string>(make()), true};
      const StepTimer timer(times_, BuildStep::cache);
      if (cache_ != nullptr) cache_->keep(key, *answer.bytes);
    }
    promise.set_value(answer.bytes);
    return answer;
  } catch (...) {
    promise.set_exception(std::current_exception());
    throw;
  }
}

CompiledTexts::Answer CompiledTexts::compile(const Shader& shader, const std::optional<ShaderTarget>& target,
                                             const CompileOptions& options) {
  const std::string key = keyOf(shader, target, options);
  if (!target) return {once(key, [&] { return shader.text; }).bytes, false};
  if (*target != ShaderTarget::spirv) {
    return once(key, [&] {
      const std::vector<std::uint32_t> spirv = wordsOf(*compile(shader, ShaderTarget::spirv, options).bytes);
      const StepTimer timer(times_, BuildStep::translate);
      return translateSpirv(spirv, shader.stage, *target, options);
    });
  }
  return once(key, [&] {
    const StepTimer timer(times_, BuildStep::compile);
    ++compiled_;
    return translateSpirv(compileToSpirv(shader, options), shader.stage, ShaderTarget::spirv, options);
  });
}

bool ShaderMaker::collapse(const Document& graph, const std::optional<Document>& environment,
                           const CollapseOptions& options) {
  const StepTimer timer(times_, BuildStep::collapse);
  try {
    job_.emplace(libraries_, graph, options, environment);
    tell(job_->problems());
    if (const std::vector<Diagnostic> errors = job_->errors(); !errors.empty()) {
      tell(errors);
      return false;
    }
    job_->collapse();
    tell(job_->warnings());
    return true;
  } catch (const InputError& error) {
    tell(error.related());
    tell(std::vector{error.diagnostic()});
  } catch (const CollapseError& refusal) {
    tell(refusal.diagnostics());
  }
  return false;
}

namespace {

/// What compilers are given: without values, which they pass over. A module for debuggers holds the whole
/// text.
Shader compiledForm(const Shader& shader, const BuildTask& task) {
  Shader form = shader;
  if (task.target && !task.compile.debug) form.text = withoutUniformValues(shader.text);
  return form;
}

}  // namespace

std::optional<ShaderMaker::Made> ShaderMaker::make(const BuildTask& task) {
  Shader shader;
  try {
    const StepTimer timer(times_, BuildStep::assemble);
    shader = job_->assemble(task.stage, task.names, task.mesh);
  } catch (const AssemblyError& error) {
    tell(std::vector{diagnose(Finding::incompleteShader, Severity::error, task.graph, {}, error.what())});
    return std::nullopt;
  }
  try {
    const Shader form = compiledForm(shader, task);
    const CompiledTexts::Answer answer = texts_.compile(form, task.target, task.compile);
    Made made{answer.bytes,
              {},
              CompiledTexts::keyOf(form, task.target, task.compile),
              answer.isMade || !task.target};
    if (!task.reflection.empty()) made.reflection = reflectionOf(task, form);
    return made;
  } catch (const CompileError& error) {
    tell(job_->explain(shader, error));
  }
  return std::nullopt;
}

/// Without the names of files, so that it is the same wherever they are.
std::string ShaderMaker::reflectionOf(const BuildTask& task, const Shader& shader) const {
  ShaderInterface reflection = job_->reflect(task.stage, task.names, task.mesh);
  reflection.files.clear();
  if (task.target) {
    reflection = interfaceFor(reflection, *task.target, task.compile);
    markUsed(reflection, wordsOf(*texts_.compile(shader, ShaderTarget::spirv, task.compile).bytes));
  }
  return writeInterfaceJson(reflection);
}

}  // namespace TolmSDK::Graphics::sfg::host
