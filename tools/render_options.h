#pragma once

// What the texts of a RenderRequest mean. What is wrong with one throws InputError.

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "pictures/material.h"
#include "pictures/mesh.h"
#include "pictures/picture.h"
#include "tools/render_request.h"

namespace TolmSDK::Graphics::sfg::tools {

vk::Extent2D sizeOf(const std::string& text);
/// By the end of the name.
pictures::PictureFormat formatOf(const std::string& file);
pictures::Mesh meshOf(const RenderRequest& request);
/// What suits a shape of that name.
pictures::Camera cameraOn(const std::string& shape, const pictures::Mesh& mesh);
pictures::Camera cameraOf(const RenderRequest& request, const pictures::Mesh& mesh);
/// Linear colour and opacity; also checks that `environment` is none.
std::array<float, 4> backgroundOf(const std::string& text);
/// The place in render::listDevices() of the device of that name, or of the first graphics card, or of the
/// first that draws in software.
std::size_t deviceOf(const std::string& name);
/// Name and file of "NAME=FILE".
std::pair<std::string, std::string> splitTexture(const std::string& text);

}  // namespace TolmSDK::Graphics::sfg::tools
