#include "host/memory/fbx_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <unordered_map>
#include <variant>
#include <vector>

#include "base/wide_text.h"
#include "host/memory/memory_scene.h"
#include "host/scene_walk.h"

namespace orvane::host::memory {

namespace {

constexpr uint32_t kVersion = 7400;
// Before version 7500 a record's three counts are 32-bit and the null record is 13 bytes.
constexpr size_t kNullRecordLength = 13;

// One property of a record: its type code is chosen by the alternative it holds.
using Property =
    std::variant<int32_t, int64_t, double, std::string, std::vector<double>, std::vector<int32_t>>;

struct Record {
  std::string name;
  std::vector<Property> properties;
  std::vector<Record> children;

  Record& Add(std::string childName, std::vector<Property> childProperties = {}) {
    children.push_back({std::move(childName), std::move(childProperties), {}});
    return children.back();
  }
};

template <class T>
void Put(std::string& out, T value) {
  char bytes[sizeof(T)];
  std::memcpy(bytes, &value, sizeof(T));  // little-endian hosts only, as the format is
  out.append(bytes, sizeof(T));
}

template <class T>
void PutArray(std::string& out, char code, const std::vector<T>& values) {
  out += code;
  Put(out, static_cast<uint32_t>(values.size()));
  Put(out, uint32_t{0});  // not compressed
  Put(out, static_cast<uint32_t>(values.size() * sizeof(T)));
  for (T value : values)
    Put(out, value);
}

void PutProperty(std::string& out, const Property& property) {
  struct Writer {
    std::string& out;
    void operator()(int32_t v) {
      out += 'I';
      Put(out, v);
    }
    void operator()(int64_t v) {
      out += 'L';
      Put(out, v);
    }
    void operator()(double v) {
      out += 'D';
      Put(out, v);
    }
    void operator()(const std::string& v) {
      out += 'S';
      Put(out, static_cast<uint32_t>(v.size()));
      out += v;
    }
    void operator()(const std::vector<double>& v) { PutArray(out, 'd', v); }
    void operator()(const std::vector<int32_t>& v) { PutArray(out, 'i', v); }
  };
  std::visit(Writer{out}, property);
}

// Each record's end offset is absolute, so it is patched in once the record is complete. A
// record with children ends with a null record: the importer insists on it.
void PutRecord(std::string& out, const Record& record) {
  size_t start = out.size();
  Put(out, uint32_t{0});  // end offset, patched below
  Put(out, static_cast<uint32_t>(record.properties.size()));
  Put(out, uint32_t{0});  // property list length, patched below
  out += static_cast<char>(record.name.size());
  out += record.name;
  size_t propertiesStart = out.size();
  for (const Property& property : record.properties)
    PutProperty(out, property);
  uint32_t propertiesLength = static_cast<uint32_t>(out.size() - propertiesStart);
  for (const Record& child : record.children)
    PutRecord(out, child);
  if (!record.children.empty()) out.append(kNullRecordLength, '\0');
  uint32_t end = static_cast<uint32_t>(out.size());
  std::memcpy(&out[start], &end, 4);
  std::memcpy(&out[start + 8], &propertiesLength, 4);
}

// "Name\x00\x01Class", as objects are named in the file.
std::string ObjectName(std::u16string_view name, const char* fbxClass) {
  return ToUtf8(name) + std::string("\0\x01", 2) + fbxClass;
}

Record& AddProperty(Record& properties70, const char* name, const char* type, const char* label,
                    std::vector<Property> values) {
  std::vector<Property> all{std::string(name), std::string(type), std::string(label),
                            std::string(std::strcmp(type, "Lcl Translation") == 0 ||
                                                std::strcmp(type, "Lcl Rotation") == 0 ||
                                                std::strcmp(type, "Lcl Scaling") == 0
                                            ? "A"
                                            : "")};
  all.insert(all.end(), values.begin(), values.end());
  return properties70.Add("P", std::move(all));
}

struct Trs {
  Point3 translation, rotationDegrees, scale{1, 1, 1};
};

// Node transforms are world transforms with row vectors (p' = p * M); the file wants each model's
// transform relative to its parent as translation, XYZ Euler angles and scale.
Matrix3 Multiply(const Matrix3& a, const Matrix3& b) {
  Matrix3 product;
  auto row = [&](const Point3& r, bool translate) {
    return Point3{
        r.x * b.rows[0].x + r.y * b.rows[1].x + r.z * b.rows[2].x + (translate ? b.rows[3].x : 0),
        r.x * b.rows[0].y + r.y * b.rows[1].y + r.z * b.rows[2].y + (translate ? b.rows[3].y : 0),
        r.x * b.rows[0].z + r.y * b.rows[1].z + r.z * b.rows[2].z + (translate ? b.rows[3].z : 0)};
  };
  for (int i = 0; i < 3; ++i)
    product.rows[static_cast<size_t>(i)] = row(a.rows[static_cast<size_t>(i)], false);
  product.rows[3] = row(a.rows[3], true);
  return product;
}

Matrix3 Inverse(const Matrix3& m) {
  const Point3 &a = m.rows[0], &b = m.rows[1], &c = m.rows[2];
  double det =
      a.x * (b.y * c.z - b.z * c.y) - a.y * (b.x * c.z - b.z * c.x) + a.z * (b.x * c.y - b.y * c.x);
  if (std::fabs(det) < 1e-12) return Matrix3{};
  double k = 1.0 / det;
  Matrix3 inverse;
  inverse.rows[0] = {float(k * (b.y * c.z - b.z * c.y)), float(k * (a.z * c.y - a.y * c.z)),
                     float(k * (a.y * b.z - a.z * b.y))};
  inverse.rows[1] = {float(k * (b.z * c.x - b.x * c.z)), float(k * (a.x * c.z - a.z * c.x)),
                     float(k * (a.z * b.x - a.x * b.z))};
  inverse.rows[2] = {float(k * (b.x * c.y - b.y * c.x)), float(k * (a.y * c.x - a.x * c.y)),
                     float(k * (a.x * b.y - a.y * b.x))};
  // p = (p' - t) * B⁻¹, so the inverse moves by -t * B⁻¹.
  const Point3& t = m.rows[3];
  for (int column = 0; column < 3; ++column) {
    auto at = [&](const Point3& row) { return column == 0 ? row.x : column == 1 ? row.y : row.z; };
    float moved =
        -(t.x * at(inverse.rows[0]) + t.y * at(inverse.rows[1]) + t.z * at(inverse.rows[2]));
    (column == 0 ? inverse.rows[3].x : column == 1 ? inverse.rows[3].y : inverse.rows[3].z) = moved;
  }
  return inverse;
}

double Length(const Point3& p) {
  return std::sqrt(double(p.x) * p.x + double(p.y) * p.y + double(p.z) * p.z);
}

Trs Decompose(const Matrix3& m) {
  Trs trs;
  trs.translation = m.rows[3];
  double scale[3];
  double r[3][3];  // r[i][j]: column convention, column j is the image of axis j
  for (int j = 0; j < 3; ++j) {
    const Point3& axis = m.rows[static_cast<size_t>(j)];
    scale[j] = Length(axis);
    double s = scale[j] > 0 ? scale[j] : 1;
    r[0][j] = axis.x / s;
    r[1][j] = axis.y / s;
    r[2][j] = axis.z / s;
  }
  double det = r[0][0] * (r[1][1] * r[2][2] - r[1][2] * r[2][1]) -
               r[0][1] * (r[1][0] * r[2][2] - r[1][2] * r[2][0]) +
               r[0][2] * (r[1][0] * r[2][1] - r[1][1] * r[2][0]);
  if (det < 0) {  // a mirror: carried by a negative x scale
    scale[0] = -scale[0];
    for (int i = 0; i < 3; ++i)
      r[i][0] = -r[i][0];
  }
  // R = Rz * Ry * Rx.
  double beta = std::asin(std::clamp(-r[2][0], -1.0, 1.0));
  double alpha, gamma;
  if (std::fabs(std::cos(beta)) > 1e-6) {
    alpha = std::atan2(r[2][1], r[2][2]);
    gamma = std::atan2(r[1][0], r[0][0]);
  } else {
    alpha = std::atan2(-r[1][2], r[1][1]);
    gamma = 0;
  }
  constexpr double kDegrees = 180.0 / std::numbers::pi;
  trs.rotationDegrees = {float(alpha * kDegrees), float(beta * kDegrees), float(gamma * kDegrees)};
  trs.scale = {float(scale[0]), float(scale[1]), float(scale[2])};
  return trs;
}

class FbxBuilder {
 public:
  explicit FbxBuilder(MemScene& scene) : scene_(scene) {}

