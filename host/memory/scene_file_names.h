// The names the scene file uses for host codes, shared by its reader and writer.
#pragma once

#include <string_view>
#include <utility>

#include "host/animatable.h"
#include "host/host_types.h"
#include "host/memory/memory_scene.h"

namespace orvane::host::memory {

inline constexpr std::pair<std::string_view, int> kParamTypes[] = {
    {"float", TYPE_FLOAT},       {"int", TYPE_INT},         {"rgba", TYPE_RGBA},
    {"point3", TYPE_POINT3},     {"bool", TYPE_BOOL},       {"angle", TYPE_ANGLE},
    {"percent", TYPE_PCNT_FRAC}, {"world", TYPE_WORLD},     {"string", TYPE_STRING},
    {"filename", TYPE_FILENAME}, {"mtl", TYPE_MTL},         {"texmap", TYPE_TEXMAP},
    {"bitmap", TYPE_BITMAP},     {"node", TYPE_INODE},      {"reftarg", TYPE_REFTARG},
    {"index", TYPE_INDEX},       {"matrix3", TYPE_MATRIX3}, {"frgba", TYPE_FRGBA},
};

// Whether a parameter of this base type holds a value the core can read; the format writes
// null for the others ("bitmap", and types it has no name for).
constexpr bool ParamTypeHoldsValue(int baseType) {
  for (int type : {TYPE_FLOAT, TYPE_INT, TYPE_RGBA, TYPE_POINT3, TYPE_BOOL, TYPE_ANGLE,
                   TYPE_PCNT_FRAC, TYPE_WORLD, TYPE_STRING, TYPE_FILENAME, TYPE_MTL, TYPE_TEXMAP,
                   TYPE_INODE, TYPE_REFTARG, TYPE_INDEX, TYPE_MATRIX3, TYPE_FRGBA}) {
    if (type == baseType) return true;
  }
  return false;
}

inline constexpr std::pair<std::string_view, SClass_ID> kSuperClasses[] = {
    {"geometry", GEOMOBJECT_CLASS_ID},
    {"camera", CAMERA_CLASS_ID},
    {"light", LIGHT_CLASS_ID},
    {"shape", SHAPE_CLASS_ID},
    {"helper", HELPER_CLASS_ID},
    {"modifier", OSM_CLASS_ID},
    {"worldSpaceModifier", WSM_CLASS_ID},
};

inline constexpr std::pair<std::string_view, AssetType> kAssetTypes[] = {
    {"bitmap", kBitmapAsset},
    {"photometric", kPhotometricAsset},
};

inline constexpr std::pair<std::string_view, ExportBehaviour> kExportBehaviours[] = {
    {"writes", ExportBehaviour::kWrites},
    {"fails", ExportBehaviour::kFails},
    {"writesNothing", ExportBehaviour::kWritesNothing},
};

}  // namespace orvane::host::memory
