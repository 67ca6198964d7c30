// Reading a host object's parameters by internal name.
//
// Every lookup walks the object's parameter blocks from index 0 and each block's definitions in
// declaration order, comparing names without regard to ASCII case. The first match that can be
// read the way the lookup wants wins; a match that cannot (a map where a value was asked for, a
// plain value where a table was asked for) is passed over and the search goes on, so when two
// blocks declare the same name the lower block wins.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/animatable.h"

namespace orvane {

enum class ParamKind : int32_t {
  kNone = 0,
  kFloat = 1,
  kInt = 2,
  kBool = 3,
  kString = 4,
  kColor = 5,
  kPoint3 = 6,
};

// A parameter read by name; only the member that matches `kind` is meaningful.
struct ParamValue {
  ParamKind kind = ParamKind::kNone;
  float floatValue = 0;
  int32_t intValue = 0;
  bool boolValue = false;
  std::u16string text;
  host::Color color;
  host::Point3 point;
};

// Kind kNone when the object is null, the name is empty, or no match can be read as a value.
ParamValue FindParamValue(const host::Animatable* object, std::u16string_view name,
                          host::TimeValue t);

// The target of the first material, texmap or reference-target parameter of that name (which
// may itself be null); null when there is none.
host::Animatable* FindParamReference(const host::Animatable* object, std::u16string_view name,
                                     host::TimeValue t);

// Element count of the first float, int, colour, point3, bool or string table of that name;
// -1 when there is none.
int FindParamTabCount(const host::Animatable* object, std::u16string_view name);

// Element `index` of the first such table of that name whose element can be read.
ParamValue FindParamTabValue(const host::Animatable* object, std::u16string_view name, int index,
                             host::TimeValue t);

// One object's named parameters, listed once for a run of lookups: FindValue gives what
// FindParamValue would, without asking the host for every parameter's name again for each
// lookup. A writer looks up dozens of names on an object with a handful of parameters. The
// object and its parameters must stay as they are while the index is in use.
class ParamNameIndex {
 public:
  explicit ParamNameIndex(const host::Animatable* object);
  ParamValue FindValue(std::u16string_view name, host::TimeValue t) const;

 private:
  struct Entry {
    std::u16string_view name;
    const host::IParamBlock2* block;
    int index;
  };
  std::vector<Entry> entries_;
};

// Case-insensitive for ASCII letters only, so results do not depend on the process locale.
bool EqualsIgnoringAsciiCase(std::u16string_view a, std::u16string_view b);

}  // namespace orvane
