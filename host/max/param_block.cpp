#include "host/max/wrappers.h"

namespace orvane::host::max {

namespace {

// Each read asks for the value at `t` and ignores how long it stays valid.
template <class Value>
bool Read(::IParamBlock2* block, ParamID id, TimeValue t, Value& value, int tabIndex) {
  Interval valid = FOREVER;
  return block->GetValue(id, t, value, valid, tabIndex) != FALSE;
}

}  // namespace

MaxParamBlock::MaxParamBlock(::IParamBlock2* block, MaxObjects& objects)
    : block_(block), desc_(block->GetDesc()), objects_(objects) {
  if (desc_ == nullptr) return;
  for (int i = 0; i < desc_->Count(); ++i) {
    const ::ParamDef* def = desc_->GetParamDefByIndex(static_cast<unsigned int>(i));
    names_.push_back(def != nullptr && def->int_name != nullptr
                         ? std::optional<std::u16string>(Text(def->int_name))
                         : std::nullopt);
  }
}

std::optional<std::u16string_view> MaxParamBlock::GetParamName(int index) const {
  if (index < 0 || index >= static_cast<int>(names_.size())) return std::nullopt;
  const auto& name = names_[static_cast<size_t>(index)];
  return name ? std::optional<std::u16string_view>(*name) : std::nullopt;
}

host::ParamType2 MaxParamBlock::GetParamType(int index) const {
  const ::ParamDef* def = desc_->GetParamDefByIndex(static_cast<unsigned int>(index));
  return static_cast<host::ParamType2>(def != nullptr ? static_cast<int>(def->type) : -1);
}

int MaxParamBlock::Count(int index) const {
  return block_->Count(Id(index));
}

bool MaxParamBlock::GetFloat(int index, TimeValue t, float& value, int tabIndex) const {
  return Read(block_, Id(index), t, value, tabIndex);
}

bool MaxParamBlock::GetInt(int index, TimeValue t, int& value, int tabIndex) const {
  return Read(block_, Id(index), t, value, tabIndex);
}

bool MaxParamBlock::GetColor(int index, TimeValue t, host::Color& value, int tabIndex) const {
  if (BaseType(index) == TYPE_FRGBA) {
    ::AColor colour;
    if (!Read(block_, Id(index), t, colour, tabIndex)) return false;
    value = {colour.r, colour.g, colour.b};
    return true;
  }
  ::Color colour;
  if (!Read(block_, Id(index), t, colour, tabIndex)) return false;
  value = FromSdk(colour);
  return true;
}

bool MaxParamBlock::GetPoint3(int index, TimeValue t, host::Point3& value, int tabIndex) const {
  ::Point3 point;
  if (!Read(block_, Id(index), t, point, tabIndex)) return false;
  value = FromSdk(point);
  return true;
}

bool MaxParamBlock::GetString(int index, TimeValue t, std::optional<std::u16string>& value,
                              int tabIndex) const {
  const MCHAR* text = nullptr;
  if (!Read(block_, Id(index), t, text, tabIndex)) return false;
  value = text != nullptr ? std::optional<std::u16string>(Text(text)) : std::nullopt;
  return true;
}

bool MaxParamBlock::GetReference(int index, TimeValue t, host::Animatable*& value,
                                 int tabIndex) const {
  // Reads the SDK pointer of the parameter's own type and hands back its wrapper.
  auto read = [&](auto* sdk, auto wrap) {
    if (!Read(block_, Id(index), t, sdk, tabIndex)) return false;
    value = wrap(sdk);
    return true;
  };
  switch (BaseType(index)) {
    case TYPE_MTL:
      return read(static_cast<::Mtl*>(nullptr), [&](::Mtl* m) { return objects_.Material(m); });
    case TYPE_TEXMAP:
      return read(static_cast<::Texmap*>(nullptr), [&](::Texmap* m) { return objects_.Map(m); });
    case TYPE_INODE:
      return read(static_cast<::INode*>(nullptr), [&](::INode* n) { return objects_.Node(n); });
    case TYPE_REFTARG:
      return read(static_cast<::ReferenceTarget*>(nullptr),
                  [&](::ReferenceTarget* r) { return objects_.Any(r); });
    default: return false;
  }
}

}  // namespace orvane::host::max
