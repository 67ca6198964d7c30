#include "graph/tree_template.h"

#include <algorithm>
#include <functional>

namespace orvane {

namespace {

constexpr std::string_view kIdKeys[] = {"\"node_id\": ", "{ \"ref\": "};

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

// A tree's text is mostly quoted names: a plain search for a key that starts with a quote would
// stop at every quote to compare, where this one skips ahead by up to the key's length.
using KeySearcher = std::boyer_moore_horspool_searcher<std::string_view::const_iterator>;
const KeySearcher kIdKeySearchers[] = {{kIdKeys[0].begin(), kIdKeys[0].end()},
                                       {kIdKeys[1].begin(), kIdKeys[1].end()}};

size_t Find(std::string_view text, size_t key, size_t from) {
  auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                           kIdKeySearchers[key]);
  return found != text.end() ? static_cast<size_t>(found - text.begin()) : std::string_view::npos;
}

}  // namespace

std::unique_ptr<const TreeTemplate> MakeTemplate(std::string_view text, uint32_t base,
                                                 const NodeTreeState& state, int refs) {
  auto made = std::make_unique<TreeTemplate>();
  made->idCount = state.nodeCounter - base;
  size_t start = 0, nodeIds = 0;
  // The next place of each key, searched again only once the walk has passed it: searching both
  // from every id would scan a tree of n ids n times.
  size_t next[] = {Find(text, 0, 0), Find(text, 1, 0)};
  for (;;) {
    for (size_t k = 0; k < 2; ++k) {
      if (next[k] < start) next[k] = Find(text, k, start);
    }
    size_t key = next[0] < next[1] ? 0 : 1;
    size_t at = next[key];
    if (at == std::string_view::npos) break;
    if (key == 0) ++nodeIds;
    size_t digits = at + kIdKeys[key].size(), end = digits;
    uint64_t id = 0;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9' && end - digits < 10)
      id = id * 10 + static_cast<uint64_t>(text[end++] - '0');
    if (end == digits || id <= base || id > state.nodeCounter) return nullptr;
    made->text.append(text, start, digits - start);
    made->ids.push_back({made->text.size(), static_cast<uint32_t>(id - base)});
    start = end;
  }
  if (nodeIds != made->idCount || made->ids.size() != nodeIds + static_cast<size_t>(refs)) {
    return nullptr;
  }
  made->text.append(text, start);
  state.visited.ForEach([&](host::AnimHandle handle, uint32_t id) {
    if (id > base) made->visited.emplace_back(handle, id - base);
  });
  return made;
}

int RenderTemplate(const TreeTemplate& tree, NodeTreeState& state, std::string& out) {
  uint32_t base = state.nodeCounter;
  out.reserve(out.size() + tree.text.size() + 8 * tree.ids.size());
  size_t copied = 0;
  for (const TreeTemplate::Id& id : tree.ids) {
    out.append(tree.text, copied, id.at - copied);
    AppendDecimal(out, base + id.offset);
    copied = id.at;
  }
  out.append(tree.text, copied);
  state.nodeCounter += tree.idCount;
  for (const auto& [handle, offset] : tree.visited) {
    auto [entry, inserted] = state.visited.TryEmplace(handle);
    if (inserted) *entry = base + offset;
  }
  return static_cast<int>(tree.ids.size() - tree.idCount);
}

}  // namespace orvane
