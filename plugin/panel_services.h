// What the panel is given by whoever opens it: the host's scene and files, the HTTP stack, the
// service's addresses, and the desktop's own dialogs. Inside the host these are the host's; the
// panel harness gives an in-memory scene and answers the dialogs itself.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "pipeline/panel_view.h"
#include "pipeline/progress.h"

// Declared only: the plug-in's shell sees this header beside the SDK's, whose macros carry some
// of the host interface's names.
namespace orvane {
class HttpClient;
struct NodeTreeState;
namespace host {
class FileSystem;
class Interface;
}  // namespace host
}  // namespace orvane

namespace orvane::plugin {

// The desktop's own dialogs and shell; each is the system's unless replaced.
struct DesktopShell {
  std::function<MessageAnswer(std::u16string_view title, std::u16string_view text, MessageIcon icon,
                              MessageButtons buttons)>
      messageBox;
  std::function<std::optional<std::u16string>()> pickFolder;  // nullopt when cancelled
  std::function<void(std::u16string_view url)> openLink;
};

struct PanelServices {
  host::Interface* scene = nullptr;
  host::FileSystem* files = nullptr;
  HttpClient* http = nullptr;  // used on the panel's thread and by the Refresh worker at once
  NodeTreeState* nodeTrees = nullptr;
  std::u16string serviceUrl;
  std::u16string dashboardUrl;
  std::function<uint64_t()> tickCount;
  DesktopShell shell;
  // Called when a send is over, however it ended: the host adapter lets go of what it knew of
  // the scene, which the user may change before the next send.
  std::function<void()> sendEnded;
};

// "Export && Send" on the panel's thread.
void RunSendFromPanel(PanelView& panel, PanelState& state, PanelServices& services);

}  // namespace orvane::plugin
