#include "host/anything.h"
