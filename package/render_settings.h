// The scene's colour pipeline and the renderer's global displacement, read through scripts.
#pragma once

#include <string>

#include "host/interface.h"

namespace orvane {

struct ColorSettings {
  std::u16string mode = u"unknown";
  std::u16string renderingSpace;
  float displayGamma = 2.2f;
};

struct RenderDisplacement {
  bool found = false;
  float amount = 1.0f;
  bool relative = true;
};

// Never fail: on any problem the defaults stand.
ColorSettings QueryColorSettings(host::Interface& scene);
RenderDisplacement QueryRenderDisplacement(host::Interface& scene);

}  // namespace orvane
