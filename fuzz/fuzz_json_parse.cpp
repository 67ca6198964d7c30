// The fast parse and nlohmann's own give one result for any bytes: the same JSON, or a refusal
// from both.
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "host/memory/scene_file_json.h"

namespace {

template <class Parse>
std::optional<orvane::host::memory::JsonDocument> Outcome(Parse parse, std::string_view text) {
  try {
    return parse(text);
  } catch (const orvane::host::memory::SceneFileError&) {
  }
  return std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane::host::memory;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  auto fast = Outcome([](std::string_view json) { return ParseStrictly(json); }, text);
  auto portable = Outcome(ParseStrictlyWithNlohmann, text);
  if (fast.has_value() != portable.has_value()) std::abort();
  if (fast && !(fast->root() == portable->root())) std::abort();
  return 0;
}
