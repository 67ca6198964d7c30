#include "graph/param_json.h"

#include "base/wide_text.h"

namespace orvane {

std::u16string FormatParamValueJson(const ParamValue& value) {
  switch (value.kind) {
    case ParamKind::kFloat: return FormatJsonNumber(value.floatValue);
    case ParamKind::kInt: return AsciiToWide(std::to_string(value.intValue));
    case ParamKind::kBool: return FormatJsonBool(value.boolValue);
    case ParamKind::kString: {
      std::u16string quoted = u"\"";
      quoted += EscapeJsonString(value.text);
      quoted += u'"';
      return quoted;
    }
    case ParamKind::kColor: return FormatJsonColor(value.color);
    case ParamKind::kPoint3: return FormatJsonPoint3(value.point);
    case ParamKind::kNone: break;
  }
  return {};
}

std::u16string MakeFragment(std::u16string_view key, std::u16string_view valueText) {
  std::u16string fragment;
  fragment.reserve(key.size() + valueText.size() + 3);
  fragment += u'"';
  fragment += key;
  fragment += u"\":";
  fragment += valueText;
  return fragment;
}

void AppendParamJson(FragmentList& fragments, const host::Animatable* object, host::TimeValue t,
                     std::u16string_view hostName, std::u16string_view jsonKey) {
  ParamValue value = FindParamValue(object, hostName, t);
  if (value.kind == ParamKind::kNone) return;
  fragments.push_back(MakeFragment(jsonKey, FormatParamValueJson(value)));
}

void AppendParamMappings(FragmentList& fragments, const host::Animatable* object, host::TimeValue t,
                         std::span<const ParamMapping> mappings) {
  for (const ParamMapping& mapping : mappings) {
    AppendParamJson(fragments, object, t, mapping.hostName, mapping.jsonKey);
  }
}

}  // namespace orvane
