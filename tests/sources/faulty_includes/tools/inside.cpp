#include <CLI/CLI.hpp>
#include <unistd.h>
#include "collapse/context.h"
#include "host/job/collapse_job.h"
