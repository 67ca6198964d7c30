#include "prep/multitexture_bake.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "base/wide_text.h"
#include "graph/param_lookup.h"
#include "host/object.h"
#include "host/scene_walk.h"

namespace orvane {

namespace {

constexpr std::u16string_view kLogTitle = u"Orvane";

struct MultiMapSettings {
  int itemCount = 0;
  std::vector<bool> activeFlags;  // CoronaMultiMap only, one per item
  int activeCount = 0;
  bool randomizeMeshElement = false;
  bool randomizeMaterialId = false;
};

bool IsTrue(const ParamValue& value) {
  return value.kind == ParamKind::kBool && value.boolValue;
}
bool IsFalse(const ParamValue& value) {
  return value.kind == ParamKind::kBool && !value.boolValue;
}

MultiMapSettings ReadSettings(const MultiMap& found, host::TimeValue t) {
  MultiMapSettings settings;
  if (found.kind == MultiMapKind::kMultiTexture) {
    for (int i = 0; i < found.map->NumSubTexmaps(); ++i) {
      if (IsTrue(FindParamTabValue(found.map, u"submap_on", i, t))) ++settings.activeCount;
    }
    settings.randomizeMeshElement = true;
    return settings;
  }
  ParamValue items = FindParamValue(found.map, u"items", t);
  settings.itemCount = items.kind == ParamKind::kInt ? items.intValue : 0;
  for (int i = 0; i < settings.itemCount; ++i) {
    bool active = !IsFalse(FindParamTabValue(found.map, u"texmapsOn", i, t));
    settings.activeFlags.push_back(active);
    if (active) ++settings.activeCount;
  }
  settings.randomizeMeshElement = IsTrue(FindParamValue(found.map, u"randomizeMeshElement", t));
  settings.randomizeMaterialId = IsTrue(FindParamValue(found.map, u"randomizeMaterialId", t));
  return settings;
}

std::u16string_view TrueFalse(bool value) {
  return value ? u"true" : u"false";
}

// The mesh of the node's evaluated object, converted to triangles; null when there is none.
class ConvertedMesh {
 public:
  ConvertedMesh(host::INode& node, host::TimeValue t) : node_(node) {
    source_ = node.EvalWorldState(t);
    if (source_ == nullptr || !source_->CanConvertToTriObject()) return;
    tri_ = source_->ConvertToTriObject(t);
  }
  host::Mesh* mesh() { return tri_ != nullptr ? &tri_->GetMesh() : nullptr; }
  // The host does not see the new colours until its cache is invalidated; a conversion that
  // made a new object replaces the node's object.
  void Commit() {
    tri_->GetMesh().InvalidateGeomCache();
    if (tri_ != source_) node_.SetObjectRef(tri_);
  }

