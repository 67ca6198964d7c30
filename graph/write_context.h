// What every parameter writer needs from the scene besides the object it writes.
#pragma once

#include "host/interface.h"

namespace orvane {

struct WriteContext {
  host::Interface& scene;
  host::TimeValue time = 0;
};

}  // namespace orvane
