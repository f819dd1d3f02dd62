#include "text/upwards.h"
#include "sfg/host/job.h"
