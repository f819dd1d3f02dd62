#include "tests/materialx/compute_device.h"

#include <cstring>
#include <limits>
#include <stdexcept>

#include <png.h>

namespace materialx_test {

namespace {

struct Texture {
  vk::UniqueDeviceMemory memory;
  vk::UniqueImage image;
  vk::UniqueImageView view;
};

vk::ImageMemoryBarrier barrier(vk::Image image, vk::ImageLayout from, vk::ImageLayout to,
                               vk::AccessFlags before, vk::AccessFlags behind) {
  return {before,
          behind,
          from,
          to,
          VK_QUEUE_FAMILY_IGNORED,
          VK_QUEUE_FAMILY_IGNORED,
          image,
          {vk::ImageAspectFlagBits::eColor, 0, 1, 0, 1}};
}

Texture makeTexture(const render::Device& device, const Image& image) {
  constexpr vk::Format kFormat = vk::Format::eR32G32B32A32Sfloat;
  const vk::Extent3D size(image.width, image.height, 1);
  Texture texture;
  texture.image =
      device->createImageUnique({{},
                                 vk::ImageType::e2D,
                                 kFormat,
                                 size,
                                 1,
                                 1,
                                 vk::SampleCountFlagBits::e1,
                                 vk::ImageTiling::eOptimal,
                                 vk::ImageUsageFlagBits::eSampled | vk::ImageUsageFlagBits::eTransferDst});
  texture.memory = device.allocate(device->getImageMemoryRequirements(*texture.image),
                                   vk::MemoryPropertyFlagBits::eDeviceLocal);
  device->bindImageMemory(*texture.image, *texture.memory, 0);
  const render::Buffer staged = device.makeBuffer(std::as_bytes(std::span<const float>(image.texels)),
                                                  vk::BufferUsageFlagBits::eTransferSrc);
  device.run([&](vk::CommandBuffer commands) {
    using Layout = vk::ImageLayout;
    using Stage = vk::PipelineStageFlagBits;
    using Access = vk::AccessFlagBits;
    commands.pipelineBarrier(
        Stage::eTopOfPipe, Stage::eTransfer, {}, {}, {},
        barrier(*texture.image, Layout::eUndefined, Layout::eTransferDstOptimal, {}, Access::eTransferWrite));
    const vk::BufferImageCopy copy(0, 0, 0, {vk::ImageAspectFlagBits::eColor, 0, 0, 1}, {}, size);
    commands.copyBufferToImage(*staged.buffer, *texture.image, Layout::eTransferDstOptimal, copy);
    commands.pipelineBarrier(Stage::eTransfer, Stage::eComputeShader, {}, {}, {},
                             barrier(*texture.image, Layout::eTransferDstOptimal,
                                     Layout::eShaderReadOnlyOptimal, Access::eTransferWrite,
                                     Access::eShaderRead));
  });
  texture.view = device->createImageViewUnique({{},
                                                *texture.image,
                                                vk::ImageViewType::e2D,
                                                kFormat,
                                                {},
                                                {vk::ImageAspectFlagBits::eColor, 0, 1, 0, 1}});
  return texture;
}

/// What is bound, from the layout of the set to its writes.
class Bindings {
public:
  explicit Bindings(const render::Device& device) : device_(device) {}

  void add(std::uint32_t binding, vk::DescriptorType type) {
    bindings_.emplace_back(binding, type, 1, vk::ShaderStageFlagBits::eCompute);
    sizes_.emplace_back(type, 1);
  }
  void make() {
    layout = device_->createDescriptorSetLayoutUnique({{}, bindings_});
    pool_ = device_->createDescriptorPoolUnique(
        {vk::DescriptorPoolCreateFlagBits::eFreeDescriptorSet, 1, sizes_});
    set = std::move(device_->allocateDescriptorSetsUnique({*pool_, *layout}).front());
  }
  void write(std::uint32_t binding, vk::DescriptorType type, const render::Buffer& buffer) {
    const vk::DescriptorBufferInfo info(*buffer.buffer, 0, VK_WHOLE_SIZE);
    device_->updateDescriptorSets(vk::WriteDescriptorSet(*set, binding, 0, type, {}, info), {});
  }
  void write(std::uint32_t binding, vk::DescriptorType type, const vk::DescriptorImageInfo& info) {
    device_->updateDescriptorSets(vk::WriteDescriptorSet(*set, binding, 0, type, info), {});
  }

