#pragma once

// Plans that tests of what is made of them write down.

#include <gtest/gtest.h>

#include "host/shader/shader_plan.h"

namespace TolmSDK::Graphics::sfg::host {

/// A function of a varying and a state variable, an attribute of whole numbers among them, with a vector, a
/// flag and a matrix for outputs.
inline ShaderPlan makePlan(ShaderStage stage) {
  ShaderPlan plan;
  plan.stage = stage;
  plan.functionName = L"shade";
  plan.entryPoint = L"main";
  plan.body =
      L"void shade(float2 uv, bool flag, inout bool sfg_frontFacing, out float3 color, out bool lit, out "
      L"float2x2 turn)\n{\n}\n";
  plan.parameters.list = makeRef<ATextParameterList>();
  plan.parameters.list->addInput(L"float2", L"uv");
  plan.parameters.list->addInput(L"bool", L"flag");
  plan.parameters.list->addInput(L"inout bool", L"sfg_frontFacing");
  plan.parameters.list->addOutput(L"float3", L"color");
  plan.parameters.list->addOutput(L"bool", L"lit");
  plan.parameters.list->addOutput(L"float2x2", L"turn");
  plan.parameters.firstState = 2;
  plan.parameters.firstCustom = 3;
  plan.varyings = {{TypeID_bool, L"sfg_frontFacing", L"SV_IsFrontFace", true, kNotFound},
                   {TypeID_fvec2, L"uv", L"GRAPHINPUT0", false, 0},
                   {TypeID_bool, L"flag", L"GRAPHINPUT1", false, 1}};
  plan.graphInputs = {{{TypeID_fvec2, L"float2", L"uv"}, UsedInput::Way::varying, L""},
                      {{TypeID_bool, L"bool", L"flag"}, UsedInput::Way::varying, L""}};
  plan.outputs = {{TypeID_fvec3, L"float3", L"color"},
                  {TypeID_bool, L"bool", L"lit"},
                  {TypeID_fmat2, L"float2x2", L"turn"}};
  return plan;
}

}  // namespace TolmSDK::Graphics::sfg::host
