#include "prep/texture_collection.h"

#include <unordered_set>

#include "base/wide_text.h"
#include "graph/class_dispatch.h"
#include "graph/param_lookup.h"
#include "host/node.h"
#include "host/object.h"
#include "host/scene_walk.h"

namespace orvane {

namespace {

constexpr char16_t kSeparator = u'\\';

// The map's file as the scene names it; nullopt when the map names none.
std::optional<std::u16string> RawPath(const host::Texmap& texmap, host::TimeValue t) {
  if (texmap.ClassID() == host::BMTEX_CLASS_ID) {
    const host::BitmapTex* bitmap = texmap.GetBitmapTex();
    if (bitmap == nullptr) return std::nullopt;
    return bitmap->GetMapName();
  }
  for (std::u16string_view name : {u"filename", u"fileName", u"HDRIMapName"}) {
    ParamValue value = FindParamValue(&texmap, name, t);
    if (value.kind == ParamKind::kString) return value.text;
  }
  return std::nullopt;
}

class Collector {
 public:
  Collector(host::Interface& scene, host::FileSystem& files, std::u16string texturesFolder)
      : scene_(scene),
        files_(files),
        texturesFolder_(std::move(texturesFolder)),
        t_(scene.GetTime()) {}

  void Walk(host::MtlBase* object) {
    if (object == nullptr || !visited_.insert(object).second) return;
    host::SClass_ID superClass = object->SuperClassID();
    if (superClass == host::TEXMAP_CLASS_ID) {
      auto* texmap = static_cast<host::Texmap*>(object);
      if (IsFileTexmap(*texmap)) Collect(*texmap);
    }
    for (int i = 0; i < object->NumSubTexmaps(); ++i)
      Walk(object->GetSubTexmap(i));
    if (superClass == host::MATERIAL_CLASS_ID) {
      auto* material = static_cast<host::Mtl*>(object);
      for (int i = 0; i < material->NumSubMtls(); ++i)
        Walk(material->GetSubMtl(i));
    }
  }

  TextureCollectResult result;

 private:
  void Collect(const host::Texmap& texmap) {
    std::optional<std::u16string> raw = RawPath(texmap, t_);
    if (!raw) return;
    std::u16string path = TrimWhitespace(*raw);
    if (path.empty()) return;
    path = Resolve(std::move(path));
    if (!processed_.insert(path).second) return;
    if (!files_.Exists(path)) {
      result.missing.push_back(u"Missing: " + FileNamePart(path));
      return;
    }
    files_.CopyFile(path, texturesFolder_ + kSeparator + FileNamePart(path));
    ++result.copied;
  }

  std::u16string Resolve(std::u16string path) const {
    if (files_.Exists(path)) return path;
    // The scene file's path is used as it is, not reduced to its folder.
    std::u16string base = scene_.GetCurFilePath();
    if (!base.empty()) {
      if (base.back() != kSeparator) base += kSeparator;
      for (const std::u16string& candidate : {base + path, base + FileNamePart(path)}) {
        if (files_.Exists(candidate)) return candidate;
      }
    }
    if (host::IFileResolutionManager* resolver = scene_.GetFileResolutionManager()) {
      std::u16string answer = resolver->GetFullFilePath(path, host::kBitmapAsset);
      if (!answer.empty() && files_.Exists(answer)) return answer;
    }
    return path;
  }

  host::Interface& scene_;
  host::FileSystem& files_;
  std::u16string texturesFolder_;
  host::TimeValue t_;
  std::unordered_set<host::MtlBase*> visited_;
  std::unordered_set<std::u16string> processed_;  // exact, case-sensitive
};

}  // namespace

bool IsFileTexmap(const host::Texmap& texmap) {
  if (texmap.ClassID() == host::BMTEX_CLASS_ID) return true;
  std::u16string name = LowerAscii(StripLeadingNonAlnum(texmap.GetClassName()));
  return name == u"coronabitmap" || name == u"vraybitmap" || name == u"vrayhdri";
}

std::u16string FileNamePart(std::u16string_view path) {
  size_t separator = path.find_last_of(u"\\/");
  return std::u16string(separator == std::u16string_view::npos ? path : path.substr(separator + 1));
}

TextureCollectResult CollectTextures(host::Interface& scene, host::FileSystem& files,
                                     std::u16string_view jobFolder) {
  std::u16string texturesFolder = std::u16string(jobFolder) + kSeparator + u"textures";
  files.CreateDirectory(texturesFolder);  // an existing folder is fine
  Collector collector(scene, files, texturesFolder);
  host::TimeValue t = scene.GetTime();
  for (host::INode* node : ListSceneNodes(scene)) {
    host::Object* object = node->EvalWorldState(t);
    if (object == nullptr || object->SuperClassID() != host::GEOMOBJECT_CLASS_ID) continue;
    collector.Walk(node->GetMtl());
  }
  collector.Walk(scene.GetEnvironmentMap());
  return std::move(collector.result);
}

}  // namespace orvane
