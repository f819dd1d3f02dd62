#pragma once
#include "host/job/collapse_job.h"
#include "sfg/host/export.h"
#include "sfg/version.h"
