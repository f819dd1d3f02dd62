#pragma once

// The environment document: lights and the optional output fragment.

#include <string>
#include <unordered_map>
#include <vector>

#include "host/documents/fragment_names.h"
#include "host/documents/port_metadata.h"
#include "sfg/host/diagnostic.h"
#include "sfg/host/document.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

/// What a collapse sees of the scene. A default-made one has no lights. Filled by the loader, then only read.
class ShadingEnvironment : public RefCounted<IShadingEnvironment> {
public:
  struct Light {
    WString name;                      ///< also the instance name of the fragment
    RefPtr<IShaderFragment> fragment;  ///< a clone of the library's
    /// Only its name counts: the light profile that the options give.
    RefPtr<IShaderFragmentProfile> profile;
    TextPosition position;
    TextPosition profilePosition;  ///< of the profile's name, or of the light
  };

  ShadingEnvironment();
  ~ShadingEnvironment() override;

  std::size_t getNumLights() const override { return lights_.size(); }
  const IShaderFragment* getLight(std::size_t index) const override { return lights_[index].fragment.get(); }
  const IShaderFragment* getOutputFragment() const override { return output_.get(); }

  const Array<Light>& lights() const noexcept { return lights_; }
  /// Of the output fragment's name.
  TextPosition outputPosition() const noexcept { return outputPosition_; }
  /// The light whose fragment this is, or null.
  const Light* findLight(const IShaderFragment* fragment) const;
  /// The document it was loaded from; empty for a default-made one.
  const std::string& file() const noexcept { return file_; }
  /// Warnings of keys that nobody reads.
  const std::vector<Diagnostic>& problems() const noexcept { return problems_; }

private:
  friend RefPtr<ShadingEnvironment> loadEnvironment(const Document&, const ILanguageTraits&,
                                                    const LibraryPorts&, const WhyUnknown&);

  std::string file_;
  std::vector<Diagnostic> problems_;
  Array<Light> lights_;
  std::unordered_map<const IShaderFragment*, std::size_t> lightIndex_;
  RefPtr<IShaderFragment> output_;
  TextPosition outputPosition_;
};

/// Reads an environment document. Throws InputError for a malformed one, more lights than code can be written
/// for, a light name used twice and a fragment that the language does not know.
RefPtr<ShadingEnvironment> loadEnvironment(const Document& document, const ILanguageTraits& language,
                                           const LibraryPorts& libraryPorts = {},
                                           const WhyUnknown& whyUnknown = {});
RefPtr<ShadingEnvironment> loadEnvironment(const std::string& file, const ILanguageTraits& language);

/// A clone under an instance name, with the ports of its first profile's function. Inputs have the values
/// that the libraries give them.
RefPtr<IShaderFragment> cloneWithPorts(const IShaderFragment& fragment, const WString& instanceName,
                                       const ILanguageTraits& language,
                                       const LibraryPorts& libraryPorts = {});

/// A copy of a parameter with another default value.
RefPtr<AParameter const> withValue(const AParameter& original, const AValue& value, bool constant);

/// The input of a fragment, or a copy that has the value of the libraries.
RefPtr<AParameter const> withLibraryValue(const AParameter& input, const WString& fragment,
                                          const LibraryPorts& libraryPorts);

}  // namespace TolmSDK::Graphics::sfg::host