 private:
  host::INode& node_;
  host::Object* source_ = nullptr;
  host::TriObject* tri_ = nullptr;
};

// Element of every face: faces sharing a vertex belong together; elements are numbered in the
// order of their lowest face, each filled breadth first.
std::vector<int> NumberElements(const std::vector<host::MeshFace>& faces, int vertexCount,
                                int& elementCount) {
  // Faces around each vertex, as one flat list with an offset per vertex.
  std::vector<int> offsets(static_cast<size_t>(vertexCount) + 1, 0);
  auto valid = [&](int v) { return v >= 0 && v < vertexCount; };
  for (const host::MeshFace& face : faces) {
    for (int v : face.v) {
      if (valid(v)) ++offsets[static_cast<size_t>(v) + 1];
    }
  }
  for (size_t v = 1; v < offsets.size(); ++v)
    offsets[v] += offsets[v - 1];
  std::vector<int> facesAround(static_cast<size_t>(offsets.back()));
  std::vector<int> filled(offsets.begin(), offsets.end() - 1);
  for (size_t f = 0; f < faces.size(); ++f) {
    for (int v : faces[f].v) {
      if (valid(v))
        facesAround[static_cast<size_t>(filled[static_cast<size_t>(v)]++)] = static_cast<int>(f);
    }
  }

  std::vector<int> element(faces.size(), -1);
  std::vector<int> queue;
  queue.reserve(faces.size());
  elementCount = 0;
  for (size_t start = 0; start < faces.size(); ++start) {
    if (element[start] >= 0) continue;
    int number = elementCount++;
    element[start] = number;
    queue.assign(1, static_cast<int>(start));
    for (size_t next = 0; next < queue.size(); ++next) {
      for (int v : faces[static_cast<size_t>(queue[next])].v) {
        if (!valid(v)) continue;
        for (int k = offsets[static_cast<size_t>(v)]; k < offsets[static_cast<size_t>(v) + 1];
             ++k) {
          int neighbour = facesAround[static_cast<size_t>(k)];
          if (element[static_cast<size_t>(neighbour)] >= 0) continue;
          element[static_cast<size_t>(neighbour)] = number;
          queue.push_back(neighbour);
        }
      }
    }
  }
  return element;
}

int ReadSeed(const host::Texmap& map, host::TimeValue t) {
  ParamValue seed = FindParamValue(&map, u"seed", t);
  if (seed.kind == ParamKind::kInt) return seed.intValue;
  if (seed.kind == ParamKind::kFloat && std::isfinite(seed.floatValue) &&
      std::fabs(seed.floatValue) < 2147483648.0f) {
    return static_cast<int>(seed.floatValue);  // truncated toward zero
  }
  return 0;
}

float GreyOfIndex(int64_t index, int64_t count) {
  return count > 1 ? EncodeSrgbGrey(static_cast<float>(index) / static_cast<float>(count - 1))
                   : 0.0f;
}

class BakeLog {
 public:
  BakeLog(host::Interface& scene, std::u16string_view node, std::u16string_view label)
      : scene_(scene),
        prefix_(u"[Orvane VC] " + std::u16string(node) + u" (" + std::u16string(label) + u"): ") {}
  void Info(std::u16string_view text) {
    scene_.Log(host::SYSLOG_INFO, kLogTitle, prefix_ + std::u16string(text));
  }
  void Warn(std::u16string_view text) {
    scene_.Log(host::SYSLOG_WARN, kLogTitle, prefix_ + std::u16string(text));
  }
  void Outcome(bool ok, std::u16string_view what, std::u16string_view counted, int count) {
    std::u16string text = std::u16string(what) + u" " + (ok ? u"OK" : u"FAILED") + u" (" +
                          std::u16string(counted) + u"=" + Decimal(count) + u")";
    ok ? Info(text) : Warn(text);
  }

