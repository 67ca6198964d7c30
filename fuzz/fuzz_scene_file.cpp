// Any bytes given as a scene file either load or are rejected with a message; a loaded scene
// writes out and loads again to the same text.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/memory/scene_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane::host::memory;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  SceneLoadResult result = LoadSceneText(text, ".");
  if (!result.scene) {
    if (result.error.empty()) std::abort();
    return 0;
  }
  std::string written = WriteSceneText(*result.scene);
  SceneLoadResult again = LoadSceneText(written, ".");
  if (!again.scene || WriteSceneText(*again.scene) != written) std::abort();
  return 0;
}
