// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include <windows.h>

#include <string>

#include "plugapi.h"

using MCHAR = wchar_t;

// The SDK's wide string, as far as the plug-in uses it.
class WStr {
 public:
  WStr() = default;
  WStr(const MCHAR* text) : text_(text != nullptr ? text : L"") {}
  const MCHAR* data() const { return text_.c_str(); }

 private:
  std::wstring text_;
};
using MSTR = WStr;

class Interface {
 public:
  virtual ~Interface() = default;
  virtual HWND GetMAXHWnd() const = 0;
};

// The test stand-in's host: a main window that tests may set.
inline HWND gTestMaxWindow = nullptr;
class TestInterface final : public Interface {
 public:
  HWND GetMAXHWnd() const override { return gTestMaxWindow; }
};
inline Interface* GetCOREInterface() {
  static TestInterface core;
  return &core;
}
