#include "text/upwards.h"
