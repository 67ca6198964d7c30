#include "plugin/logo.h"

// GDI+ needs the COM declarations, which a lean <windows.h> leaves out, before its own.
#include <objidl.h>

#include <gdiplus.h>

#include <cstring>

#include "plugin/module_state.h"

namespace orvane::plugin {

namespace {

// A stream over a movable copy of the bytes; the memory goes with the stream.
IStream* StreamOver(const void* bytes, DWORD size) {
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  if (memory == nullptr) return nullptr;
  void* target = GlobalLock(memory);
  if (target == nullptr) {
    GlobalFree(memory);
    return nullptr;
  }
  std::memcpy(target, bytes, size);
  GlobalUnlock(memory);
  IStream* stream = nullptr;
  if (FAILED(CreateStreamOnHGlobal(memory, TRUE, &stream))) {
    GlobalFree(memory);
    return nullptr;
  }
  LARGE_INTEGER start{};
  stream->Seek(start, STREAM_SEEK_SET, nullptr);
  return stream;
}

}  // namespace

bool ShowLogo(HWND control, int resourceId, HINSTANCE module) {
  HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(resourceId), MAKEINTRESOURCEW(10));
  if (found == nullptr) return false;
  HGLOBAL loaded = LoadResource(module, found);
  const void* bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
  DWORD size = SizeofResource(module, found);
  if (bytes == nullptr || size == 0) return false;

  IStream* stream = StreamOver(bytes, size);
  if (stream == nullptr) return false;
  Gdiplus::GpBitmap* image = nullptr;
  Gdiplus::DllExports::GdipCreateBitmapFromStream(stream, &image);
  stream->Release();
  if (image == nullptr) return false;

  HBITMAP bitmap = nullptr;
  Gdiplus::Status made =
      Gdiplus::DllExports::GdipCreateHBITMAPFromBitmap(image, &bitmap, 0xFFFFFFFF);
  Gdiplus::DllExports::GdipDisposeImage(image);
  if (made != Gdiplus::Ok || bitmap == nullptr) return false;

  if (gLogoBitmap != nullptr) DeleteObject(gLogoBitmap);
  gLogoBitmap = bitmap;
  SendMessageW(control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap));
  return true;
}

}  // namespace orvane::plugin
