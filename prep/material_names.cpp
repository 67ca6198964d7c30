#include "prep/material_names.h"

#include <unordered_map>
#include <unordered_set>

#include "base/wide_text.h"
#include "host/node.h"
#include "host/object.h"
#include "host/scene_walk.h"

namespace orvane {

namespace {

constexpr size_t kMaxNameLength = 56;
constexpr size_t kCutLength = 49;

bool IsKept(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
         c == u'-' || c == u'_';
}

void TrimTrailingUnderscores(std::u16string& text) {
  while (!text.empty() && text.back() == u'_')
    text.pop_back();
}

// djb2 over the 16-bit code units, as the name was read.
std::u16string NameHash(std::u16string_view name) {
  uint32_t h = 5381;
  for (char16_t c : name)
    h = h * 33 + c;
  static constexpr char16_t kHex[] = u"0123456789abcdef";
  std::u16string digits(6, u'0');
  for (int i = 5; i >= 0; --i, h >>= 4)
    digits[static_cast<size_t>(i)] = kHex[h & 0xF];
  return digits;
}

struct Member {
  host::Mtl* material;
  std::u16string name;  // as read, so the rename need not ask the host again
};

struct NameGroup {
  std::u16string key;
  std::vector<Member> members;
};

// Groups in creation order, found by exact key.
class NameGroups {
 public:
  explicit NameGroups(size_t expected) { index_.reserve(expected); }
  void Add(Member member, std::u16string key) {
    auto [found, created] = index_.try_emplace(key, groups_.size());
    if (created) groups_.push_back({std::move(key), {}});
    // Each material is visited once, so it can never be in a group already.
    groups_[found->second].members.push_back(std::move(member));
  }
  const std::vector<NameGroup>& groups() const { return groups_; }

 private:
  std::vector<NameGroup> groups_;
  std::unordered_map<std::u16string, size_t> index_;
};

void Visit(host::Mtl* material, std::unordered_set<host::Mtl*>& visited, NameGroups& groups) {
  if (material == nullptr || !visited.insert(material).second) return;
  std::u16string name = material->GetName();
  // A nameless material is left alone, and so are its sub-materials.
  if (name.empty()) return;
  std::u16string key = SanitizeMaterialName(name);
  groups.Add({material, std::move(name)}, std::move(key));
  for (int i = 0; i < material->NumSubMtls(); ++i)
    Visit(material->GetSubMtl(i), visited, groups);
}

void Rename(const Member& member, const std::u16string& newName,
            std::vector<MtlRestoreEntry>& list) {
  list.push_back({member.material->GetHandle(), member.material, member.name});
  member.material->SetName(newName);
}

// "_%02d": _01 … _99, _100 …
std::u16string Suffix(size_t position) {
  std::string digits = std::to_string(position);
  if (digits.size() < 2) digits.insert(0, 1, '0');
  return u"_" + AsciiToWide(digits);
}

}  // namespace

std::u16string SanitizeMaterialName(std::u16string_view name) {
  std::u16string safe;
  safe.reserve(name.size());
  for (char16_t c : name) {
    char16_t kept = IsKept(c) ? c : u'_';
    if (kept == u'_' && !safe.empty() && safe.back() == u'_') continue;
    safe += kept;
  }
  TrimTrailingUnderscores(safe);
  if (safe.size() <= kMaxNameLength) return safe;
  safe.resize(kCutLength);
  TrimTrailingUnderscores(safe);
  return safe + u"_" + NameHash(name);
}

std::vector<MtlRestoreEntry> DeduplicateMaterialNames(host::Interface& scene) {
  host::TimeValue t = scene.GetTime();
  std::vector<host::INode*> nodes = ListSceneNodes(scene);
  std::unordered_set<host::Mtl*> visited(nodes.size());
  NameGroups groups(nodes.size());
  for (host::INode* node : nodes) {
    host::Object* object = node->EvalWorldState(t);
    if (object == nullptr || object->SuperClassID() != host::GEOMOBJECT_CLASS_ID) continue;
    Visit(node->GetMtl(), visited, groups);
  }

  std::vector<MtlRestoreEntry> list;
  for (const NameGroup& group : groups.groups()) {
    if (group.members.size() == 1) {
      const Member& only = group.members.front();
      if (only.name != group.key) Rename(only, group.key, list);
      continue;
    }
    for (size_t i = 0; i < group.members.size(); ++i)
      Rename(group.members[i], group.key + Suffix(i + 1), list);
  }
  return list;
}

int32_t RestoreMaterialNames(host::Interface& scene, const std::vector<MtlRestoreEntry>& list) {
  int32_t notRestored = 0;
  for (const MtlRestoreEntry& entry : list) {
    host::Mtl* material = nullptr;
    if (entry.handle != 0) {
      host::Animatable* found = scene.GetAnimByHandle(entry.handle);
      if (found != nullptr && found->SuperClassID() == host::MATERIAL_CLASS_ID) {
        material = static_cast<host::Mtl*>(found);
      }
    } else {
      material = entry.material;
    }
    if (material == nullptr) {
      ++notRestored;
      continue;
    }
    material->SetName(entry.previousName);
  }
  return notRestored;
}

}  // namespace orvane
