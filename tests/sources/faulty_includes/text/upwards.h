#pragma once
#include <sfg/version.h>
#include <string>
#include "text/upwards.h"
#include "collapse/context.h"
#include <nlohmann/json.hpp>
#include <unistd.h>
#include "sfg/host/job.h"
