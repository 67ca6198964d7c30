// Parameters as JSON members.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "graph/json_text.h"
#include "graph/param_lookup.h"

namespace orvane {

// The JSON text of a value of kind 1 to 6; empty text for kind kNone.
std::u16string FormatParamValueJson(const ParamValue& value);

// Appends `"jsonKey":value` when `hostName` reads as a value; otherwise appends nothing, so a
// missing parameter leaves its key out. The key is written as given, unescaped.
void AppendParamJson(FragmentList& fragments, const host::Animatable* object, host::TimeValue t,
                     std::u16string_view hostName, std::u16string_view jsonKey);

// A plain mapping from a host parameter to a JSON key.
struct ParamMapping {
  std::u16string_view hostName;
  std::u16string_view jsonKey;
};

// AppendParamJson for each mapping, in order.
void AppendParamMappings(FragmentList& fragments, const host::Animatable* object, host::TimeValue t,
                         std::span<const ParamMapping> mappings);

// `"key":` + valueText.
std::u16string MakeFragment(std::u16string_view key, std::u16string_view valueText);

}  // namespace orvane
