// The one way adapter files see the 3ds Max SDK. The host interface's headers come first: the
// SDK defines several of their names as macros (GEOMOBJECT_CLASS_ID, UNITS_METERS, ...), so after
// this header the adapter names those values only through the SDK's macros, which have the same
// values (tests/host_constants_test.cpp holds both to the SDK's numbers).
#pragma once

#include "base/wide_text.h"
#include "host/interface.h"
#include "host/mtl.h"
#include "host/node.h"
#include "host/object.h"

// clang-format off
#include <max.h>
#include <iparamb2.h>
#include <triobj.h>
#include <modstack.h>
#include <gencam.h>
#include <stdmat.h>
#include <bitmap.h>
#include <icurvctl.h>
#include <IFileResolutionManager.h>
#include <maxscript/maxscript.h>
// clang-format on

// At global scope: the SDK's macros name its types unqualified, and inside our namespaces those
// names are the host interface's.
inline bool IsCurveControl(ReferenceTarget* target) {
  return target->ClassID() == CURVE_CONTROL_CLASS_ID;
}

namespace orvane::host::max {

// windows.h renames GetClassName to GetClassNameW, and the SDK's headers were read under that
// rename: the SDK's method is called here, while the rename holds; after it the host
// interface's own GetClassName keeps its name.
inline MSTR SdkClassName(::Animatable* animatable) {
  MSTR name;
  animatable->GetClassName(name, false);  // the untranslated name, the one scripts know
  return name;
}
#undef GetClassName

// MCHAR is wchar_t, UTF-16 on Windows like the core's text. A null SDK string reads as empty.
inline std::u16string Text(const MCHAR* text) {
  return text != nullptr ? FromWindowsText(text) : std::u16string();
}
inline std::wstring SdkText(std::u16string_view text) {
  return ToWindowsText(text);
}

inline host::Point3 FromSdk(const ::Point3& p) {
  return {p.x, p.y, p.z};
}
inline ::Point3 ToSdk(const host::Point3& p) {
  return ::Point3(p.x, p.y, p.z);
}
inline host::Color FromSdk(const ::Color& c) {
  return {c.r, c.g, c.b};
}
inline host::Class_ID FromSdk(const ::Class_ID& id) {
  return {static_cast<uint32_t>(id.PartA()), static_cast<uint32_t>(id.PartB())};
}

}  // namespace orvane::host::max
