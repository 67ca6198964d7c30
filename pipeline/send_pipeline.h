// "Export && Send": check the token and the Exchange Folder, prepare the scene, write the job
// folder (FBX, textures, 1.json), submit the job and report on the panel. Whatever the send
// changes in the scene only for the export (material names, spline twins) is put back on every
// way out, an exception included.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "graph/node_tree.h"
#include "host/environment.h"
#include "host/file_system.h"
#include "host/interface.h"
#include "pipeline/panel_view.h"
#include "pipeline/progress.h"
#include "service/http.h"

namespace orvane {

// Told what support needs to replay a send: when the scene is as the export will see it (the
// host's own preparation scripts have run, the core's renames have not), and when the send is
// over, however it ended (`jobName` is empty when no job was begun).
class SendObserver {
 public:
  virtual ~SendObserver() = default;
  virtual void SceneReady() = 0;
  virtual void SendEnded(std::u16string_view jobName) noexcept = 0;
};

struct SendContext {
  host::Interface& scene;
  host::FileSystem& files;
  HttpClient& http;
  PanelView& panel;
  PanelState& state;
  NodeTreeState& nodeTrees;  // lives as long as the module
  std::u16string serviceUrl;
  std::u16string dashboardUrl;
  std::function<uint64_t()> tickCount;  // the computer's milliseconds since start
  host::EnvironmentLookup environment;
  // Between the Exchange Folder and the job name: "\" on Windows; off Windows the host file
  // system's own. Kept even when the folder text already ends in one.
  char16_t separator = u'\\';
  SendObserver* observer = nullptr;
};

void RunSendPipeline(SendContext& context);

// The scene name of the job: the file name without folder and extension, with characters that
// files cannot carry replaced by "_"; "untitled" when nothing is left.
std::u16string SceneNameFromFile(std::u16string_view fileName);

// The counter's lowest eight base-36 digits, least significant first.
std::u16string TickCode(uint64_t counter);

}  // namespace orvane
