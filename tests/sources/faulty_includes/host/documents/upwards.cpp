#include "host/documents/reader.h"
#include "host/job/collapse_job.h"
