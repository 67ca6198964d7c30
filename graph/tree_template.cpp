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

TreeTemplate::TreeTemplate(uint32_t idCount, size_t visits, size_t ids, size_t textBytes)
    : block_(new std::byte[visits * sizeof(Visit) + ids * sizeof(Id) + textBytes]),
      idCount_(idCount),
      visits_(static_cast<uint32_t>(visits)),
      ids_(static_cast<uint32_t>(ids)),
      textBytes_(static_cast<uint32_t>(textBytes)) {}

TreeTemplate MakeTemplate(std::string_view out, size_t start, std::span<const IdPlace> places,
                          uint32_t base, const NodeTreeState& state) {
  size_t digits = 0;
  for (const IdPlace& place : places) {
    if (place.id <= base) return {};
    digits += DecimalDigits(place.id);
  }
  size_t visits = 0;
  state.visited.ForEach([&](host::AnimHandle, uint32_t id) { visits += id > base ? 1 : 0; });
  TreeTemplate made(state.nodeCounter - base, visits, places.size(), out.size() - start - digits);
  std::span<TreeTemplate::Visit> visited = made.visited();
  auto visit = visited.begin();
  state.visited.ForEach([&](host::AnimHandle handle, uint32_t id) {
    if (id > base) *visit++ = {handle, id - base};
  });
  std::span<char> text = made.text();
  auto end = text.begin();
  auto id = made.ids().begin();
  size_t copied = start;
  for (const IdPlace& place : places) {
    end = std::copy(out.begin() + copied, out.begin() + place.at, end);
    *id++ = {static_cast<uint32_t>(end - text.begin()), place.id - base};
    copied = place.at + DecimalDigits(place.id);
  }
  std::copy(out.begin() + copied, out.end(), end);
  return made;
}

void RenderTemplate(const TreeTemplate& tree, NodeTreeState& state, std::vector<IdPlace>* places,
                    std::string& out) {
  uint32_t base = state.nodeCounter;
  std::string_view text = tree.text();
  out.reserve(out.size() + text.size() + 10 * tree.ids().size());
  size_t copied = 0;
  for (const TreeTemplate::Id& id : tree.ids()) {
    out.append(text, copied, id.at - copied);
    if (places != nullptr) places->push_back({out.size(), base + id.offset});
    AppendDecimal(out, base + id.offset);
    copied = id.at;
  }
  out.append(text, copied);
  state.nodeCounter += tree.idCount();
  for (const auto& [handle, offset] : tree.visited()) {
    auto [entry, inserted] = state.visited.TryEmplace(handle);
    if (inserted) *entry = base + offset;
  }
}

}  // namespace orvane
