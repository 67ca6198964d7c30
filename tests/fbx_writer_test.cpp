// The in-memory host's binary FBX, read back record by record with the layout rules the
// importer enforces (Blender itself checks the examples in tools/blender_check).
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "host/memory/fbx_writer.h"
#include "host/memory/scene_file.h"

namespace orvane {
namespace {

struct Node {
  std::string name;
  std::vector<std::string> strings;  // the record's string properties
  std::vector<int32_t> ints;         // its int32 array, if any
  std::vector<Node> children;
};

class Reader {
 public:
  explicit Reader(const std::string& bytes) : bytes_(bytes) {}

  template <class T>
  T Get() {
    if (pos_ + sizeof(T) > bytes_.size()) throw std::runtime_error("read past the end");
    T value;
    std::memcpy(&value, bytes_.data() + pos_, sizeof(T));
    pos_ += sizeof(T);
    return value;
  }

  // Nullopt for the null record that closes a list.
  std::optional<Node> Record() {
    uint32_t end = Get<uint32_t>();
    uint32_t count = Get<uint32_t>();
    uint32_t length = Get<uint32_t>();
    uint8_t nameLength = Get<uint8_t>();
    if (end == 0) {
      if (count != 0 || length != 0 || nameLength != 0) throw std::runtime_error("bad null record");
      return std::nullopt;
    }
    if (end > bytes_.size()) throw std::runtime_error("end offset beyond the file");
    Node node{bytes_.substr(pos_, nameLength), {}, {}, {}};
    pos_ += nameLength;
    size_t propertiesStart = pos_;
    for (uint32_t i = 0; i < count; ++i)
      Property(node);
    if (pos_ - propertiesStart != length) throw std::runtime_error(node.name + ": property length");
    if (pos_ == end) return node;  // a leaf ends exactly after its properties
    while (auto child = Record())
      node.children.push_back(*child);
    if (pos_ != end) throw std::runtime_error(node.name + ": end offset does not match");
    return node;
  }

  size_t pos() const { return pos_; }
  void Skip(size_t count) { pos_ += count; }

 private:
  void Property(Node& node) {
    char code = Get<char>();
    switch (code) {
      case 'I': Get<int32_t>(); break;
      case 'L': Get<int64_t>(); break;
      case 'D': Get<double>(); break;
      case 'S': {
        uint32_t size = Get<uint32_t>();
        node.strings.push_back(bytes_.substr(pos_, size));
        pos_ += size;
        break;
      }
      case 'i':
      case 'd': {
        uint32_t count = Get<uint32_t>();
        if (Get<uint32_t>() != 0) throw std::runtime_error("compressed array");
        uint32_t size = Get<uint32_t>();
        if (size != count * (code == 'i' ? 4u : 8u)) throw std::runtime_error("array size");
        for (uint32_t k = 0; code == 'i' && k < count; ++k)
          node.ints.push_back(Get<int32_t>());
        if (code == 'd') pos_ += size;
        break;
      }
      default: throw std::runtime_error(std::string("unknown property type ") + code);
    }
  }

  const std::string& bytes_;
  size_t pos_ = 0;
};

const Node* Find(const std::vector<Node>& nodes, const std::string& name) {
  for (const Node& node : nodes) {
    if (node.name == name) return &node;
  }
  return nullptr;
}

TEST(FbxWriter, EveryRecordKeepsTheLayoutTheImporterChecks) {
  auto loaded = host::memory::LoadSceneFile(ORVANE_TEST_DATA "/fbx/multitexture.scene.json");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  std::string bytes = host::memory::WriteFbx(*loaded.scene);

  ASSERT_EQ(bytes.substr(0, 23), std::string("Kaydara FBX Binary  \0\x1a\0", 23));
  Reader reader(bytes);
  reader.Skip(23);
  EXPECT_EQ(reader.Get<uint32_t>(), 7400u);
  std::vector<Node> top;
  ASSERT_NO_THROW({
    while (auto record = reader.Record())
      top.push_back(*record);
  });
  // The footer other readers look for: padding to 16 bytes, then 144 bytes.
  EXPECT_EQ(bytes.size() - reader.pos(), (16 - reader.pos() % 16) % 16 + 144u);

  const Node* objects = Find(top, "Objects");
  ASSERT_NE(objects, nullptr);
  std::vector<std::string> models, materials;
  std::vector<int32_t> faceMaterials;
  for (const Node& object : objects->children) {
    if (object.name == "Model") models.push_back(object.strings[0] + "/" + object.strings[1]);
    if (object.name == "Material") materials.push_back(object.strings[0]);
    if (object.name == "Geometry" && object.strings[0].starts_with("Grout")) {
      faceMaterials =
          Find(Find(object.children, "LayerElementMaterial")->children, "Materials")->ints;
    }
  }
  // Names carry their class after a NUL and 0x01; children come before their parents.
  EXPECT_EQ(models,
            (std::vector<std::string>{std::string("Grout\0\x01Model", 12) + "/Mesh",
                                      std::string("Floor Tiles\0\x01Model", 18) + "/Mesh"}));
  EXPECT_EQ(materials, (std::vector<std::string>{std::string("Grout (dark)\0\x01Material", 22),
                                                 std::string("Grout.dark\0\x01Material", 20),
                                                 std::string("Terrazzo Tiles\0\x01Material", 24)}));
  EXPECT_EQ(faceMaterials, (std::vector<int32_t>{0, 1}));
  EXPECT_EQ(Find(top, "Connections")->children.size(), 2u + 2u + 2u + 1u);
}

}  // namespace
}  // namespace orvane
