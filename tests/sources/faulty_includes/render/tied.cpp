#include <vulkan/vulkan.hpp>

#include "renderer.h"
#include "sfg/host/job.h"
