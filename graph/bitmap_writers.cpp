#include "graph/bitmap_writers.h"

#include <cmath>

#include "base/wide_text.h"

namespace orvane {

std::u16string_view FileNamePart(std::u16string_view path) {
  size_t separator = path.find_last_of(u"\\/");
  return separator == std::u16string_view::npos ? path : path.substr(separator + 1);
}

namespace {

std::u16string Quoted(std::u16string_view text) {
  return u"\"" + EscapeJsonString(text) + u"\"";
}

void AppendFilePaths(RowRun& run, std::u16string_view path, bool nameAlways) {
  if (path.empty() && !nameAlways) return;
  run.Append(u"filepath", Quoted(FileNamePart(path)));
  // The path exactly as the map stores it; the service finds the copy by its name.
  if (!path.empty()) run.Append(u"filepath_abs", Quoted(path));
}

const RowRule kFilePathAlways{
    [](RowRun& run, const ParamRow& row) {
      ParamValue value = run.Find(row.hostName);
      AppendFilePaths(run, value.kind == ParamKind::kString ? value.text : u"", true);
    },
    u"string path: \"filepath\" (file name, always written, \"\" without a "
    u"file) and \"filepath_abs\" (the path as stored, when not empty)"};

const RowRule kFilePathWhenSet{
    [](RowRun& run, const ParamRow& row) {
      ParamValue value = run.Find(row.hostName);
      if (value.kind == ParamKind::kString) AppendFilePaths(run, value.text, false);
    },
    u"non-empty string path: \"filepath\" (file name) and \"filepath_abs\""};

const RowRule kRealWorldMode{
    [](RowRun& run, const ParamRow& row) {
      ParamValue value = run.Find(row.hostName);
      run.realWorldScale = value.kind == ParamKind::kBool && value.boolValue;
    },
    u"boolean, writes nothing: switches the real-world keys of \"uvwScale\""};

const RowRule kUvwScale{
    [](RowRun& run, const ParamRow& row) {
      ParamValue value = run.Find(row.hostName);
      if (value.kind != ParamKind::kPoint3) return;
      run.Append(u"tiling_u", FormatJsonNumber(value.point.x));
      run.Append(u"tiling_v", FormatJsonNumber(value.point.y));
      run.Append(u"real_world_scale", FormatJsonBool(run.realWorldScale));
      if (!run.realWorldScale) return;
      // The same numbers as the tiling, unconverted: the map holds them in its own units.
      run.Append(u"real_world_width_mm", FormatJsonNumber(value.point.x));
      run.Append(u"real_world_height_mm", FormatJsonNumber(value.point.y));
    },
    u"point3: \"tiling_u\", \"tiling_v\" (x, y), \"real_world_scale\", and in real-world mode "
    u"\"real_world_width_mm\", \"real_world_height_mm\" (the same x, y)"};

const RowRule kUvwOffset{[](RowRun& run, const ParamRow& row) {
                           ParamValue value = run.Find(row.hostName);
                           if (value.kind != ParamKind::kPoint3) return;
                           run.Append(u"offset_u", FormatJsonNumber(value.point.x));
                           run.Append(u"offset_v", FormatJsonNumber(value.point.y));
                         },
                         u"point3: \"offset_u\", \"offset_v\" (x, y)"};

const RowRule kDegrees{[](RowRun& run, const ParamRow& row) {
                         ParamValue value = run.Find(row.hostName);
                         if (value.kind == ParamKind::kFloat) {
                           run.Append(row.jsonKey, FormatJsonNumber(value.floatValue * 57.295776f));
                         }
                       },
                       u"float angle in radians, written in degrees"};

// The rest of the Bitmap writer reads the host's bitmap interface, which only its own class has.
const host::BitmapTex* StandardBitmap(const RowRun& run) {
  const host::MtlBase& map = run.object;
  if (map.SuperClassID() != host::TEXMAP_CLASS_ID || map.ClassID() != host::BMTEX_CLASS_ID) {
    return nullptr;
  }
  return static_cast<const host::Texmap&>(map).GetBitmapTex();
}

const RowRule kBitmapTexValues{
    [](RowRun& run, const ParamRow&) {
      const host::BitmapTex* bitmap = StandardBitmap(run);
      if (bitmap == nullptr) {
        run.stopped = true;
        return;
      }
      host::TimeValue t = run.context.time;
      float gamma = 0;
      if (bitmap->GetBitmapGamma(t, gamma) && gamma > 0)
        run.Append(u"bitmap_gamma", FormatJsonNumber(gamma));
      const host::StdUVGen* uv = bitmap->GetUVGen();
      if (uv == nullptr) {
        run.stopped = true;
        return;
      }
      float su = uv->GetUScl(t), sv = uv->GetVScl(t), w = uv->GetWAng(t);
      int tiling = uv->GetTextureTiling();
      run.Append(u"tiling_u", FormatJsonNumber(su));
      run.Append(u"tiling_v", FormatJsonNumber(sv));
      run.Append(u"tile_u", FormatJsonBool(tiling & host::StdUVGen::U_WRAP));
      run.Append(u"tile_v", FormatJsonBool(tiling & host::StdUVGen::V_WRAP));
      auto mode = [](bool mirror, bool tile) {
        return AsciiToWide(mirror ? "2" : tile ? "1" : "0");
      };
      run.Append(u"tiling_mode_u",
                 mode(tiling & host::StdUVGen::U_MIRROR, tiling & host::StdUVGen::U_WRAP));
      run.Append(u"tiling_mode_v",
                 mode(tiling & host::StdUVGen::V_MIRROR, tiling & host::StdUVGen::V_WRAP));
      // The receiving side places the map by its rotated centre rather than by the host's offsets.
      float a = (uv->GetUOffs(t) + 0.5f) * su, b = (uv->GetVOffs(t) + 0.5f) * sv;
      float c = std::cos(w), s = std::sin(w);
      run.Append(u"offset_u", FormatJsonNumber(0.5f - (c * a - s * b)));
      run.Append(u"offset_v", FormatJsonNumber(0.5f - (c * b + s * a)));
      run.Append(u"uvw_channel", AsciiToWide(std::to_string(uv->GetMapChannel())));
      run.Append(u"rotate_w", FormatJsonNumber(w * 57.29578f));
    },
    u"host Bitmap class only (else the writer stops): \"bitmap_gamma\" of the loaded image, then "
    u"from the texture-coordinate generator (else the writer stops) \"tiling_u\", \"tiling_v\", "
    u"\"tile_u\", \"tile_v\", \"tiling_mode_u\", \"tiling_mode_v\" (0 off, 1 tile, 2 mirror), "
    u"\"offset_u\", \"offset_v\" (receiving convention), \"uvw_channel\", \"rotate_w\" (degrees)",
    true};

const RowRule kCropApply{[](RowRun& run, const ParamRow& row) {
                           ParamValue value = run.Find(row.hostName);
                           bool on = (value.kind == ParamKind::kBool && value.boolValue) ||
                                     (value.kind == ParamKind::kInt && value.intValue != 0);
                           if (on) {
                             run.Append(row.jsonKey, u"true");
                           } else {
                             run.stopped = true;  // the crop rows below belong to it
                           }
                         },
                         u"when on, true, followed by the crop rows; otherwise they are left out",
                         true};

const ParamRow kCoronaBitmapRows[] = {
    {u"filename", u"filepath", &kFilePathAlways},
    {u"realWorldScale", u"", &kRealWorldMode},
    {u"uvwScale", u"tiling_u", &kUvwScale},
    {u"uvwOffset", u"offset_u", &kUvwOffset},
    {u"uvwChannel", u"uvw_channel"},
    {u"wAngle", u"rotate_w", &kDegrees},
    {u"colorSpace", u"color_space"},
    {u"gamma", u"gamma"},
    {u"outputAmount", u"output_amount"},
    {u"tilingU", u"tiling_mode_u"},
    {u"tilingV", u"tiling_mode_v"},
    {u"filterType", u"filter_type"},
    {u"clippingOn", u"crop_enabled"},
    {u"clippingMode", u"crop_mode"},
    {u"clippingU", u"crop_u"},
    {u"clippingV", u"crop_v"},
    {u"clippingWidth", u"crop_w"},
    {u"clippingHeight", u"crop_h"},
};

const ParamRow kVRayBitmapRows[] = {
    {u"HDRIMapName", u"filepath", &kFilePathWhenSet},
    {u"gamma", u"bitmap_gamma"},
    {u"mapChannel", u"uvw_channel"},
    {u"multiplier", u"vray_multiplier"},
    {u"renderMultiplier", u"vray_render_multiplier"},
    {u"color_space", u"vray_color_space"},
    {u"maptype", u"vray_map_type"},
    {u"horizontalFlip", u"vray_flip_u"},
    {u"verticalFlip", u"vray_flip_v"},
};

const ParamRow kBitmapRows[] = {
    {u"filename", u"filepath", &kFilePathAlways},
    {u"", u"bitmap_gamma ... rotate_w", &kBitmapTexValues},
    {u"apply", u"crop_apply", &kCropApply},
    {u"cropPlace", u"crop_place"},
    {u"clipu", u"crop_u"},
    {u"clipv", u"crop_v"},
    {u"clipw", u"crop_w"},
    {u"cliph", u"crop_h"},
};

}  // namespace

const WriterTable kCoronaBitmapWriter{u"CoronaBitmap", kCoronaBitmapRows};
const WriterTable kVRayBitmapWriter{u"V-Ray bitmap", kVRayBitmapRows};
const WriterTable kBitmapWriter{u"Bitmap", kBitmapRows};

}  // namespace orvane
