// Texmap settings that only the host's scripting layer exposes, read by short scripts that
// answer one flat text.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "graph/json_text.h"
#include "graph/write_context.h"
#include "host/mtl.h"

namespace orvane {

// The output block: invert, clamp, alpha-from-RGB, the colour-map switches and amounts, and
// the colour-map curves when they are not the identity. Runs for texmaps only.
void AppendOutputProbe(FragmentList& fragments, const WriteContext& context,
                       const host::MtlBase& map);

// Gradient and noise parameters, then the ramp's flags as "keys", sorted by position.
void AppendGradientProbe(FragmentList& fragments, const WriteContext& context,
                         const host::MtlBase& map);

// One text per property, in order (empty for an undefined one), plus the empty field after the
// last separator; empty when the map cannot be probed.
std::vector<std::u16string> ProbeProperties(const WriteContext& context, const host::MtlBase& map,
                                            const std::vector<std::u16string>& properties);

// 33 samples of curve `index` at x = 0, 1/32, ... 1; nullopt when there is no such curve or
// every sample lies within 1/512 of the diagonal (an identity curve says nothing).
std::optional<std::vector<float>> ReadCurve(const host::ICurveCtl* control, int index,
                                            host::TimeValue t);

// The script locator for `map`, bound to `variable`: by handle, or else by name through the
// probe's search functions; nullopt when the map has neither.
struct ProbeSearch {
  std::u16string_view finder;
  std::u16string_view driver;
  bool materialsOnlyByClass;  // descend into sub-materials only for materials and maps
};
std::optional<std::u16string> LocateMap(const host::MtlBase& map, std::u16string_view variable,
                                        const ProbeSearch& search);

// A float as the host's scripts print it; nullopt when the text does not start with a number.
std::optional<float> ParseScriptFloat(std::u16string_view text);

std::vector<std::u16string_view> SplitText(std::u16string_view text, char16_t separator);

}  // namespace orvane
