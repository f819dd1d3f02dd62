#pragma once
#include <glslang/Public/ShaderLang.h>
#include "fragments/profile_choice.h"
#include "host/documents/reader.h"
#include "text/scan.h"
