#include "renderer.h"

#include <png.h>

namespace render {

namespace {

constexpr vk::Format kColor = vk::Format::eR8G8B8A8Srgb;
constexpr vk::Format kDepth = vk::Format::eD32Sfloat;

vk::AttachmentDescription cleared(vk::Format format, vk::AttachmentStoreOp store, vk::ImageLayout last) {
  return {{}, format, vk::SampleCountFlagBits::e1, vk::AttachmentLoadOp::eClear, store, {}, {}, {}, last};
}

vk::UniqueRenderPass makePass(const Device& device) {
  using Layout = vk::ImageLayout;
  const vk::AttachmentDescription targets[] = {
      cleared(kColor, vk::AttachmentStoreOp::eStore, Layout::eTransferSrcOptimal),
      cleared(kDepth, vk::AttachmentStoreOp::eDontCare, Layout::eDepthStencilAttachmentOptimal)};
  const vk::AttachmentReference color(0, Layout::eColorAttachmentOptimal);
  const vk::AttachmentReference depth(1, Layout::eDepthStencilAttachmentOptimal);
  const vk::SubpassDescription subpass({}, vk::PipelineBindPoint::eGraphics, {}, color, {}, &depth);
  const vk::SubpassDependency copied(
      0, VK_SUBPASS_EXTERNAL, vk::PipelineStageFlagBits::eColorAttachmentOutput,
      vk::PipelineStageFlagBits::eTransfer, vk::AccessFlagBits::eColorAttachmentWrite,
      vk::AccessFlagBits::eTransferRead);
  return device->createRenderPassUnique({{}, targets, subpass, copied});
}

vk::UniquePipeline makePipeline(const Device& device, const Triangles& triangles, vk::PipelineLayout layout,
                                vk::RenderPass pass, vk::Extent2D size) {
  const auto vertexModule = device->createShaderModuleUnique({{}, triangles.vertexStage});
  const auto pixelModule = device->createShaderModuleUnique({{}, triangles.pixelStage});
  const vk::PipelineShaderStageCreateInfo stages[] = {
      {{}, vk::ShaderStageFlagBits::eVertex, *vertexModule, "main"},
      {{}, vk::ShaderStageFlagBits::eFragment, *pixelModule, "main"}};

  // Each stream is a buffer of its own.
  constexpr vk::Format kFormats[] = {vk::Format::eR32Sfloat, vk::Format::eR32G32Sfloat,
                                     vk::Format::eR32G32B32Sfloat, vk::Format::eR32G32B32A32Sfloat};
  std::vector<vk::VertexInputBindingDescription> bindings;
  std::vector<vk::VertexInputAttributeDescription> attributes;
  for (const VertexStream& stream : triangles.streams) {
    const auto binding = static_cast<std::uint32_t>(bindings.size());
    const auto stride = static_cast<std::uint32_t>(stream.components * sizeof(float));
    bindings.emplace_back(binding, stride);
    attributes.emplace_back(stream.location, binding, kFormats[stream.components - 1]);
  }
  const vk::PipelineVertexInputStateCreateInfo input({}, bindings, attributes);
  const vk::PipelineInputAssemblyStateCreateInfo assembly({}, vk::PrimitiveTopology::eTriangleList);
  const vk::Viewport viewport(0, 0, static_cast<float>(size.width), static_cast<float>(size.height), 0, 1);
  const vk::Rect2D scissor({}, size);
  const vk::PipelineViewportStateCreateInfo view({}, viewport, scissor);
  vk::PipelineRasterizationStateCreateInfo raster;
  raster.lineWidth = 1.0f;
  const vk::PipelineMultisampleStateCreateInfo samples;
  const vk::PipelineDepthStencilStateCreateInfo depth({}, true, true, vk::CompareOp::eLess);
  vk::PipelineColorBlendAttachmentState target;
  target.colorWriteMask = vk::FlagTraits<vk::ColorComponentFlagBits>::allFlags;
  const vk::PipelineColorBlendStateCreateInfo blend({}, false, vk::LogicOp::eCopy, target);
  const vk::GraphicsPipelineCreateInfo info({}, stages, &input, &assembly, nullptr, &view, &raster, &samples,
                                            &depth, &blend, nullptr, layout, pass);
  return device->createGraphicsPipelineUnique({}, info).value;
}

}  // namespace

Picture draw(const Device& device, const Triangles& triangles, std::uint32_t width, std::uint32_t height) {
  using Usage = vk::BufferUsageFlagBits;
  const vk::Extent2D size(width, height);

  // The uniform buffers, and where the shaders find them.
  std::vector<vk::DescriptorSetLayoutBinding> places;
  for (const UniformBuffer& uniform : triangles.uniforms) {
    places.emplace_back(uniform.binding, vk::DescriptorType::eUniformBuffer, 1,
                        vk::ShaderStageFlagBits::eAllGraphics);
  }
  const auto setLayout = device->createDescriptorSetLayoutUnique({{}, places});
  const auto layout = device->createPipelineLayoutUnique({{}, *setLayout});
  const vk::DescriptorPoolSize poolSize(vk::DescriptorType::eUniformBuffer,
                                        static_cast<std::uint32_t>(places.size()));
  const auto pool = device->createDescriptorPoolUnique({{}, 1, poolSize});
  const vk::DescriptorSet set = device->allocateDescriptorSets({*pool, *setLayout}).front();
  std::vector<Buffer> uniforms;
  for (const UniformBuffer& uniform : triangles.uniforms) {
    uniforms.push_back(device.makeBuffer(std::as_bytes(std::span(uniform.bytes)), Usage::eUniformBuffer));
    const vk::DescriptorBufferInfo info(*uniforms.back().buffer, 0, VK_WHOLE_SIZE);
    device->updateDescriptorSets(
        vk::WriteDescriptorSet(set, uniform.binding, 0, vk::DescriptorType::eUniformBuffer, {}, info), {});
  }

  std::vector<Buffer> streams;
  for (const VertexStream& stream : triangles.streams) {
    streams.push_back(device.makeBuffer(std::as_bytes(std::span(stream.values)), Usage::eVertexBuffer));
  }

  using ImageUsage = vk::ImageUsageFlagBits;
  const Image color = device.makeImage(kColor, size, ImageUsage::eColorAttachment | ImageUsage::eTransferSrc);
  const Image depth = device.makeImage(kDepth, size, ImageUsage::eDepthStencilAttachment);
  const auto pass = makePass(device);
  const vk::ImageView views[] = {*color.view, *depth.view};
  const auto frame = device->createFramebufferUnique({{}, *pass, views, width, height, 1});
  const auto pipeline = makePipeline(device, triangles, *layout, *pass, size);

  Picture picture{width, height, std::vector<std::uint8_t>(std::size_t{4} * width * height)};
  const auto bytes = std::as_writable_bytes(std::span(picture.rgba));
  const Buffer copy = device.makeBuffer(bytes, Usage::eTransferDst);
  device.run([&](vk::CommandBuffer commands) {
    const vk::ClearValue clear[] = {vk::ClearColorValue(std::array{0.0f, 0.0f, 0.0f, 1.0f}),
                                    vk::ClearDepthStencilValue(1.0f)};
    commands.beginRenderPass({*pass, *frame, {{}, size}, clear}, vk::SubpassContents::eInline);
    commands.bindPipeline(vk::PipelineBindPoint::eGraphics, *pipeline);
    commands.bindDescriptorSets(vk::PipelineBindPoint::eGraphics, *layout, 0, set, {});
    for (std::uint32_t i = 0; i < streams.size(); ++i) {
      commands.bindVertexBuffers(i, *streams[i].buffer, vk::DeviceSize{0});
    }
    commands.draw(triangles.vertices, 1, 0, 0);
    commands.endRenderPass();
    commands.copyImageToBuffer(
        *color.image, vk::ImageLayout::eTransferSrcOptimal, *copy.buffer,
        vk::BufferImageCopy(0, 0, 0, {vk::ImageAspectFlagBits::eColor, 0, 0, 1}, {}, {width, height, 1}));
  });
  device.read(copy, bytes);
  return picture;
}

void writePng(const Picture& picture, const std::string& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = picture.width;
  image.height = picture.height;
  image.format = PNG_FORMAT_RGBA;
  if (png_image_write_to_file(&image, file.c_str(), 0, picture.rgba.data(), 0, nullptr) == 0) {
    throw std::runtime_error("cannot write " + file + ": " + image.message);
  }
}

}  // namespace render
