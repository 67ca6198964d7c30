// The plug-in as the host sees it: one utility class, "Orvane Platform" under "Corona Tools",
// whose utility object opens and closes the panel.
#pragma once

#include <iparamb2.h>
#include <max.h>
#include <utilapi.h>

namespace orvane::plugin {

class OrvaneUtility final : public UtilityObj {
 public:
  // Opens the panel owned by the host's main window, or raises the open one.
  void BeginEditParams(Interface* ip, IUtil* iu) override;
  void EndEditParams(Interface* ip, IUtil* iu) override;
  void DeleteThis() override {}  // the one utility object is static
};

class OrvaneClassDesc final : public ClassDesc2 {
 public:
  int IsPublic() override { return TRUE; }
  // The one static utility object, whatever `loading` says.
  void* Create(BOOL loading = FALSE) override;
  const MCHAR* ClassName() override { return L"Orvane Platform"; }
  const MCHAR* NonLocalizedClassName() override { return L"Orvane Platform"; }
  const MCHAR* InternalName() override { return L"OrvanePlatform"; }
  SClass_ID SuperClassID() override { return UTILITY_CLASS_ID; }
  Class_ID ClassID() override { return Class_ID(0x7F3A1C9E, 0x4B2D6E11); }
  const MCHAR* Category() override { return L"Corona Tools"; }
  HINSTANCE HInstance() override;
};

OrvaneClassDesc* GetOrvaneClassDesc();

}  // namespace orvane::plugin
