#include "renderer.h"

#include <algorithm>

#include <png.h>
#include <vulkan/vulkan_format_traits.hpp>

namespace render {

namespace {

using Layout = vk::ImageLayout;
using Stage = vk::PipelineStageFlagBits;
using Access = vk::AccessFlagBits;

constexpr vk::Format kSrgb = vk::Format::eR8G8B8A8Srgb;
constexpr vk::Format kTexels = vk::Format::eR32G32B32A32Sfloat;
constexpr vk::Format kDepth = vk::Format::eD32Sfloat;
constexpr auto kOne = vk::SampleCountFlagBits::e1;

std::string cannotBeUsed(const std::string& reason) {
  return "no Vulkan device can be used (" + reason +
         "): install Mesa's software driver (mesa-vulkan-drivers)";
}

/// A device that draws has a queue that computes, too.
std::uint32_t findQueueFamily(vk::PhysicalDevice device) {
  constexpr vk::QueueFlags kWork = vk::QueueFlagBits::eGraphics | vk::QueueFlagBits::eCompute;
  const auto families = device.getQueueFamilyProperties();
  for (std::uint32_t i = 0; i < families.size(); ++i)
    if ((families[i].queueFlags & kWork) == kWork) return i;
  throw std::runtime_error("the device cannot draw");
}

Image makeImage(const Device& device, vk::ImageCreateInfo info, vk::ImageViewType type) {
  info.setSamples(kOne).setTiling(vk::ImageTiling::eOptimal);
  const auto aspect =
      info.format == kDepth ? vk::ImageAspectFlagBits::eDepth : vk::ImageAspectFlagBits::eColor;
  Image made;
  made.image = device->createImageUnique(info);
  made.memory = device.allocate(device->getImageMemoryRequirements(*made.image), {});
  device->bindImageMemory(*made.image, *made.memory, 0);
  made.view = device->createImageViewUnique(
      {{}, *made.image, type, info.format, {}, {aspect, 0, info.mipLevels, 0, info.arrayLayers}});
  return made;
}

Image makeTarget(const Device& device, vk::Format format, vk::Extent2D size, vk::ImageUsageFlags usage) {
  const vk::ImageCreateInfo info({}, vk::ImageType::e2D, format, {size.width, size.height, 1}, 1, 1);
  return makeImage(device, vk::ImageCreateInfo(info).setUsage(usage), vk::ImageViewType::e2D);
}

/// Puts the texels where the shaders read them.
Image upload(const Device& device, const Texture& texture) {
  using Usage = vk::ImageUsageFlagBits;
  const bool isCube = texture.type == vk::ImageViewType::eCube;
  const auto dimensions = texture.type == vk::ImageViewType::e1D   ? vk::ImageType::e1D
                          : texture.type == vk::ImageViewType::e3D ? vk::ImageType::e3D
                                                                   : vk::ImageType::e2D;
  const auto levels = static_cast<std::uint32_t>(texture.levels.size());
  const std::uint32_t layers = isCube ? 6 : 1;
  vk::ImageCreateInfo info({}, dimensions, kTexels, texture.size, levels, layers);
  info.setUsage(Usage::eTransferDst | Usage::eSampled);
  if (isCube) info.setFlags(vk::ImageCreateFlagBits::eCubeCompatible);
  Image image = makeImage(device, info, texture.type);

  std::vector<float> texels;
  std::vector<vk::BufferImageCopy> parts;
  for (std::uint32_t level = 0; level < levels; ++level) {
    const vk::Extent3D size(std::max(texture.size.width >> level, 1u),
                            std::max(texture.size.height >> level, 1u),
                            std::max(texture.size.depth >> level, 1u));
    const std::vector<float>& values = texture.levels[level];
    if (values.size() != std::size_t{4} * size.width * size.height * size.depth * layers)
      throw std::runtime_error("a texture's level has the wrong size");
    parts.push_back(vk::BufferImageCopy(texels.size() * sizeof(float), 0, 0,
                                        {vk::ImageAspectFlagBits::eColor, level, 0, layers}, {}, size));
    texels.insert(texels.end(), values.begin(), values.end());
  }
  const Buffer buffer =
      device.makeBuffer(std::as_bytes(std::span(texels)), vk::BufferUsageFlagBits::eTransferSrc);
  device.run([&](vk::CommandBuffer commands) {
    const vk::ImageSubresourceRange whole(vk::ImageAspectFlagBits::eColor, 0, levels, 0, layers);
    constexpr auto kNone = VK_QUEUE_FAMILY_IGNORED;
    const vk::ImageMemoryBarrier toWrite({}, Access::eTransferWrite, Layout::eUndefined,
                                         Layout::eTransferDstOptimal, kNone, kNone, *image.image, whole);
    commands.pipelineBarrier(Stage::eTopOfPipe, Stage::eTransfer, {}, {}, {}, toWrite);
    commands.copyBufferToImage(*buffer.buffer, *image.image, Layout::eTransferDstOptimal, parts);
    const vk::ImageMemoryBarrier toRead(Access::eTransferWrite, Access::eShaderRead,
                                        Layout::eTransferDstOptimal, Layout::eShaderReadOnlyOptimal, kNone,
                                        kNone, *image.image, whole);
    commands.pipelineBarrier(Stage::eTransfer, Stage::eAllGraphics, {}, {}, {}, toRead);
  });
  return image;
}

vk::UniqueSampler makeSampler(const Device& device, const Sampler& sampler) {
  const auto mode = sampler.repeats ? vk::SamplerAddressMode::eRepeat : vk::SamplerAddressMode::eClampToEdge;
  vk::SamplerCreateInfo info({}, vk::Filter::eLinear, vk::Filter::eLinear, vk::SamplerMipmapMode::eLinear,
                             mode, mode, mode);
  info.setMipLodBias(sampler.levelOffset).setMaxLod(VK_LOD_CLAMP_NONE);
  return device->createSamplerUnique(info);
}

/// Clears a colour and a depth, draws, and leaves both to be copied.
vk::UniqueRenderPass makePass(const Device& device, vk::Format format) {
  constexpr auto kClear = vk::AttachmentLoadOp::eClear;
  constexpr auto kDepthLayout = Layout::eDepthStencilAttachmentOptimal;
  const vk::AttachmentDescription targets[] = {
      vk::AttachmentDescription({}, format, kOne, kClear, {}, {}, {}, {}, Layout::eTransferSrcOptimal),
      vk::AttachmentDescription({}, kDepth, kOne, kClear, {}, {}, {}, {}, Layout::eTransferSrcOptimal)};
  const vk::AttachmentReference color(0, Layout::eColorAttachmentOptimal);
  const vk::AttachmentReference depth(1, kDepthLayout);
  const vk::SubpassDescription drawn({}, vk::PipelineBindPoint::eGraphics, {}, color, {}, &depth);
  const vk::SubpassDependency copied(
      0, VK_SUBPASS_EXTERNAL, Stage::eColorAttachmentOutput | Stage::eLateFragmentTests, Stage::eTransfer,
      Access::eColorAttachmentWrite | Access::eDepthStencilAttachmentWrite, Access::eTransferRead);
  return device->createRenderPassUnique({{}, targets, drawn, copied});
}

vk::UniquePipeline makePipeline(const Device& device, const Triangles& triangles, vk::PipelineLayout layout,
                                vk::RenderPass pass, vk::Extent2D size) {
  const auto vertexModule = device->createShaderModuleUnique({{}, triangles.vertexStage});
  const auto pixelModule = device->createShaderModuleUnique({{}, triangles.pixelStage});
  const vk::PipelineShaderStageCreateInfo stages[] = {
      {{}, vk::ShaderStageFlagBits::eVertex, *vertexModule, "main"},
      {{}, vk::ShaderStageFlagBits::eFragment, *pixelModule, "main"}};

  // Each attribute has a buffer of its own.
  constexpr vk::Format kFormats[] = {vk::Format::eR32Sfloat, vk::Format::eR32G32Sfloat,
                                     vk::Format::eR32G32B32Sfloat, vk::Format::eR32G32B32A32Sfloat};
  std::vector<vk::VertexInputBindingDescription> buffers;
  std::vector<vk::VertexInputAttributeDescription> attributes;
  for (const auto& [location, values] : triangles.attributes) {
    const auto components = static_cast<std::uint32_t>(values.size() / triangles.vertices);
    attributes.emplace_back(location, static_cast<std::uint32_t>(buffers.size()), kFormats[components - 1]);
    buffers.emplace_back(attributes.back().binding, components * 4);
  }
  const vk::PipelineVertexInputStateCreateInfo input({}, buffers, attributes);
  const vk::PipelineInputAssemblyStateCreateInfo assembly({}, vk::PrimitiveTopology::eTriangleList);
  const vk::Viewport viewport(0, 0, static_cast<float>(size.width), static_cast<float>(size.height), 0, 1);
  const vk::Rect2D scissor({}, size);
  const vk::PipelineViewportStateCreateInfo view({}, viewport, scissor);
  const auto raster = vk::PipelineRasterizationStateCreateInfo().setLineWidth(1.0f);
  const vk::PipelineMultisampleStateCreateInfo samples;
  const vk::PipelineDepthStencilStateCreateInfo depth({}, true, true, vk::CompareOp::eLess);
  constexpr auto kAllChannels = vk::FlagTraits<vk::ColorComponentFlagBits>::allFlags;
  const auto target = vk::PipelineColorBlendAttachmentState().setColorWriteMask(kAllChannels);
  const vk::PipelineColorBlendStateCreateInfo blend({}, false, {}, target);
  const vk::GraphicsPipelineCreateInfo info({}, stages, &input, &assembly, nullptr, &view, &raster, &samples,
                                            &depth, &blend, nullptr, layout, pass);
  return device->createGraphicsPipelineUnique({}, info).value;
}

void overwrite(const Buffer& buffer, std::span<const std::byte> bytes) {
  if (buffer.bytes.size() != bytes.size()) throw std::runtime_error("a buffer cannot change its size");
  std::ranges::copy(bytes, buffer.bytes.begin());
}

}  // namespace

namespace {

vk::UniqueInstance makeInstance() try {
  const vk::ApplicationInfo application("sfg", 1, nullptr, 0, VK_API_VERSION_1_1);
  return vk::createInstanceUnique(vk::InstanceCreateInfo({}, &application));
} catch (const std::runtime_error& error) {
  throw std::runtime_error(cannotBeUsed(error.what()));
}

bool isProcessor(vk::PhysicalDevice device) {
  return device.getProperties().deviceType == vk::PhysicalDeviceType::eCpu;
}

}  // namespace

std::vector<DeviceDescription> listDevices() {
  std::vector<DeviceDescription> list;
  vk::UniqueInstance instance;
  try {
    instance = makeInstance();
  } catch (const std::runtime_error&) {
    return list;
  }
  for (const vk::PhysicalDevice device : instance->enumeratePhysicalDevices())
    list.push_back({device.getProperties().deviceName.data(), isProcessor(device)});
  return list;
}

Device::Device() : instance_(makeInstance()) {
  vk::PhysicalDevice chosen;
  for (const vk::PhysicalDevice device : instance_->enumeratePhysicalDevices()) {
    if (!chosen || isProcessor(device)) chosen = device;
  }
  open(chosen);
}

Device::Device(std::size_t index) : instance_(makeInstance()) {
  const auto devices = instance_->enumeratePhysicalDevices();
  open(index < devices.size() ? devices[index] : vk::PhysicalDevice());
}

void Device::open(vk::PhysicalDevice chosen) try {
  if (!chosen) throw std::runtime_error("the loader lists none");
  physical_ = chosen;
  const float priority = 1.0f;
  const vk::DeviceQueueCreateInfo queueInfo({}, findQueueFamily(physical_), 1, &priority);
  device_ = physical_.createDeviceUnique(vk::DeviceCreateInfo({}, queueInfo));
  queue_ = device_->getQueue(queueInfo.queueFamilyIndex, 0);
  pool_ = device_->createCommandPoolUnique({{}, queueInfo.queueFamilyIndex});
} catch (const std::runtime_error& error) {
  throw std::runtime_error(cannotBeUsed(error.what()));
}

vk::UniqueDeviceMemory Device::allocate(const vk::MemoryRequirements& needs,
                                        vk::MemoryPropertyFlags wanted) const {
  const vk::PhysicalDeviceMemoryProperties memory = physical_.getMemoryProperties();
  for (std::uint32_t i = 0; i < memory.memoryTypeCount; ++i) {
    const bool isAllowed = (needs.memoryTypeBits & (1u << i)) != 0;
    if (isAllowed && (memory.memoryTypes[i].propertyFlags & wanted) == wanted)
      return device_->allocateMemoryUnique({needs.size, i});
  }
  throw std::runtime_error("the Vulkan device has no fitting memory");
}

Buffer Device::makeBuffer(std::span<const std::byte> bytes, vk::BufferUsageFlags usage) const {
  constexpr auto kSeen = vk::MemoryPropertyFlagBits::eHostVisible | vk::MemoryPropertyFlagBits::eHostCoherent;
  Buffer made;
  made.buffer = device_->createBufferUnique({{}, std::max<vk::DeviceSize>(bytes.size(), 4), usage});
  made.memory = allocate(device_->getBufferMemoryRequirements(*made.buffer), kSeen);
  device_->bindBufferMemory(*made.buffer, *made.memory, 0);
  void* const start = device_->mapMemory(*made.memory, 0, VK_WHOLE_SIZE);
  made.bytes = {static_cast<std::byte*>(start), bytes.size()};
  std::copy(bytes.begin(), bytes.end(), made.bytes.begin());
  return made;
}

void Device::run(const std::function<void(vk::CommandBuffer)>& record) const {
  const auto made = device_->allocateCommandBuffersUnique({*pool_, vk::CommandBufferLevel::ePrimary, 1});
  const vk::CommandBuffer commands = *made.front();
  commands.begin({vk::CommandBufferUsageFlagBits::eOneTimeSubmit});
  record(commands);
  // What was written is then there for the processor.
  const vk::MemoryBarrier barrier(Access::eMemoryWrite, Access::eHostRead);
  commands.pipelineBarrier(Stage::eAllCommands, Stage::eHost, {}, barrier, {}, {});
  commands.end();
  queue_.submit(vk::SubmitInfo({}, {}, commands));
  queue_.waitIdle();
}

Drawing::Drawing(const Device& device, const Triangles& triangles, vk::Extent2D size, vk::Format color)
    : device_(device), size_(size), format_(color), vertices_(triangles.vertices) {
  bind(triangles);
  for (const auto& [location, values] : triangles.attributes) {
    const Buffer& buffer = attributeBuffers_[location] =
        device.makeBuffer(std::as_bytes(std::span(values)), vk::BufferUsageFlagBits::eVertexBuffer);
    attributes_.push_back(*buffer.buffer);
  }
  using Usage = vk::ImageUsageFlagBits;
  color_ = makeTarget(device, color, size, Usage::eColorAttachment | Usage::eTransferSrc);
  depth_ = makeTarget(device, kDepth, size, Usage::eDepthStencilAttachment | Usage::eTransferSrc);
  pass_ = makePass(device, color);
  const vk::ImageView views[] = {*color_.view, *depth_.view};
  frame_ = device->createFramebufferUnique({{}, *pass_, views, size.width, size.height, 1});
  pipeline_ = makePipeline(device, triangles, *layout_, *pass_, size);
  const std::size_t pixels = std::size_t{size.width} * size.height;
  const std::vector<std::byte> zeros(pixels * std::max(vk::blockSize(color), std::uint8_t{4}));
  const auto all = std::span(zeros);
  colorCopy_ =
      device.makeBuffer(all.first(pixels * vk::blockSize(color)), vk::BufferUsageFlagBits::eTransferDst);
  depthCopy_ = device.makeBuffer(all.first(pixels * 4), vk::BufferUsageFlagBits::eTransferDst);
}

/// Buffers, textures and samplers, where the shaders find them.
void Drawing::bind(const Triangles& triangles) {
  using Type = vk::DescriptorType;
  std::vector<vk::DescriptorSetLayoutBinding> places;
  std::vector<vk::DescriptorPoolSize> sizes;
  const auto addPlaces = [&](const auto& things, Type type) {
    for (const auto& [binding, thing] : things)
      places.emplace_back(binding, type, 1, vk::ShaderStageFlagBits::eAllGraphics);
    if (!things.empty()) sizes.emplace_back(type, static_cast<std::uint32_t>(things.size()));
  };
  addPlaces(triangles.uniforms, Type::eUniformBuffer);
  addPlaces(triangles.textures, Type::eSampledImage);
  addPlaces(triangles.samplers, Type::eSampler);
  setLayout_ = device_->createDescriptorSetLayoutUnique({{}, places});
  layout_ = device_->createPipelineLayoutUnique({{}, *setLayout_});
  if (places.empty()) return;
  pool_ = device_->createDescriptorPoolUnique({{}, 1, sizes});
  set_ = device_->allocateDescriptorSets({*pool_, *setLayout_}).front();

  for (const auto& [binding, bytes] : triangles.uniforms) {
    const Buffer& buffer = uniforms_[binding] =
        device_.makeBuffer(std::as_bytes(std::span(bytes)), vk::BufferUsageFlagBits::eUniformBuffer);
    const vk::DescriptorBufferInfo info(*buffer.buffer, 0, VK_WHOLE_SIZE);
    device_->updateDescriptorSets(vk::WriteDescriptorSet(set_, binding, 0, Type::eUniformBuffer, {}, info),
                                  {});
  }
  for (const auto& [binding, texture] : triangles.textures) {
    const Image& image = textures_.emplace_back(upload(device_, texture));
    const vk::DescriptorImageInfo info({}, *image.view, Layout::eShaderReadOnlyOptimal);
    device_->updateDescriptorSets(vk::WriteDescriptorSet(set_, binding, 0, Type::eSampledImage, info), {});
  }
  for (const auto& [binding, sampler] : triangles.samplers) {
    const vk::DescriptorImageInfo info(*samplers_.emplace_back(makeSampler(device_, sampler)), {}, {});
    device_->updateDescriptorSets(vk::WriteDescriptorSet(set_, binding, 0, Type::eSampler, info), {});
  }
}

void Drawing::setUniform(std::uint32_t binding, std::span<const std::uint8_t> bytes) {
  overwrite(uniforms_.at(binding), std::as_bytes(bytes));
}

void Drawing::setAttribute(std::uint32_t location, std::span<const float> values) {
  overwrite(attributeBuffers_.at(location), std::as_bytes(values));
}

void Drawing::draw() {
  device_.run([&](vk::CommandBuffer commands) {
    const bool isOpaque = format_ == kSrgb;
    const vk::ClearValue clear[] = {vk::ClearColorValue(0.0f, 0.0f, 0.0f, isOpaque ? 1.0f : 0.0f),
                                    vk::ClearDepthStencilValue(1.0f)};
    commands.beginRenderPass({*pass_, *frame_, {{}, size_}, clear}, vk::SubpassContents::eInline);
    commands.bindPipeline(vk::PipelineBindPoint::eGraphics, *pipeline_);
    if (set_) commands.bindDescriptorSets(vk::PipelineBindPoint::eGraphics, *layout_, 0, set_, {});
    commands.bindVertexBuffers(0, attributes_, std::vector<vk::DeviceSize>(attributes_.size()));
    commands.draw(vertices_, 1, 0, 0);
    commands.endRenderPass();
    const auto copy = [&](const Image& from, vk::ImageAspectFlagBits aspect, const Buffer& to) {
      const vk::BufferImageCopy whole(0, 0, 0, {aspect, 0, 0, 1}, {}, {size_.width, size_.height, 1});
      commands.copyImageToBuffer(*from.image, Layout::eTransferSrcOptimal, *to.buffer, whole);
    };
    copy(color_, vk::ImageAspectFlagBits::eColor, colorCopy_);
    copy(depth_, vk::ImageAspectFlagBits::eDepth, depthCopy_);
  });
}

std::vector<std::byte> draw(const Device& device, const Triangles& triangles, vk::Extent2D size) {
  Drawing drawing(device, triangles, size, kSrgb);
  drawing.draw();
  return {drawing.colors().begin(), drawing.colors().end()};
}

void writePng(std::span<const std::byte> rgba, vk::Extent2D size, const std::string& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = size.width;
  image.height = size.height;
  image.format = PNG_FORMAT_RGBA;
  if (png_image_write_to_file(&image, file.c_str(), 0, rgba.data(), 0, nullptr) == 0)
    throw std::runtime_error("cannot write " + file + ": " + image.message);
}

}  // namespace render
