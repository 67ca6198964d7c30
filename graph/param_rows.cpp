#include "graph/param_rows.h"

#include "graph/param_json.h"

namespace orvane {

ParamValue RowRun::Find(std::u16string_view name) const {
  return params.FindValue(name, context.time);
}

void RowRun::Append(std::u16string_view key, std::u16string_view valueText) {
  fragments.push_back(MakeFragment(key, valueText));
}

const RowRule kPercent{[](RowRun& run, const ParamRow& row) {
                         ParamValue value = run.Find(row.hostName);
                         if (value.kind != ParamKind::kFloat) return;
                         run.Append(row.jsonKey, FormatJsonNumber(value.floatValue * 100.0f));
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
    } else if (ParamValue value = run.Find(row.hostName); value.kind != ParamKind::kNone) {
      run.Append(row.jsonKey, FormatParamValueJson(value));
    }
  }
  return fragments;
}

}  // namespace orvane
