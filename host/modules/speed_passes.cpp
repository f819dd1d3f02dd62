#include "host/modules/speed_passes.h"

namespace TolmSDK::Graphics::sfg::host {

void registerSpeedPasses(spvtools::Optimizer& optimizer) {
  using namespace spvtools;
  // Behind these there is one function, and its variables are values wherever that is possible.
  optimizer
      .RegisterLegalizationPasses()
      // What loops and branches left that went away there.
      .RegisterPass(CreateDeadBranchElimPass())
      .RegisterPass(CreateScalarReplacementPass())
      .RegisterPass(CreateLocalAccessChainConvertPass())
      .RegisterPass(CreateLocalSingleBlockLoadStoreElimPass())
      .RegisterPass(CreateLocalSingleStoreElimPass())
      .RegisterPass(CreateAggressiveDCEPass())
      .RegisterPass(CreateSSARewritePass())
      .RegisterPass(CreateAggressiveDCEPass())
      .RegisterPass(CreateCCPPass())
      .RegisterPass(CreateAggressiveDCEPass())
      .RegisterPass(CreateLoopUnrollPass(true))
      .RegisterPass(CreateDeadBranchElimPass())
      // Values that are computed twice.
      .RegisterPass(CreateRedundancyEliminationPass())
      .RegisterPass(CreateCombineAccessChainsPass())
      .RegisterPass(CreateSimplificationPass())
      .RegisterPass(CreateAggressiveDCEPass())
      // Components that nobody asks for.
      .RegisterPass(CreateVectorDCEPass())
      .RegisterPass(CreateIfConversionPass())
      .RegisterPass(CreateAggressiveDCEPass())
      .RegisterPass(CreateBlockMergePass())
      .RegisterPass(CreateRedundancyEliminationPass());
}

}  // namespace TolmSDK::Graphics::sfg::host