  std::string Build() {
    std::vector<Record> top;
    top.push_back(HeaderExtension());
    top.push_back(GlobalSettings());
    Record objects{"Objects", {}, {}};
    Record connections{"Connections", {}, {}};
    for (INode* node : ListSceneNodes(scene_)) {
      auto* memNode = static_cast<MemNode*>(node);
      AddNode(*memNode, objects, connections);
    }
    top.push_back(std::move(objects));
    top.push_back(std::move(connections));

    std::string out("Kaydara FBX Binary  \0\x1a\0", 23);
    Put(out, kVersion);
    for (const Record& record : top)
      PutRecord(out, record);
    out.append(kNullRecordLength, '\0');
    AppendFooter(out);
    return out;
  }

 private:
  Record HeaderExtension() {
    Record header{"FBXHeaderExtension", {}, {}};
    header.Add("FBXHeaderVersion", {int32_t{1003}});
    header.Add("FBXVersion", {static_cast<int32_t>(kVersion)});
    header.Add("Creator", {std::string("Orvane Platform in-memory host")});
    return header;
  }

  // The host is Z-up and right-handed, like Blender; units are centimetres per system unit.
  Record GlobalSettings() {
    Record settings{"GlobalSettings", {}, {}};
    settings.Add("Version", {int32_t{1000}});
    Record& p = settings.Add("Properties70");
    AddProperty(p, "UpAxis", "int", "Integer", {int32_t{2}});
    AddProperty(p, "UpAxisSign", "int", "Integer", {int32_t{1}});
    AddProperty(p, "FrontAxis", "int", "Integer", {int32_t{1}});
    AddProperty(p, "FrontAxisSign", "int", "Integer", {int32_t{-1}});
    AddProperty(p, "CoordAxis", "int", "Integer", {int32_t{0}});
    AddProperty(p, "CoordAxisSign", "int", "Integer", {int32_t{1}});
    double metres = scene_.metresPerUnit > 0 ? scene_.metresPerUnit : 0.0254;
    AddProperty(p, "UnitScaleFactor", "double", "Number", {metres * 100});
    AddProperty(p, "OriginalUnitScaleFactor", "double", "Number", {metres * 100});
    return settings;
  }

