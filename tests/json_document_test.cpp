#include "host/memory/json_document.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "host/memory/scene_file_json.h"

namespace orvane::host::memory {
namespace {

// Both ways of parsing build the document through the same builder; each is held to it.
const std::pair<const char*, std::function<JsonDocument(std::string_view)>> kParses[] = {
    {"fast", [](std::string_view text) { return ParseStrictly(text); }},
    {"nlohmann", ParseStrictlyWithNlohmann},
};

TEST(JsonDocument, ContainersKeepTheirOwnChildrenWhenNestedOnesCloseInBetween) {
  // a: [ 1, {b: [2, 3], e: {}}, [], 4 ], c: "x"
  const char* text = R"({"a": [1, {"b": [2, 3], "e": {}}, [], 4], "c": "x"})";
  for (const auto& [name, parse] : kParses) {
    JsonDocument document = parse(text);
    JsonValue root = document.root();
    ASSERT_EQ(root.size(), 2u) << name;
    std::vector<std::string_view> keys;
    for (JsonMember member : root.Members())
      keys.push_back(member.key);
    EXPECT_EQ(keys, (std::vector<std::string_view>{"a", "c"})) << name;
    JsonValue a = *root.Find("a");
    ASSERT_EQ(a.size(), 4u) << name;
    EXPECT_EQ(a[0].Unsigned(), 1u) << name;
    JsonValue b = *a[1].Find("b");
    ASSERT_EQ(b.size(), 2u) << name;
    EXPECT_EQ(b[1].Unsigned(), 3u) << name;
    EXPECT_TRUE(a[1].Find("e")->IsObject()) << name;
    EXPECT_EQ(a[1].Find("e")->size(), 0u) << name;
    EXPECT_TRUE(a[2].IsArray()) << name;
    EXPECT_EQ(a[2].size(), 0u) << name;
    EXPECT_EQ(a[3].Unsigned(), 4u) << name;
    EXPECT_EQ(root.Find("c")->String(), "x") << name;
    EXPECT_FALSE(root.Find("b").has_value()) << name;
  }
}

TEST(JsonDocument, ScalarsKeepTheirKindAndValue) {
  const char* text = R"([-5, 5, 18446744073709551615, 1.5, -0, "\u00e9\n", "", true, false, null])";
  for (const auto& [name, parse] : kParses) {
    JsonDocument document = parse(text);
    JsonValue list = document.root();
    ASSERT_EQ(list.size(), 10u) << name;
    EXPECT_EQ(list[0].kind(), JsonKind::kSigned) << name;
    EXPECT_EQ(list[0].Signed(), -5) << name;
    EXPECT_EQ(list[0].Double(), -5.0) << name;
    EXPECT_EQ(list[1].kind(), JsonKind::kUnsigned) << name;
    EXPECT_EQ(list[1].Double(), 5.0) << name;
    EXPECT_EQ(list[2].Unsigned(), 18446744073709551615u) << name;
    EXPECT_EQ(list[3].kind(), JsonKind::kDouble) << name;
    EXPECT_EQ(list[3].Double(), 1.5) << name;
    EXPECT_EQ(list[4].kind(), JsonKind::kUnsigned) << name;  // -0 is plain 0
    EXPECT_EQ(list[5].String(), "\xc3\xa9\n") << name;
    EXPECT_EQ(list[6].String(), "") << name;
    EXPECT_TRUE(list[7].IsBool() && list[7].Bool()) << name;
    EXPECT_TRUE(list[8].IsBool() && !list[8].Bool()) << name;
    EXPECT_TRUE(list[9].IsNull()) << name;
    EXPECT_EQ(list[9].size(), 0u) << name;
    EXPECT_FALSE(list[5].Find("x").has_value()) << name;
  }
}

// Keys are compared pairwise up to 16 members and sorted beyond: a duplicate is found either way,
// and distinct keys that share a prefix are not taken for one.
TEST(JsonDocument, DuplicateKeysAreFoundInSmallAndLargeObjects) {
  auto object = [](int members, bool duplicateLast) {
    std::string text = "{\"outer\": {";
    for (int i = 0; i < members; ++i)
      text += (i ? ", \"k" : "\"k") + std::to_string(i) + "\": " + std::to_string(i);
    if (duplicateLast) text += ", \"k0\": 0";
    return text + "}}";
  };
  for (int members : {2, 16, 17, 40}) {
    for (const auto& [name, parse] : kParses) {
      EXPECT_EQ(parse(object(members, false)).root().Find("outer")->size(),
                static_cast<size_t>(members))
          << name << " " << members;
      try {
        parse(object(members, true));
        ADD_FAILURE() << name << " " << members << ": a duplicate key was accepted";
      } catch (const SceneFileError& error) {
        EXPECT_STREQ(error.what(), "outer.k0: duplicate key") << name << " " << members;
      }
    }
  }
}

// Nesting far beyond any scene file's is read like any other text, never by recursing once per
// level: a hostile file must not overflow the stack.
TEST(JsonDocument, DeepNestingIsReadWithoutExhaustingTheStack) {
  constexpr int kLevels = 100000;
  std::string text = std::string(kLevels, '[') + "7" + std::string(kLevels, ']');
  for (const auto& [name, parse] : kParses) {
    JsonDocument document = parse(text);
    JsonValue value = document.root();
    for (int level = 1; level < kLevels; ++level)
      value = value[0];
    EXPECT_EQ(value[0].Unsigned(), 7u) << name;
  }
}

// A container's own word counts its children only up to 2^24 - 1, as simdjson writes it; past
// that they are counted one by one.
TEST(JsonDocument, ArraysBeyondTheCountInTheirWordAreCountedInFull) {
  constexpr size_t kElements = (size_t{1} << 24) + 2;
  JsonDocumentBuilder builder;
  builder.StartArray();
  for (size_t i = 0; i < kElements; ++i)
    builder.Null();
  builder.EndArray();
  JsonDocument document = builder.Finish();
  EXPECT_EQ(document.root().size(), kElements);
}

}  // namespace
}  // namespace orvane::host::memory
