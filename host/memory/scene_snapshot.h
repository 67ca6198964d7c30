// A copy of any host's scene, read only through the host interface, as an in-memory scene that
// writes as a scene file. Support replays a user's send from it on any machine.
#pragma once

#include <memory>

#include "host/interface.h"
#include "host/memory/memory_scene.h"

namespace orvane::host::memory {

// A snapshot holds everything the core can ask of the scene: settings, the node hierarchy,
// objects with their stacks, meshes and cameras, materials and maps with every parameter block,
// slot, curve and bitmap setting, and the file-resolution answers for every path the scene
// names.
//
// Ids are made from the order of discovery; handles are the host's. What only the host's
// behaviour can tell is not read: script replies (the send records those it got), the export's
// outcome, and values of types the core cannot read (a matrix parameter is written as the
// identity). Curves are read at the positions the core reads them. Objects are converted to
// meshes to be read, and the conversions are released: the host's scene is not changed.
class SceneSnapshot {
 public:
  // Copies the scene as it is now.
  explicit SceneSnapshot(Interface& host);
  ~SceneSnapshot();
  SceneSnapshot(const SceneSnapshot&) = delete;
  SceneSnapshot& operator=(const SceneSnapshot&) = delete;

  // Adds something the scene does not lead to, such as a map that the core finds by its handle.
  void Add(Animatable& found);
  // The copy; the snapshot is spent.
  std::unique_ptr<MemScene> Release();

 private:
  class Copier;
  std::unique_ptr<Copier> copier_;
};

std::unique_ptr<MemScene> SnapshotScene(Interface& host);

}  // namespace orvane::host::memory