  vk::UniqueDescriptorSetLayout layout;

private:
  const render::Device& device_;
  std::vector<vk::DescriptorSetLayoutBinding> bindings_;
  std::vector<vk::DescriptorPoolSize> sizes_;
  vk::UniqueDescriptorPool pool_;

public:
  vk::UniqueDescriptorSet set;
};

}  // namespace

Image readPng(const std::string& file) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&png, file.c_str()) == 0) {
    throw std::runtime_error(file + ": " + png.message);
  }
  png.format = PNG_FORMAT_RGBA;
  std::vector<std::uint8_t> bytes(PNG_IMAGE_SIZE(png));
  if (png_image_finish_read(&png, nullptr, bytes.data(), 0, nullptr) == 0) {
    throw std::runtime_error(file + ": " + png.message);
  }
  Image image{png.width, png.height, {}};
  for (const std::uint8_t byte : bytes) image.texels.push_back(static_cast<float>(byte) / 255.0f);
  return image;
}

std::vector<float> runCompute(const render::Device& device, const std::vector<std::uint32_t>& spirv,
                              const Resources& resources, std::uint32_t groups) {
  using Type = vk::DescriptorType;
  using Usage = vk::BufferUsageFlagBits;
  Bindings bindings(device);
  if (!resources.elements.empty()) bindings.add(resources.input, Type::eStorageBuffer);
  bindings.add(resources.output, Type::eStorageBuffer);
  for (const auto& [binding, unused] : resources.uniforms) bindings.add(binding, Type::eUniformBuffer);
  for (const auto& [binding, unused] : resources.textures) bindings.add(binding, Type::eSampledImage);
  for (const std::uint32_t binding : resources.samplers) bindings.add(binding, Type::eSampler);
  bindings.make();

  std::vector<render::Buffer> buffers;
  const auto bind = [&](std::uint32_t binding, Type type, std::span<const std::byte> bytes, Usage usage) {
    buffers.push_back(device.makeBuffer(bytes, usage));
    bindings.write(binding, type, buffers.back());
  };
  if (!resources.elements.empty()) {
    bind(resources.input, Type::eStorageBuffer, std::as_bytes(std::span(resources.elements)),
         Usage::eStorageBuffer);
  }
  for (const auto& [binding, bytes] : resources.uniforms) {
    bind(binding, Type::eUniformBuffer, std::as_bytes(std::span(bytes)), Usage::eUniformBuffer);
  }
  std::vector<Texture> textures;
  for (const auto& [binding, image] : resources.textures) {
    textures.push_back(makeTexture(device, *image));
    bindings.write(binding, Type::eSampledImage,
                   {{}, *textures.back().view, vk::ImageLayout::eShaderReadOnlyOptimal});
  }
  vk::SamplerCreateInfo filtering({}, vk::Filter::eLinear, vk::Filter::eLinear);
  const vk::UniqueSampler sampler = device->createSamplerUnique(filtering);
  for (const std::uint32_t binding : resources.samplers) {
    bindings.write(binding, Type::eSampler, vk::DescriptorImageInfo{*sampler, {}, {}});
  }
  const std::vector<float> unwritten(resources.outputSize, std::numeric_limits<float>::quiet_NaN());
  bind(resources.output, Type::eStorageBuffer, std::as_bytes(std::span(unwritten)), Usage::eStorageBuffer);

  const vk::UniqueShaderModule module =
      device->createShaderModuleUnique({{}, spirv.size() * sizeof(std::uint32_t), spirv.data()});
  const vk::UniquePipelineLayout layout = device->createPipelineLayoutUnique({{}, *bindings.layout});
  const vk::PipelineShaderStageCreateInfo stage({}, vk::ShaderStageFlagBits::eCompute, *module, "main");
  const vk::UniquePipeline pipeline = device->createComputePipelineUnique({}, {{}, stage, *layout}).value;
  device.run([&](vk::CommandBuffer commands) {
    commands.bindPipeline(vk::PipelineBindPoint::eCompute, *pipeline);
    commands.bindDescriptorSets(vk::PipelineBindPoint::eCompute, *layout, 0, *bindings.set, {});
    commands.dispatch(groups, 1, 1);
  });
  std::vector<float> result(resources.outputSize);
  std::memcpy(result.data(), buffers.back().bytes.data(), result.size() * sizeof(float));
  return result;
}

}  // namespace materialx_test