  int64_t NewId() { return nextId_++; }

  void AddNode(MemNode& node, Record& objects, Record& connections) {
    Object* evaluated = node.EvalWorldState(scene_.GetTime());
    auto* object = dynamic_cast<MemObject*>(evaluated);
    bool isMesh = object != nullptr && object->SuperClassID() == GEOMOBJECT_CLASS_ID &&
                  object->mesh.has_value() && !object->mesh->faces.empty();
    int64_t modelId = ReserveId(node);

    Record& model = objects.Add(
        "Model", {modelId, ObjectName(node.name, "Model"), std::string(isMesh ? "Mesh" : "Null")});
    model.Add("Version", {int32_t{232}});
    Matrix3 local = node.parent != nullptr
                        ? Multiply(node.transform, Inverse(node.parent->transform))
                        : node.transform;
    Trs trs = Decompose(local);
    Record& p = model.Add("Properties70");
    AddProperty(p, "Lcl Translation", "Lcl Translation", "",
                {double(trs.translation.x), double(trs.translation.y), double(trs.translation.z)});
    AddProperty(p, "Lcl Rotation", "Lcl Rotation", "",
                {double(trs.rotationDegrees.x), double(trs.rotationDegrees.y),
                 double(trs.rotationDegrees.z)});
    AddProperty(p, "Lcl Scaling", "Lcl Scaling", "",
                {double(trs.scale.x), double(trs.scale.y), double(trs.scale.z)});
    // Children are listed before their parents, so a parent's id is made on first need.
    bool topLevel = node.parent == nullptr || node.parent == scene_.GetRootNode();
    int64_t parentId = topLevel ? 0 : ReserveId(*node.parent);
    connections.Add("C", {std::string("OO"), modelId, parentId});
    if (!isMesh) return;

    std::vector<Mtl*> materials;
    std::vector<int32_t> faceMaterials = FaceMaterials(node.material, *object->mesh, materials);
    int64_t geometryId = NewId();
    objects.children.push_back(Geometry(geometryId, node.name, *object->mesh, faceMaterials));
    connections.Add("C", {std::string("OO"), geometryId, modelId});
    for (Mtl* material : materials) {
      connections.Add("C", {std::string("OO"), MaterialId(*material, objects), modelId});
    }
  }

  int64_t ReserveId(MemNode& node) {
    auto [found, inserted] = modelIds_.try_emplace(&node, 0);
    if (inserted) found->second = NewId();
    return found->second;
  }

  // The model's material slots and each face's slot. A multi-material contributes the
  // sub-materials its faces use (a face id beyond the slots wraps, as the host does); any other
  // material is the one slot.
  std::vector<int32_t> FaceMaterials(Mtl* material, const MemMesh& mesh, std::vector<Mtl*>& slots) {
    std::vector<int32_t> faceSlots(mesh.faces.size(), 0);
    if (material == nullptr) return faceSlots;
    if (material->ClassID() != MULTI_MATERIAL_CLASS_ID || material->NumSubMtls() == 0) {
      slots.push_back(material);
      return faceSlots;
    }
    int count = material->NumSubMtls();
    std::unordered_map<Mtl*, int32_t> slotOf;
    for (size_t f = 0; f < mesh.faces.size(); ++f) {
      Mtl* sub = material->GetSubMtl(mesh.faces[f].matId % count);
      if (sub == nullptr) continue;
      auto [found, inserted] = slotOf.try_emplace(sub, static_cast<int32_t>(slots.size()));
      if (inserted) slots.push_back(sub);
      faceSlots[f] = found->second;
    }
    return faceSlots;
  }

