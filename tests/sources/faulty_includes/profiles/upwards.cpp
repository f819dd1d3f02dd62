#include "text/upwards.h"
#include "profiles/reader.h"
#include "fragments/ports.h"
