// What every parameter writer needs from the scene besides the object it writes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/flat_map.h"
#include "base/prefetch.h"
#include "host/interface.h"

namespace orvane::host {
class Mtl;
class MtlBase;
}  // namespace orvane::host

namespace orvane {

// The parameter members of one material or map as UTF-8: their texts one after the other, and
// where each ends. One text rather than one per member, since a use reads them all.
struct ParamMembers {
  std::string text;
  std::vector<uint32_t> ends;
};

// The parameter members of each material and map (its class's parameters and probe replies), by
// object. The scene does not change while one package is written, so within a build they are
// written once however many trees share the object: inside the host every probe is a trip through
// the script interpreter. Node ids and references, which depend on the tree, are not part of them.
struct ParamFragments {
  FlatMap<const host::MtlBase*, ParamMembers> byObject;
};

// A whole tree written from a fresh start (no node visited yet) depends only on the scene and on
// where the node counter stood, so within a build each tree is written once: later uses shift
// its ids. `text` is the tree without its ids; each id is kept with the place it goes, and each
// id and visited node as its distance from the counter before the tree. The nodes, the ids and
// the text lie in one block, in the order a use reads them: templates are many and each is used
// now and then, so every separate piece would be a separate wait for memory.
class TreeTemplate {
 public:
  struct Visit {
    host::AnimHandle handle = 0;
    uint32_t offset = 0;
  };
  struct Id {
    uint32_t at = 0;
    uint32_t offset = 0;
  };

  // A template that was not kept.
  TreeTemplate() = default;
  TreeTemplate(uint32_t idCount, size_t visits, size_t ids, size_t textBytes);

  bool kept() const { return block_ != nullptr; }
  // Asks for the start of the block to be brought near, for a use a little later; the rest
  // follows by itself once it is read in order.
  void PrefetchStart() const {
    constexpr size_t kLine = 64, kLines = 8;
    size_t bytes = visits_ * sizeof(Visit) + ids_ * sizeof(Id) + textBytes_;
    for (size_t at = 0; at < std::min(bytes, kLine * kLines); at += kLine)
      Prefetch(block_.get() + at);
  }
  uint32_t idCount() const { return idCount_; }
  std::span<const Visit> visited() const { return {VisitsStart(), visits_}; }
  std::span<const Id> ids() const { return {IdsStart(), ids_}; }
  std::string_view text() const { return {TextStart(), textBytes_}; }

  // Filled once, by the template's maker.
  std::span<Visit> visited() { return {VisitsStart(), visits_}; }
  std::span<Id> ids() { return {IdsStart(), ids_}; }
  std::span<char> text() { return {TextStart(), textBytes_}; }

 private:
  // The block holds the visited nodes, then the ids, then the text; new std::byte[] is aligned
  // for any of them.
  Visit* VisitsStart() const { return reinterpret_cast<Visit*>(block_.get()); }
  Id* IdsStart() const { return reinterpret_cast<Id*>(VisitsStart() + visits_); }
  char* TextStart() const { return reinterpret_cast<char*>(IdsStart() + ids_); }

  std::unique_ptr<std::byte[]> block_;
  uint32_t idCount_ = 0, visits_ = 0, ids_ = 0, textBytes_ = 0;
};

// Where an id went in the text being written: its offset there, and the id.
struct IdPlace {
  size_t at = 0;
  uint32_t id = 0;
};

// By root object and depth; not kept for a tree that refers to a node written before it, which
// is then written afresh every time.
struct TreeTemplates {
  using Root = std::pair<const host::MtlBase*, int>;
  struct RootBits {
    uint64_t operator()(const Root& root) const {
      return reinterpret_cast<uintptr_t>(root.first) ^ static_cast<uint64_t>(root.second);
    }
  };
  FlatMap<Root, TreeTemplate, RootBits> byRoot;
  // Whole material records, for the same reason: every object that shares a material renders
  // its record in one piece.
  FlatMap<const host::Mtl*, TreeTemplate> byMaterial;
  // Every id written since the record began, in the order written, so that a template is made
  // without searching its text for them.
  std::vector<IdPlace> idPlaces;
};

struct WriteContext {
  host::Interface& scene;
  host::TimeValue time = 0;
  ParamFragments* params = nullptr;  // null: parameters are written afresh every time
  TreeTemplates* trees = nullptr;    // null: every tree is written afresh
};

}  // namespace orvane
