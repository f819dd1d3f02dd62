#include "renderer.h"

#include <algorithm>

#include <png.h>

namespace render {

namespace {

using Layout = vk::ImageLayout;
using Stage = vk::PipelineStageFlagBits;
using Access = vk::AccessFlagBits;

constexpr vk::Format kColor = vk::Format::eR8G8B8A8Srgb;
constexpr vk::Format kDepth = vk::Format::eD32Sfloat;
constexpr auto kOne = vk::SampleCountFlagBits::e1;

/// A device that draws has a queue that computes, too.
std::uint32_t findQueueFamily(vk::PhysicalDevice device) {
  constexpr vk::QueueFlags kWork = vk::QueueFlagBits::eGraphics | vk::QueueFlagBits::eCompute;
  const auto families = device.getQueueFamilyProperties();
  for (std::uint32_t i = 0; i < families.size(); ++i)
    if ((families[i].queueFlags & kWork) == kWork) return i;
  throw std::runtime_error("the device cannot draw");
}

struct Image {
  vk::UniqueDeviceMemory memory;
  vk::UniqueImage image;
  vk::UniqueImageView view;
};

Image makeImage(const Device& device, vk::Format format, vk::Extent2D size, vk::ImageUsageFlags usage) {
  const vk::ImageCreateInfo info({}, vk::ImageType::e2D, format, {size.width, size.height, 1}, 1, 1, kOne,
                                 vk::ImageTiling::eOptimal, usage);
  const auto aspect = format == kDepth ? vk::ImageAspectFlagBits::eDepth : vk::ImageAspectFlagBits::eColor;
  Image made;
  made.image = device->createImageUnique(info);
  made.memory = device.allocate(device->getImageMemoryRequirements(*made.image), {});
  device->bindImageMemory(*made.image, *made.memory, 0);
  made.view = device->createImageViewUnique(
      {{}, *made.image, vk::ImageViewType::e2D, format, {}, {aspect, 0, 1, 0, 1}});
  return made;
}

/// Clears a colour and a depth, draws, and leaves the colour to be copied.
vk::UniqueRenderPass makePass(const Device& device) {
  constexpr auto kClear = vk::AttachmentLoadOp::eClear;
  constexpr auto kDepthLayout = Layout::eDepthStencilAttachmentOptimal;
  const vk::AttachmentDescription targets[] = {
      vk::AttachmentDescription({}, kColor, kOne, kClear, {}, {}, {}, {}, Layout::eTransferSrcOptimal),
      vk::AttachmentDescription({}, kDepth, kOne, kClear, {}, {}, {}, {}, kDepthLayout)};
  const vk::AttachmentReference color(0, Layout::eColorAttachmentOptimal);
  const vk::AttachmentReference depth(1, kDepthLayout);
  const vk::SubpassDescription drawn({}, vk::PipelineBindPoint::eGraphics, {}, color, {}, &depth);
  const vk::SubpassDependency copied(0, VK_SUBPASS_EXTERNAL, Stage::eColorAttachmentOutput, Stage::eTransfer,
                                     Access::eColorAttachmentWrite, Access::eTransferRead);
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

}  // namespace

Device::Device() try {
  const vk::ApplicationInfo application("sfg", 1, nullptr, 0, VK_API_VERSION_1_1);
  instance_ = vk::createInstanceUnique(vk::InstanceCreateInfo({}, &application));
  for (const vk::PhysicalDevice device : instance_->enumeratePhysicalDevices()) {
    const bool isProcessor = device.getProperties().deviceType == vk::PhysicalDeviceType::eCpu;
    if (!physical_ || isProcessor) physical_ = device;
  }
  if (!physical_) throw std::runtime_error("the loader lists none");
  const float priority = 1.0f;
  const vk::DeviceQueueCreateInfo queueInfo({}, findQueueFamily(physical_), 1, &priority);
  device_ = physical_.createDeviceUnique(vk::DeviceCreateInfo({}, queueInfo));
  queue_ = device_->getQueue(queueInfo.queueFamilyIndex, 0);
  pool_ = device_->createCommandPoolUnique({{}, queueInfo.queueFamilyIndex});
} catch (const std::runtime_error& error) {
  throw std::runtime_error("no Vulkan device can be used (" + std::string(error.what()) +
                           "): install Mesa's software driver (mesa-vulkan-drivers)");
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

std::vector<std::byte> draw(const Device& device, const Triangles& triangles, vk::Extent2D size) {
  std::vector<Buffer> buffers;
  const auto addBuffer = [&](const auto& values, vk::BufferUsageFlags usage) {
    return *buffers.emplace_back(device.makeBuffer(std::as_bytes(std::span(values)), usage)).buffer;
  };

  // The uniform buffers, where the shaders find them.
  constexpr vk::DescriptorType kUniform = vk::DescriptorType::eUniformBuffer;
  std::vector<vk::DescriptorSetLayoutBinding> places;
  for (const auto& [binding, bytes] : triangles.uniforms)
    places.emplace_back(binding, kUniform, 1, vk::ShaderStageFlagBits::eAllGraphics);
  const auto setLayout = device->createDescriptorSetLayoutUnique({{}, places});
  const auto layout = device->createPipelineLayoutUnique({{}, *setLayout});
  const vk::DescriptorPoolSize poolSize(kUniform, static_cast<std::uint32_t>(places.size()));
  const auto pool = device->createDescriptorPoolUnique({{}, 1, poolSize});
  const vk::DescriptorSet set = device->allocateDescriptorSets({*pool, *setLayout}).front();
  for (const auto& [binding, bytes] : triangles.uniforms) {
    const vk::Buffer buffer = addBuffer(bytes, vk::BufferUsageFlagBits::eUniformBuffer);
    const vk::DescriptorBufferInfo info(buffer, 0, VK_WHOLE_SIZE);
    device->updateDescriptorSets(vk::WriteDescriptorSet(set, binding, 0, kUniform, {}, info), {});
  }
  std::vector<vk::Buffer> attributes;
  for (const auto& [location, values] : triangles.attributes)
    attributes.push_back(addBuffer(values, vk::BufferUsageFlagBits::eVertexBuffer));

  using Usage = vk::ImageUsageFlagBits;
  const Image color = makeImage(device, kColor, size, Usage::eColorAttachment | Usage::eTransferSrc);
  const Image depth = makeImage(device, kDepth, size, Usage::eDepthStencilAttachment);
  const auto pass = makePass(device);
  const vk::ImageView views[] = {*color.view, *depth.view};
  const auto frame = device->createFramebufferUnique({{}, *pass, views, size.width, size.height, 1});
  const auto pipeline = makePipeline(device, triangles, *layout, *pass, size);

  const std::vector<std::byte> black(std::size_t{4} * size.width * size.height);
  const Buffer copy = device.makeBuffer(black, vk::BufferUsageFlagBits::eTransferDst);
  device.run([&](vk::CommandBuffer commands) {
    const vk::ClearValue clear[] = {vk::ClearColorValue(0.0f, 0.0f, 0.0f, 1.0f),
                                    vk::ClearDepthStencilValue(1.0f)};
    commands.beginRenderPass({*pass, *frame, {{}, size}, clear}, vk::SubpassContents::eInline);
    commands.bindPipeline(vk::PipelineBindPoint::eGraphics, *pipeline);
    commands.bindDescriptorSets(vk::PipelineBindPoint::eGraphics, *layout, 0, set, {});
    commands.bindVertexBuffers(0, attributes, std::vector<vk::DeviceSize>(attributes.size()));
    commands.draw(triangles.vertices, 1, 0, 0);
    commands.endRenderPass();
    const vk::BufferImageCopy whole(0, 0, 0, {vk::ImageAspectFlagBits::eColor, 0, 0, 1}, {},
                                    {size.width, size.height, 1});
    commands.copyImageToBuffer(*color.image, Layout::eTransferSrcOptimal, *copy.buffer, whole);
  });
  return {copy.bytes.begin(), copy.bytes.end()};
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
