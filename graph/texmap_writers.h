// Writers of the procedural and utility maps and the smaller materials.
#pragma once

#include "graph/param_rows.h"

namespace orvane {

extern const WriterTable kMixWriter, kCellularWriter, kCheckerWriter, kColorCorrectionWriter,
    kColorMapWriter, kCompositeMapWriter, kCompositeMtlWriter, kCoronaAoWriter,
    kCoronaBlendMtlWriter, kCoronaBumpConverterWriter, kCoronaBumpWriter, kCoronaColorCorrectWriter,
    kCoronaColorWriter, kCoronaCurvatureWriter, kCoronaFrontBackWriter, kCoronaLayeredMtlWriter,
    kCoronaLightMtlWriter, kUvwRandomizerWriter, kCoronaMixWriter, kCoronaMultimapWriter,
    kCoronaNormalWriter, kCoronaRaySwitchWriter, kCoronaRoundEdgeWriter, kCoronaSelectMapWriter,
    kCoronaSelectMtlWriter, kCoronaSkinMtlWriter, kCoronaTileWriter, kCoronaToneMapControlWriter,
    kCoronaTriplanarWriter, kCoronaWireWriter, kDoubleSidedWriter, kFalloffWriter,
    kScatterColorWriter, kGltfWriter, kGradientWriter, kGradientRampWriter, kMapToMaterialWriter,
    kMaskWriter, kOutputSelectorWriter, kMaterialSwitcherWriter, kMorpherWriter,
    kMultiTextureWriter, kNoiseWriter, kNormalBumpWriter, kOutputWriter, kPbrWriter,
    kTwoColorWriter, kRgbMultiplyWriter, kRgbTintWriter, kShellMtlWriter, kShellacWriter,
    kTopBottomWriter, kVRay2SidedWriter, kVRayAlSurfaceWriter, kVRayBlendMtlWriter,
    kVRayCarPaintWriter, kVRayColorWriter, kVRayCompTexWriter, kVRayDirtWriter, kVRayEdgesWriter,
    kVRayFastSssWriter, kVRayLightMtlWriter, kVRayMultiSubWriter, kVRayNormalWriter,
    kVRayFlakesWriter, kXRefWriter;

}  // namespace orvane
