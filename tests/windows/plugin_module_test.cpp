// The plug-in module loaded as 3ds Max loads it: its six exports, the class descriptor and the
// utility object opening and closing the panel. Built against the SDK stand-ins in tests/maxsdk.
#include <gtest/gtest.h>
#include <iparamb2.h>
#include <utilapi.h>

#include <string>

#include "tests/windows/open_panels.h"

namespace {

using orvane::testing::OpenPanels;

using LibDescriptionFn = const MCHAR* (*)();
using LibNumberClassesFn = int (*)();
using LibClassDescFn = ClassDesc* (*)(int);
using LibVersionFn = ULONG (*)();
using LibInitializeFn = int (*)();
using LibShutdownFn = int (*)();

template <class Fn>
Fn Export(HMODULE module, const char* name) {
  return reinterpret_cast<Fn>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

TEST(PluginModule, AnswersTheHostAsThePlugInContractAsks) {
  HMODULE module = LoadLibraryW(L"" ORVANE_PLUGIN_MODULE);
  ASSERT_NE(module, nullptr) << GetLastError();
  auto description = Export<LibDescriptionFn>(module, "LibDescription");
  auto numberClasses = Export<LibNumberClassesFn>(module, "LibNumberClasses");
  auto classDesc = Export<LibClassDescFn>(module, "LibClassDesc");
  auto version = Export<LibVersionFn>(module, "LibVersion");
  auto initialize = Export<LibInitializeFn>(module, "LibInitialize");
  auto shutdown = Export<LibShutdownFn>(module, "LibShutdown");
  ASSERT_TRUE(description && numberClasses && classDesc && version && initialize && shutdown);

  EXPECT_EQ(version(), 0x69784200u);
  EXPECT_EQ(std::wstring(description()), L"Orvane Platform \u2014 3ds Max Plugin");
  EXPECT_EQ(numberClasses(), 1);
  ClassDesc* desc = classDesc(0);
  ASSERT_NE(desc, nullptr);
  EXPECT_EQ(classDesc(0), desc);
  EXPECT_EQ(classDesc(1), nullptr);
  EXPECT_EQ(classDesc(-1), nullptr);
  EXPECT_EQ(initialize(), TRUE);

  EXPECT_EQ(desc->IsPublic(), TRUE);
  EXPECT_EQ(std::wstring(desc->ClassName()), L"Orvane Platform");
  EXPECT_EQ(std::wstring(desc->NonLocalizedClassName()), L"Orvane Platform");
  EXPECT_EQ(std::wstring(desc->InternalName()), L"OrvanePlatform");
  EXPECT_EQ(std::wstring(desc->Category()), L"Corona Tools");
  EXPECT_EQ(desc->SuperClassID(), 0x1020u);
  EXPECT_EQ(desc->ClassID().PartA(), 0x7F3A1C9Eu);
  EXPECT_EQ(desc->ClassID().PartB(), 0x4B2D6E11u);
  EXPECT_EQ(desc->HInstance(), module);
  EXPECT_EQ(desc->BeginCreate(nullptr), 0);

  auto* utility = static_cast<UtilityObj*>(desc->Create(FALSE));
  EXPECT_EQ(desc->Create(TRUE), utility);
  utility->DeleteThis();  // the object is static: it stays usable
  ASSERT_EQ(OpenPanels(), 0);
  utility->BeginEditParams(nullptr, nullptr);
  EXPECT_EQ(OpenPanels(), 1);
  utility->BeginEditParams(nullptr, nullptr);  // raises the open panel, makes no second one
  EXPECT_EQ(OpenPanels(), 1);
  utility->EndEditParams(nullptr, nullptr);
  EXPECT_EQ(OpenPanels(), 0);
  utility->EndEditParams(nullptr, nullptr);  // already closed: nothing happens
  utility->BeginEditParams(nullptr, nullptr);
  EXPECT_EQ(OpenPanels(), 1);
  utility->EndEditParams(nullptr, nullptr);

  EXPECT_EQ(shutdown(), TRUE);
  EXPECT_EQ(shutdown(), TRUE);
  EXPECT_TRUE(FreeLibrary(module));
}

}  // namespace
