// Parameter writers as data: each writer is an ordered table of rows (host name, JSON key, rule).
// A plain row appends `"key":value` when the host parameter exists; other rules are named steps
// (a percent amount, a conversion, a member built from several parameters) that run in the
// row's place, so the table shows the exact emission order.
#pragma once

#include <span>
#include <string_view>

#include "graph/json_text.h"
#include "graph/param_lookup.h"
#include "graph/write_context.h"
#include "host/mtl.h"

namespace orvane {

// What the rows of one writer share while they run.
struct RowRun {
  FragmentList& fragments;
  const WriteContext& context;
  const host::MtlBase& object;
  ParamNameIndex params{&object};
  int roughnessMode = 0;
  int iorMode = 0;
  bool realWorldScale = false;
  bool stopped = false;  // set by a step after which the writer writes nothing more

  ParamValue Find(std::u16string_view name) const;
  void Append(std::u16string_view key, std::u16string_view valueText);
};

struct ParamRow;

// A special step; `name` says what it does (for the format reference).
struct RowRule {
  void (*run)(RowRun& run, const ParamRow& row);
  std::u16string_view name;
  bool gatesLaterRows = false;  // the rows after it run only when it lets them
};

struct ParamRow {
  std::u16string_view hostName;
  std::u16string_view jsonKey;
  const RowRule* rule = nullptr;  // null: plain
};

struct WriterTable {
  std::u16string_view name;
  std::span<const ParamRow> rows;
};

FragmentList RunWriter(const WriterTable& writer, const WriteContext& context,
                       const host::MtlBase& object);

extern const RowRule kPercent;

}  // namespace orvane
