// How many panels this thread shows: visible windows captioned "Orvane Platform".
#pragma once

#include <windows.h>

#include <string>

namespace orvane::testing {

inline int OpenPanels() {
  int count = 0;
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND window, LPARAM found) {
        wchar_t caption[32] = {};
        GetWindowTextW(window, caption, 32);
        if (IsWindowVisible(window) && std::wstring(caption) == L"Orvane Platform") {
          ++*reinterpret_cast<int*>(found);
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&count));
  return count;
}

}  // namespace orvane::testing
