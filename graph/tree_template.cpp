#include "graph/tree_template.h"

#include <algorithm>

namespace orvane {

namespace {

void AppendDecimal(std::string& out, uint32_t value) {
  char digits[10];
  int count = 0;
  do {
    digits[count++] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  std::reverse(digits, digits + count);
  out.append(digits, static_cast<size_t>(count));
}

size_t DecimalDigits(uint32_t value) {
  size_t count = 1;
  while (value >= 10) {
    value /= 10;
    ++count;
  }
  return count;
}

}  // namespace

std::unique_ptr<const TreeTemplate> MakeTemplate(std::string_view out, size_t start,
                                                 std::span<const IdPlace> places, uint32_t base,
                                                 const NodeTreeState& state) {
  auto made = std::make_unique<TreeTemplate>();
  made->idCount = state.nodeCounter - base;
  made->ids.reserve(places.size());
  made->text.reserve(out.size() - start);
  size_t copied = start;
  for (const IdPlace& place : places) {
    if (place.id <= base) return nullptr;
    made->text.append(out, copied, place.at - copied);
    made->ids.push_back({made->text.size(), place.id - base});
    copied = place.at + DecimalDigits(place.id);
  }
  made->text.append(out, copied);
  state.visited.ForEach([&](host::AnimHandle handle, uint32_t id) {
    if (id > base) made->visited.emplace_back(handle, id - base);
  });
  return made;
}

void RenderTemplate(const TreeTemplate& tree, NodeTreeState& state, std::vector<IdPlace>& places,
                    std::string& out) {
  uint32_t base = state.nodeCounter;
  out.reserve(out.size() + tree.text.size() + 10 * tree.ids.size());
  size_t copied = 0;
  for (const TreeTemplate::Id& id : tree.ids) {
    out.append(tree.text, copied, id.at - copied);
    places.push_back({out.size(), base + id.offset});
    AppendDecimal(out, base + id.offset);
    copied = id.at;
  }
  out.append(tree.text, copied);
  state.nodeCounter += tree.idCount;
  for (const auto& [handle, offset] : tree.visited) {
    auto [entry, inserted] = state.visited.TryEmplace(handle);
    if (inserted) *entry = base + offset;
  }
}

}  // namespace orvane
