// Writers of the image-file maps: CoronaBitmap, VRayBitmap/VRayHDRI and the host's Bitmap.
#pragma once

#include <string_view>

#include "graph/param_rows.h"

namespace orvane {

extern const WriterTable kCoronaBitmapWriter;
extern const WriterTable kVRayBitmapWriter;
extern const WriterTable kBitmapWriter;

// The text after the last "\" or "/"; the whole path when it has neither.
std::u16string_view FileNamePart(std::u16string_view path);

}  // namespace orvane
