#include "graph/param_lookup.h"

namespace orvane {

using host::IParamBlock2;
using host::ParamType2;

namespace {

char16_t FoldAscii(char16_t c) {
  return c >= u'A' && c <= u'Z' ? c + (u'a' - u'A') : c;
}

bool IsTableOfValues(ParamType2 type) {
  switch (type) {
    case host::TYPE_FLOAT_TAB:
    case host::TYPE_INT_TAB:
    case host::TYPE_RGBA_TAB:
    case host::TYPE_POINT3_TAB:
    case host::TYPE_BOOL_TAB:
    case host::TYPE_STRING_TAB:
    case host::TYPE_FRGBA_TAB: return true;
    default: return false;
  }
}

bool IsReferenceType(ParamType2 type) {
  return type == host::TYPE_MTL || type == host::TYPE_TEXMAP || type == host::TYPE_REFTARG;
}

ParamType2 TypeOf(const IParamBlock2& block, int index) {
  return block.GetDesc()->GetParamType(index);
}

// Reads parameter `index` of `block` as a value of `type` (a plain, non-table type).
ParamValue ReadValue(const IParamBlock2& block, int index, int type, host::TimeValue t,
                     int tabIndex) {
  ParamValue value;
  switch (type) {
    case host::TYPE_FLOAT:
    case host::TYPE_ANGLE:
    case host::TYPE_PCNT_FRAC:
    case host::TYPE_WORLD:
      if (block.GetFloat(index, t, value.floatValue, tabIndex)) value.kind = ParamKind::kFloat;
      break;
    case host::TYPE_INT:
    case host::TYPE_INDEX:
      if (block.GetInt(index, t, value.intValue, tabIndex)) value.kind = ParamKind::kInt;
      break;
    case host::TYPE_BOOL: {
      int stored = 0;
      if (block.GetInt(index, t, stored, tabIndex)) {
        value.kind = ParamKind::kBool;
        value.boolValue = stored != 0;
      }
      break;
    }
    case host::TYPE_STRING:
    case host::TYPE_FILENAME: {
      std::optional<std::u16string> text;
      if (block.GetString(index, t, text, tabIndex)) {
        value.kind = ParamKind::kString;
        value.text = text.value_or(std::u16string());
      }
      break;
    }
    case host::TYPE_RGBA:
    case host::TYPE_FRGBA:
      if (block.GetColor(index, t, value.color, tabIndex)) value.kind = ParamKind::kColor;
      break;
    case host::TYPE_POINT3:
      if (block.GetPoint3(index, t, value.point, tabIndex)) value.kind = ParamKind::kPoint3;
      break;
    default: break;
  }
  return value;
}

// Calls `visit(block, index, name)` for each named definition, in search order, until it
// answers true. Answers whether a visit did.
template <class Visit>
bool VisitParams(const host::Animatable* object, Visit visit) {
  if (object == nullptr) return false;
  int blockCount = object->NumParamBlocks();
  for (int b = 0; b < blockCount; ++b) {
    const IParamBlock2* block = object->GetParamBlock(b);
    if (block == nullptr) continue;
    const host::ParamBlockDesc2* desc = block->GetDesc();
    if (desc == nullptr) continue;
    int count = desc->Count();
    for (int i = 0; i < count; ++i) {
      std::optional<std::u16string_view> paramName = desc->GetParamName(i);
      if (paramName && visit(*block, i, *paramName)) return true;
    }
  }
  return false;
}

// Calls `visit(block, index, type)` for each definition named `name`, in search order, until
// it answers true. Answers whether a visit did.
template <class Visit>
bool VisitNamedParams(const host::Animatable* object, std::u16string_view name, Visit visit) {
  if (name.empty()) return false;
  return VisitParams(object, [&](const IParamBlock2& block, int index, std::u16string_view own) {
    return EqualsIgnoringAsciiCase(own, name) && visit(block, index, TypeOf(block, index));
  });
}

// The value `FindParamValue` takes from a definition of the name it looks for, if any.
ParamValue ReadNamedValue(const IParamBlock2& block, int index, host::TimeValue t) {
  return ReadValue(block, index, TypeOf(block, index), t, 0);
}

}  // namespace

bool EqualsIgnoringAsciiCase(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (FoldAscii(a[i]) != FoldAscii(b[i])) return false;
  }
  return true;
}

ParamValue FindParamValue(const host::Animatable* object, std::u16string_view name,
                          host::TimeValue t) {
  ParamValue found;
  VisitNamedParams(object, name, [&](const IParamBlock2& block, int index, ParamType2) {
    found = ReadNamedValue(block, index, t);
    return found.kind != ParamKind::kNone;
  });
  return found;
}

ParamNameIndex::ParamNameIndex(const host::Animatable* object) {
  VisitParams(object, [&](const IParamBlock2& block, int index, std::u16string_view name) {
    entries_.push_back({name, &block, index});
    return false;
  });
}

ParamValue ParamNameIndex::FindValue(std::u16string_view name, host::TimeValue t) const {
  if (name.empty()) return {};
  for (const Entry& entry : entries_) {
    if (!EqualsIgnoringAsciiCase(entry.name, name)) continue;
    ParamValue found = ReadNamedValue(*entry.block, entry.index, t);
    if (found.kind != ParamKind::kNone) return found;
  }
  return {};
}

host::Animatable* FindParamReference(const host::Animatable* object, std::u16string_view name,
                                     host::TimeValue t) {
  host::Animatable* target = nullptr;
  VisitNamedParams(object, name, [&](const IParamBlock2& block, int index, ParamType2 type) {
    if (!IsReferenceType(type)) return false;
    target = nullptr;
    if (!block.GetReference(index, t, target, 0)) target = nullptr;
    return true;
  });
  return target;
}

int FindParamTabCount(const host::Animatable* object, std::u16string_view name) {
  int count = -1;
  VisitNamedParams(object, name, [&](const IParamBlock2& block, int index, ParamType2 type) {
    if (!IsTableOfValues(type)) return false;
    count = block.Count(index);
    return true;
  });
  return count;
}

ParamValue FindParamTabValue(const host::Animatable* object, std::u16string_view name, int index,
                             host::TimeValue t) {
  ParamValue found;
  if (index < 0) return found;
  VisitNamedParams(object, name, [&](const IParamBlock2& block, int param, ParamType2 type) {
    if (!IsTableOfValues(type)) return false;
    found = ReadValue(block, param, type & ~host::TYPE_TAB, t, index);
    return found.kind != ParamKind::kNone;
  });
  return found;
}

}  // namespace orvane
