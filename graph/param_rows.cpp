#include "graph/param_rows.h"

#include "graph/param_json.h"

namespace orvane {

ParamValue RowRun::Find(std::u16string_view name) const {
  return FindParamValue(&object, name, context.time);
}

void RowRun::Append(std::u16string_view key, std::u16string_view valueText) {
  fragments.push_back(MakeFragment(key, valueText));
}

void AppendMapAmountJson(FragmentList& fragments, const host::Animatable* object, host::TimeValue t,
                         std::u16string_view hostName, std::u16string_view jsonKey) {
  ParamValue value = FindParamValue(object, hostName, t);
  if (value.kind != ParamKind::kFloat) return;
  fragments.push_back(MakeFragment(jsonKey, FormatJsonNumber(value.floatValue * 100.0f)));
}

const RowRule kPercent{[](RowRun& run, const ParamRow& row) {
                         AppendMapAmountJson(run.fragments, &run.object, run.context.time,
                                             row.hostName, row.jsonKey);
                       },
                       u"float amount stored as a fraction, written x100"};

FragmentList RunWriter(const WriterTable& writer, const WriteContext& context,
                       const host::MtlBase& object) {
  FragmentList fragments;
  RowRun run{fragments, context, object};
  for (const ParamRow& row : writer.rows) {
    if (run.stopped) break;
    if (row.rule != nullptr) {
      row.rule->run(run, row);
    } else {
      AppendParamJson(fragments, &object, context.time, row.hostName, row.jsonKey);
    }
  }
  return fragments;
}

}  // namespace orvane
