#include <vulkan/vulkan.hpp>

#include "device.h"
#include "sfg/host/job.h"
