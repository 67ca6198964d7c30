// Plays the host's part for the panel, for tests and demonstrations: an owner window, an
// in-memory scene with its settings folder, an HTTP stack, and the desktop's dialogs answered
// from a queue and recorded. Controls are used the way a user uses them: typing moves the
// focus in and out of an edit, buttons are clicked.
#pragma once

#include "plugin/windows_api.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "graph/node_tree.h"
#include "plugin/panel_services.h"

namespace orvane::plugin {

struct ShownMessage {
  std::u16string title, text;
  MessageIcon icon;
  MessageButtons buttons;
};

class PanelHarness {
 public:
  // The scene answers the settings folder; `http` serves both the send and the Refresh worker.
  PanelHarness(host::Interface& scene, host::FileSystem& files, HttpClient& http,
               std::u16string serviceUrl, std::u16string dashboardUrl);
  ~PanelHarness();
  PanelHarness(const PanelHarness&) = delete;
  PanelHarness& operator=(const PanelHarness&) = delete;

  // For a person at the panel: the system's own message boxes, folder picker and browser.
  void UseSystemDialogs() { services_.shell = {}; }

  // The host opening the utility (again), and leaving it.
  void Open();
  void LeaveUtility();
  // The panel's own close box.
  void CloseBox();
  HWND Panel() const;
  HWND Owner() const { return owner_; }

  void Type(int controlId, std::u16string_view text);
  void Click(int controlId);

  std::u16string Text(int controlId) const;
  bool Checked(int controlId) const;
  bool Enabled(int controlId) const;
  int Progress() const;

  // Handles window messages until `done` answers true or the time is up; false on time-out.
  bool PumpUntil(const std::function<bool()>& done, int timeoutMs = 20'000);

  // Message boxes are answered from this queue: OK when it is empty, No for a question.
  std::deque<MessageAnswer> answers;
  std::vector<ShownMessage> messages;
  // What the folder picker answers (nullopt: the user cancels) and the links opened.
  std::optional<std::u16string> folderToPick;
  std::vector<std::u16string> linksOpened;

 private:
  PanelServices services_;
  NodeTreeState nodeTrees_;
  HWND owner_ = nullptr;
};

}  // namespace orvane::plugin
