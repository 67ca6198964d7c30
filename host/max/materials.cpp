#include "host/max/wrappers.h"

namespace orvane::host::max {

namespace {

// The curve control a texture output holds at `reference`, or null.
::ICurveCtl* CurveControl(::TextureOutput* output, int reference) {
  ::ReferenceTarget* target = output->GetReference(reference);
  if (target == nullptr || !IsCurveControl(target)) return nullptr;
  return static_cast<::ICurveCtl*>(target);
}

}  // namespace

// --- Names and slots ---

template <class Base>
std::u16string MaxMtlBase<Base>::GetName() const {
  // Not settled for 2025: whether GetName answers MSTR& or MSTR (taking `localized`). Both
  // convert to an MSTR here; a form that needs an argument fails to compile.
  MSTR name = mtlBase_->GetName();
  return Text(name.data());
}

template <class Base>
void MaxMtlBase<Base>::SetName(std::u16string_view name) {
  mtlBase_->SetName(MSTR(SdkText(name).c_str()));
}

template <class Base>
host::Texmap* MaxMtlBase<Base>::GetSubTexmap(int index) const {
  return this->objects_.Map(mtlBase_->GetSubTexmap(index));
}

template class MaxMtlBase<host::Mtl>;
template class MaxMtlBase<host::Texmap>;

// --- Materials ---

MaxMtl::MaxMtl(::Mtl* material, MaxObjects& objects)
    : MaxMtlBase(material, objects), material_(material) {
  if (material->ClassID() == ::Class_ID(DMTL_CLASS_ID, 0))
    standard_ = static_cast<::StdMat2*>(material);
}

host::Mtl* MaxMtl::GetSubMtl(int index) const {
  return objects_.Material(material_->GetSubMtl(index));
}

int MaxMtl::MapIdOfSlot(int slotIndex) const {
  for (int id = 0; id < NTEXMAPS; ++id) {
    if (standard_->StdIDToChannel(id) == slotIndex) return id;
  }
  return -1;
}

// A slot the standard material has no map id for reads as a full, switched-on amount.
float MaxMtl::GetTexmapAmt(int slotIndex, TimeValue t) const {
  int id = MapIdOfSlot(slotIndex);
  return id < 0 ? 1.0f : standard_->GetTexmapAmt(id, t);
}

bool MaxMtl::MapEnabled(int slotIndex) const {
  int id = MapIdOfSlot(slotIndex);
  return id < 0 || standard_->MapEnabled(id) != FALSE;
}

// --- Maps ---

MaxCurveCtl::MaxCurveCtl(::ICurveCtl* control) {
  for (int i = 0; i < control->GetNumCurves(); ++i) {
    ::ICurve* curve = control->GetControlCurve(i);
    curves_.push_back(curve != nullptr ? std::make_unique<MaxCurve>(curve) : nullptr);
  }
}

host::ICurve* MaxCurveCtl::GetControlCurve(int index) const {
  if (index < 0 || index >= GetNumCurves()) return nullptr;
  return curves_[static_cast<size_t>(index)].get();
}

MaxTexmap::MaxTexmap(::Texmap* map, MaxObjects& objects) : MaxMtlBase(map, objects) {
  if (!(map->ClassID() == ::Class_ID(BMTEX_CLASS_ID, 0))) return;
  bitmap_ = static_cast<::BitmapTex*>(map);
  if (::StdUVGen* uv = bitmap_->GetUVGen()) uvGen_ = std::make_unique<MaxUVGen>(uv);
  // The standard output keeps its RGB curves at reference 1 and the mono curve at reference 2.
  // Only the bitmap map's output is reachable through the SDK surface we rely on; other maps
  // answer no curves.
  ::TextureOutput* output = bitmap_->GetTexout();
  if (output == nullptr || !(output->ClassID() == ::Class_ID(STDTEXOUT_CLASS_ID, 0))) return;
  if (::ICurveCtl* rgb = CurveControl(output, 1)) rgbCurves_ = std::make_unique<MaxCurveCtl>(rgb);
  if (::ICurveCtl* mono = CurveControl(output, 2))
    monoCurves_ = std::make_unique<MaxCurveCtl>(mono);
}

bool MaxTexmap::GetBitmapGamma(TimeValue t, float& gamma) const {
  // Not settled: the facts give no gamma on Bitmap itself; its storage has Gamma().
  ::Bitmap* image = bitmap_->GetBitmap(t);
  if (image == nullptr || image->Storage() == nullptr) return false;
  gamma = image->Storage()->Gamma();
  return true;
}

}  // namespace orvane::host::max
