#include "base/flat_map.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace orvane {
namespace {

// Handles that differ only in high bits, as aligned pointers do, crowd the same slots unless
// the map spreads them, and erasing from the middle of such a run must keep the rest of it
// reachable; a long run of inserts, lookups, erasures and clears is held to std::map.
TEST(FlatMap, BehavesAsAnOrdinaryMapUnderInsertsLookupsErasuresAndClears) {
  FlatMap<uint64_t, int> map;
  std::map<uint64_t, int> model;
  std::mt19937 random(7);
  std::uniform_int_distribution<uint64_t> keys(1, 3000);
  for (int step = 0; step < 200000; ++step) {
    uint64_t key = keys(random) << 20;
    uint32_t action = random() % 1000;  // mostly inserts, some lookups, rarely a clear
    if (action == 0) {
      map.clear();
      model.clear();
    } else if (action < 100) {
      ASSERT_EQ(map.Find(key) != nullptr, model.count(key) != 0) << step;
    } else if (action < 400) {
      map.Erase(key);
      model.erase(key);
    } else {
      auto [value, inserted] = map.TryEmplace(key);
      auto [known, fresh] = model.try_emplace(key, 0);
      ASSERT_EQ(inserted, fresh) << step;
      ASSERT_EQ(*value, known->second) << step;
      *value = known->second = step;
    }
    ASSERT_EQ(map.size(), model.size()) << step;
  }
  size_t visited = 0;
  map.ForEach([&](uint64_t key, int value) {
    ++visited;
    EXPECT_EQ(model.at(key), value);
  });
  EXPECT_EQ(visited, model.size());
}

TEST(FlatMap, MapsAreEqualWithTheSameEntriesInAnyOrder) {
  auto made = [](std::initializer_list<std::pair<int, int>> entries) {
    FlatMap<int, int> map;
    for (auto [key, value] : entries)
      *map.TryEmplace(key).first = value;
    return map;
  };
  EXPECT_EQ(made({{1, 10}, {2, 20}, {3, 30}}), made({{3, 30}, {1, 10}, {2, 20}}));
  EXPECT_FALSE(made({{1, 10}, {2, 20}}) == made({{1, 10}, {2, 21}}));
  EXPECT_FALSE(made({{1, 10}, {2, 20}}) == made({{1, 10}, {3, 20}}));
  EXPECT_FALSE(made({{1, 10}}) == made({{1, 10}, {2, 20}}));
}

}  // namespace
}  // namespace orvane
