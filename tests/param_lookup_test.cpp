#include "graph/param_lookup.h"

#include <gtest/gtest.h>

#include "base/wide_text.h"
#include "graph/param_json.h"
#include "host/memory/memory_scene.h"

namespace orvane {
namespace {

using namespace host;
using host::memory::MemMtl;
using host::memory::MemParam;
using host::memory::MemParamBlock;
using host::memory::MemTexmap;
using host::memory::ParamElement;

constexpr TimeValue kTime = 0;

MemParam Param(std::optional<std::u16string> name, ParamType2 type,
               std::vector<ParamElement> elements) {
  return MemParam{std::move(name), type, std::move(elements)};
}

// A material whose blocks hold the given parameters; a nullopt block stands for a missing one.
class Owner {
 public:
  Owner& Block(std::vector<MemParam> params) {
    auto block = std::make_unique<MemParamBlock>();
    block->params = std::move(params);
    material_.data.blocks.push_back(std::move(block));
    return *this;
  }
  Owner& MissingBlock() {
    material_.data.blocks.push_back(nullptr);
    return *this;
  }
  const Animatable* get() const { return &material_; }

 private:
  MemMtl material_;
};

std::u16string Fragment(const Owner& owner, std::u16string_view name) {
  FragmentList fragments;
  AppendParamJson(fragments, owner.get(), kTime, name, u"key");
  return fragments.empty() ? u"(none)" : fragments.front();
}

TEST(ParamLookup, EachParameterTypeBecomesItsJsonValue) {
  MemTexmap map;
  Matrix3 matrix;
  Owner owner;
  owner.Block({
      Param(u"f", TYPE_FLOAT, {0.25f}),
      Param(u"angle", TYPE_ANGLE, {1.5f}),
      Param(u"pct", TYPE_PCNT_FRAC, {0.3f}),
      Param(u"world", TYPE_WORLD, {12.5f}),
      Param(u"i", TYPE_INT, {-7}),
      Param(u"index", TYPE_INDEX, {3}),
      Param(u"on", TYPE_BOOL, {2}),
      Param(u"off", TYPE_BOOL, {0}),
      Param(u"s", TYPE_STRING, {std::optional<std::u16string>(u"say \"\u00e9\"")}),
      Param(u"nullString", TYPE_STRING, {std::optional<std::u16string>()}),
      Param(u"file", TYPE_FILENAME, {std::optional<std::u16string>(u"C:\\a.ies")}),
      Param(u"rgba", TYPE_RGBA, {Color{1, 0.5f, 0}}),
      Param(u"frgba", TYPE_FRGBA, {Color{2, 0, 0.125f}}),
      Param(u"p", TYPE_POINT3, {Point3{1, 2, 3}}),
      Param(u"map", TYPE_TEXMAP, {static_cast<Animatable*>(&map)}),
      Param(u"mtl", TYPE_MTL, {static_cast<Animatable*>(nullptr)}),
      Param(u"matrix", TYPE_MATRIX3, {matrix}),
      Param(u"table", TYPE_FLOAT_TAB, {1.0f, 2.0f}),
  });
  const struct {
    const char16_t* name;
    const char16_t* fragment;
  } cases[] = {
      {u"f", u"\"key\":0.25"},
      {u"angle", u"\"key\":1.5"},
      {u"pct", u"\"key\":0.3"},
      {u"world", u"\"key\":12.5"},
      {u"i", u"\"key\":-7"},
      {u"index", u"\"key\":3"},
      {u"on", u"\"key\":true"},
      {u"off", u"\"key\":false"},
      {u"s", u"\"key\":\"say \\\"\u00e9\\\"\""},
      {u"nullString", u"\"key\":\"\""},
      {u"file", u"\"key\":\"C:\\\\a.ies\""},
      {u"rgba", u"\"key\":[1,0.5,0]"},
      {u"frgba", u"\"key\":[2,0,0.125]"},
      {u"p", u"\"key\":[1,2,3]"},
      {u"map", u"(none)"},
      {u"mtl", u"(none)"},
      {u"matrix", u"(none)"},
      {u"table", u"(none)"},
      {u"absent", u"(none)"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Fragment(owner, c.name), c.fragment) << ToUtf8(c.name);
}

TEST(ParamLookup, NamesMatchIgnoringAsciiCaseOnly) {
  Owner owner;
  owner.Block({Param(u"Diffuse_Color", TYPE_RGBA, {Color{0.1f, 0.2f, 0.3f}})});
  EXPECT_EQ(FindParamValue(owner.get(), u"diffuse_color", kTime).kind, ParamKind::kColor);
  EXPECT_EQ(FindParamValue(owner.get(), u"DIFFUSE_COLOR", kTime).kind, ParamKind::kColor);
  EXPECT_EQ(FindParamValue(owner.get(), u"diffuse color", kTime).kind, ParamKind::kNone);
  EXPECT_EQ(FindParamValue(owner.get(), u"Diffuse_Color ", kTime).kind, ParamKind::kNone);
}

TEST(ParamLookup, FirstReadableMatchWinsAcrossDefinitionsAndBlocks) {
  MemTexmap map;
  Owner owner;
  owner.MissingBlock()
      .Block({Param(std::nullopt, TYPE_FLOAT, {9.0f}),  // a definition without a name
              Param(u"color", TYPE_TEXMAP, {static_cast<Animatable*>(&map)}),
              Param(u"amount", TYPE_FLOAT, {1.0f}), Param(u"AMOUNT", TYPE_FLOAT, {5.0f})})
      .Block({Param(u"color", TYPE_RGBA, {Color{0, 1, 0}}), Param(u"amount", TYPE_FLOAT, {2.0f}),
              Param(u"late", TYPE_INT, {4})});
  EXPECT_EQ(Fragment(owner, u"color"), u"\"key\":[0,1,0]");  // the map is passed over
  EXPECT_EQ(Fragment(owner, u"amount"), u"\"key\":1");       // the first block wins
  EXPECT_EQ(Fragment(owner, u"late"), u"\"key\":4");         // later blocks are searched
}

// A writer's rows look names up through an index of the object's parameters: each lookup gives
// what a lookup straight on the object gives, passed-over matches and case included.
TEST(ParamLookup, AnIndexOfTheParametersFindsWhatTheObjectItselfGives) {
  MemTexmap map;
  Owner owner;
  owner.MissingBlock()
      .Block({Param(std::nullopt, TYPE_FLOAT, {9.0f}),
              Param(u"color", TYPE_TEXMAP, {static_cast<Animatable*>(&map)}),
              Param(u"amount", TYPE_FLOAT, {1.0f}), Param(u"", TYPE_INT, {3})})
      .Block({Param(u"Color", TYPE_RGBA, {Color{0, 1, 0}}), Param(u"AMOUNT", TYPE_FLOAT, {2.0f}),
              Param(u"name", TYPE_STRING, {std::u16string(u"x")})});
  ParamNameIndex index(owner.get());
  for (std::u16string_view name :
       {u"color", u"COLOR", u"amount", u"Amount", u"name", u"", u"missing", u"colo"}) {
    ParamValue direct = FindParamValue(owner.get(), name, kTime);
    ParamValue indexed = index.FindValue(name, kTime);
    EXPECT_EQ(indexed.kind, direct.kind) << ToUtf8(name);
    EXPECT_EQ(FormatParamValueJson(indexed), FormatParamValueJson(direct)) << ToUtf8(name);
  }
  EXPECT_EQ(ParamNameIndex(nullptr).FindValue(u"color", kTime).kind, ParamKind::kNone);
}

TEST(ParamLookup, NullObjectsAndEmptyNamesFindNothing) {
  Owner owner;
  owner.Block({Param(u"f", TYPE_FLOAT, {1.0f})});
  EXPECT_EQ(FindParamValue(nullptr, u"f", kTime).kind, ParamKind::kNone);
  EXPECT_EQ(FindParamValue(owner.get(), u"", kTime).kind, ParamKind::kNone);
  EXPECT_EQ(FindParamReference(nullptr, u"f", kTime), nullptr);
  EXPECT_EQ(FindParamTabCount(nullptr, u"f"), -1);
  EXPECT_EQ(FindParamTabValue(nullptr, u"f", 0, kTime).kind, ParamKind::kNone);
}

TEST(ParamLookup, ReferenceLookupAcceptsOnlyMaterialMapAndReferenceTypes) {
  MemTexmap first, second;
  Owner owner;
  owner
      .Block({Param(u"slot", TYPE_FLOAT, {1.0f}),
              Param(u"slot", TYPE_TEXMAP, {static_cast<Animatable*>(&first)}),
              Param(u"empty", TYPE_MTL, {static_cast<Animatable*>(nullptr)}),
              Param(u"node", TYPE_INODE, {static_cast<Animatable*>(&second)})})
      .Block({Param(u"empty", TYPE_REFTARG, {static_cast<Animatable*>(&second)}),
              Param(u"source", TYPE_REFTARG, {static_cast<Animatable*>(&second)})});
  EXPECT_EQ(FindParamReference(owner.get(), u"SLOT", kTime), &first);
  // The first accepted match answers, even when it holds nothing.
  EXPECT_EQ(FindParamReference(owner.get(), u"empty", kTime), nullptr);
  EXPECT_EQ(FindParamReference(owner.get(), u"source", kTime), &second);
  EXPECT_EQ(FindParamReference(owner.get(), u"node", kTime), nullptr);
}

TEST(ParamLookup, TablesAnswerCountsAndTypedElements) {
  MemTexmap map;
  Owner owner;
  owner.Block({Param(u"plain", TYPE_FLOAT, {1.0f}),
               Param(u"maps", static_cast<ParamType2>(TYPE_TEXMAP | TYPE_TAB),
                     {static_cast<Animatable*>(&map)}),
               Param(u"submap_on", TYPE_BOOL_TAB, {1, 0, 5}),
               Param(u"colors", TYPE_RGBA_TAB, {Color{1, 0, 0}, Color{0, 0, 1}}),
               Param(u"names", TYPE_STRING_TAB, {std::optional<std::u16string>()}),
               Param(u"empty", TYPE_INT_TAB, {})});
  EXPECT_EQ(FindParamTabCount(owner.get(), u"submap_on"), 3);
  EXPECT_EQ(FindParamTabCount(owner.get(), u"empty"), 0);
  EXPECT_EQ(FindParamTabCount(owner.get(), u"plain"), -1);
  EXPECT_EQ(FindParamTabCount(owner.get(), u"maps"), -1);
  EXPECT_EQ(FindParamTabCount(owner.get(), u"absent"), -1);

  ParamValue off = FindParamTabValue(owner.get(), u"submap_on", 1, kTime);
  EXPECT_EQ(off.kind, ParamKind::kBool);
  EXPECT_FALSE(off.boolValue);
  EXPECT_TRUE(FindParamTabValue(owner.get(), u"submap_on", 2, kTime).boolValue);
  ParamValue blue = FindParamTabValue(owner.get(), u"colors", 1, kTime);
  EXPECT_EQ(blue.kind, ParamKind::kColor);
  EXPECT_EQ(blue.color, (Color{0, 0, 1}));
  EXPECT_EQ(FindParamTabValue(owner.get(), u"names", 0, kTime).kind, ParamKind::kString);
  EXPECT_EQ(FindParamTabValue(owner.get(), u"colors", 2, kTime).kind, ParamKind::kNone);
  EXPECT_EQ(FindParamTabValue(owner.get(), u"colors", -1, kTime).kind, ParamKind::kNone);
  EXPECT_EQ(FindParamTabValue(owner.get(), u"plain", 0, kTime).kind, ParamKind::kNone);
}

}  // namespace
}  // namespace orvane