 private:
  host::Interface& scene_;
  std::u16string prefix_;
};

// Runs the decision for one node; true when something was baked successfully.
bool BakeNode(host::Interface& scene, host::INode& node, const MultiMap& found, host::TimeValue t) {
  MultiMapSettings settings = ReadSettings(found, t);
  BakeLog log(scene, node.GetName(), MultiMapLabel(found.kind));
  if (found.kind == MultiMapKind::kCoronaMultiMap) {
    log.Info(u"items=" + Decimal(settings.itemCount) + u" activeCount=" +
             Decimal(settings.activeCount) + u" randomizeMeshElement=" +
             std::u16string(TrueFalse(settings.randomizeMeshElement)) + u" randomizeMaterialId=" +
             std::u16string(TrueFalse(settings.randomizeMaterialId)));
  }
  if (settings.activeCount == 0) {
    log.Warn(u"SKIPPED \u2014 activeCount is 0");
    return false;
  }
  if (settings.randomizeMaterialId) {
    if (settings.randomizeMeshElement) {
      log.Warn(
          u"both randomizeMeshElement AND randomizeMaterialId are on \u2014 baking Face Material "
          u"Id only (exact selection takes priority; Mesh Element in this combination is not "
          u"baked, map channel 0 conflict)");
    }
    bool ok = BakeFaceMaterialId(node, settings.itemCount, settings.activeFlags, t);
    log.Outcome(ok, u"Face Material Id bake", u"itemCount", settings.itemCount);
    return ok;
  }
  if (settings.randomizeMeshElement) {
    bool ok = BakeMeshElements(node, *found.map, settings.activeCount, t);
    log.Outcome(ok, u"bake", u"activeCount", settings.activeCount);
    return ok;
  }
  log.Info(u"SKIPPED baking \u2014 Mesh Element not requested (Instance-only, driven in Blender)");
  return false;
}

}  // namespace

std::u16string_view MultiMapLabel(MultiMapKind kind) {
  return kind == MultiMapKind::kMultiTexture ? u"MultiTexture" : u"CoronaMultiMap";
}

std::optional<MultiMap> FindMultiMap(host::MtlBase* object,
                                     std::unordered_set<host::MtlBase*>& visited) {
  if (object == nullptr || !visited.insert(object).second) return std::nullopt;
  if (object->SuperClassID() == host::TEXMAP_CLASS_ID) {
    std::u16string className = object->GetClassName();
    auto* map = static_cast<host::Texmap*>(object);
    if (className == u"MultiTexture") return MultiMap{map, MultiMapKind::kMultiTexture};
    if (className == u"CoronaMultiMap") return MultiMap{map, MultiMapKind::kCoronaMultiMap};
  }
  for (int i = 0; i < object->NumSubTexmaps(); ++i) {
    if (auto found = FindMultiMap(object->GetSubTexmap(i), visited)) return found;
  }
  if (object->SuperClassID() == host::MATERIAL_CLASS_ID) {
    auto* material = static_cast<host::Mtl*>(object);
    for (int i = 0; i < material->NumSubMtls(); ++i) {
      if (auto found = FindMultiMap(material->GetSubMtl(i), visited)) return found;
    }
  }
  return std::nullopt;
}

float EncodeSrgbGrey(float linear) {
  if (linear <= 0) return 0;
  if (linear >= 1) return 1;
  if (linear > 0.0031308f) return 1.055f * std::pow(linear, 0.41666666f) - 0.055f;
  return 12.92f * linear;
}

bool BakeFaceMaterialId(host::INode& node, int itemCount, const std::vector<bool>& activeFlags,
                        host::TimeValue t) {
  ConvertedMesh converted(node, t);
  host::Mesh* mesh = converted.mesh();
  if (mesh == nullptr) return false;
  std::vector<int> remap(static_cast<size_t>(std::max(itemCount, 0)), -1);
  int activeItems = 0;
  for (int i = 0; i < itemCount; ++i) {
    bool active =
        static_cast<size_t>(i) >= activeFlags.size() || activeFlags[static_cast<size_t>(i)];
    if (active) remap[static_cast<size_t>(i)] = activeItems++;
  }
  if (activeItems == 0) return false;

  int faceCount = mesh->GetNumFaces();
  mesh->SetNumVertCol(3 * faceCount);
  mesh->SetNumVCFaces(faceCount);
  for (int f = 0; f < faceCount; ++f) {
    int id = mesh->GetFace(f).matId;
    int k = id < itemCount ? remap[static_cast<size_t>(id)] : -1;
    float grey = activeItems > 1 ? EncodeSrgbGrey(static_cast<float>(std::max(k, 0)) /
                                                  static_cast<float>(activeItems - 1))
                                 : 0.0f;
    for (int corner = 0; corner < 3; ++corner)
      mesh->SetVertCol(3 * f + corner, {grey, grey, grey});
    mesh->SetVCFace(f, {3 * f, 3 * f + 1, 3 * f + 2});
  }
  converted.Commit();
  return true;
}

bool BakeMeshElements(host::INode& node, const host::Texmap& map, int activeCount,
                      host::TimeValue t) {
  int seed = ReadSeed(map, t);
  ConvertedMesh converted(node, t);
  host::Mesh* mesh = converted.mesh();
  if (mesh == nullptr) return false;
  int vertexCount = mesh->GetNumVerts();
  std::vector<host::MeshFace> faces(static_cast<size_t>(mesh->GetNumFaces()));
  for (size_t f = 0; f < faces.size(); ++f)
    faces[f] = mesh->GetFace(static_cast<int>(f));
  int elementCount = 0;
  std::vector<int> elementOfFace = NumberElements(faces, vertexCount, elementCount);

  std::vector<float> greyOfElement(static_cast<size_t>(elementCount), 0.0f);
  int64_t h = static_cast<int64_t>(seed) * 31 + 1;
  for (int e = 0; e < elementCount; ++e, ++h) {
    if (activeCount > 0) {
      greyOfElement[static_cast<size_t>(e)] = GreyOfIndex(std::llabs(h) % activeCount, activeCount);
    }
  }

  mesh->SetNumVertCol(vertexCount);
  mesh->SetNumVCFaces(static_cast<int>(faces.size()));
  for (size_t f = 0; f < faces.size(); ++f) {
    float grey = greyOfElement[static_cast<size_t>(elementOfFace[f])];
    for (int v : faces[f].v) {
      if (v >= 0 && v < vertexCount) mesh->SetVertCol(v, {grey, grey, grey});
    }
    mesh->SetVCFace(static_cast<int>(f), faces[f].v);
  }
  converted.Commit();
  return true;
}

int32_t BakeMultiTextureVC(host::Interface& scene) {
  host::TimeValue t = scene.GetTime();
  int32_t baked = 0;
  for (host::INode* node : ListSceneNodes(scene)) {
    host::Object* object = node->EvalWorldState(t);
    if (object == nullptr || object->SuperClassID() != host::GEOMOBJECT_CLASS_ID) continue;
    host::Mtl* material = node->GetMtl();
    if (material == nullptr) continue;
    std::unordered_set<host::MtlBase*> visited;
    std::optional<MultiMap> found = FindMultiMap(material, visited);
    if (found && BakeNode(scene, *node, *found, t)) ++baked;
  }
  return baked;
}

}  // namespace orvane