  int64_t MaterialId(Mtl& material, Record& objects) {
    auto [found, inserted] = materialIds_.try_emplace(&material, 0);
    if (!inserted) return found->second;
    found->second = NewId();
    Record& record = objects.Add(
        "Material", {found->second, ObjectName(material.GetName(), "Material"), std::string()});
    record.Add("Version", {int32_t{102}});
    record.Add("ShadingModel", {std::string("phong")});
    record.Add("Properties70");
    return found->second;
  }

  static Record LayerElement(const char* type, const char* mapping, const char* reference) {
    Record element{type, {int32_t{0}}, {}};
    element.Add("Version", {int32_t{101}});
    element.Add("Name", {std::string()});
    element.Add("MappingInformationType", {std::string(mapping)});
    element.Add("ReferenceInformationType", {std::string(reference)});
    return element;
  }

  Record Geometry(int64_t id, std::u16string_view name, const MemMesh& mesh,
                  const std::vector<int32_t>& faceMaterials) {
    Record geometry{"Geometry", {id, ObjectName(name, "Geometry"), std::string("Mesh")}, {}};
    geometry.Add("Properties70");
    geometry.Add("GeometryVersion", {int32_t{124}});
    std::vector<double> vertices;
    for (const Point3& v : mesh.vertices)
      vertices.insert(vertices.end(), {double(v.x), double(v.y), double(v.z)});
    geometry.Add("Vertices", {std::move(vertices)});
    std::vector<int32_t> corners;
    for (const MeshFace& face : mesh.faces)
      corners.insert(corners.end(), {face.v[0], face.v[1], ~face.v[2]});  // ~ ends a polygon
    geometry.Add("PolygonVertexIndex", {std::move(corners)});

    Record materials = LayerElement("LayerElementMaterial", "ByPolygon", "IndexToDirect");
    materials.Add("Materials", {faceMaterials});
    geometry.children.push_back(std::move(materials));
    Record layer{"Layer", {int32_t{0}}, {}};
    layer.Add("Version", {int32_t{100}});
    AddLayerReference(layer, "LayerElementMaterial");

    bool hasColours = !mesh.colorFaces.empty() && mesh.colorFaces.size() == mesh.faces.size();
    if (hasColours) {
      Record colours = LayerElement("LayerElementColor", "ByPolygonVertex", "IndexToDirect");
      std::vector<double> rgba;
      for (const Point3& c : mesh.vertexColors)
        rgba.insert(rgba.end(), {double(c.x), double(c.y), double(c.z), 1.0});
      std::vector<int32_t> index;
      for (const auto& face : mesh.colorFaces)
        index.insert(index.end(), face.begin(), face.end());
      colours.Add("Colors", {std::move(rgba)});
      colours.Add("ColorIndex", {std::move(index)});
      geometry.children.push_back(std::move(colours));
      AddLayerReference(layer, "LayerElementColor");
    }
    geometry.children.push_back(std::move(layer));
    return geometry;
  }

  static void AddLayerReference(Record& layer, const char* type) {
    Record& element = layer.Add("LayerElement");
    element.Add("Type", {std::string(type)});
    element.Add("TypedIndex", {int32_t{0}});
  }

  // What other readers expect after the top-level records; Blender does not read it.
  static void AppendFooter(std::string& out) {
    out.append((16 - out.size() % 16) % 16, '\0');
    Put(out, uint32_t{0});
    Put(out, kVersion);
    out.append(120, '\0');
    static constexpr unsigned char kFooterMagic[16] = {0xf8, 0x5a, 0x8c, 0x6a, 0xde, 0xf5,
                                                       0xd9, 0x7e, 0xec, 0xe9, 0x0c, 0xe3,
                                                       0x75, 0x8f, 0x29, 0x0b};
    out.append(reinterpret_cast<const char*>(kFooterMagic), sizeof kFooterMagic);
  }

  MemScene& scene_;
  int64_t nextId_ = 1'000'000;
  std::unordered_map<const MemNode*, int64_t> modelIds_;
  std::unordered_map<const Mtl*, int64_t> materialIds_;
};

}  // namespace

std::string WriteFbx(MemScene& scene) {
  return FbxBuilder(scene).Build();
}

}  // namespace orvane::host::memory
