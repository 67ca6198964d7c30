// The panel on a console: status lines printed as the send goes (redrawn in place on a
// terminal), message boxes printed with their title, Yes/No questions answered from the command
// line or asked on the terminal, and every event written to a trace file when one is asked for.
#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "pipeline/panel_view.h"

namespace orvane::cli {

class ConsolePanel final : public PanelView {
 public:
  struct Options {
    bool terminal = false;                // redraw one live status line
    std::optional<MessageAnswer> answer;  // for Yes/No questions; asked on `in` when unset
    std::istream* in = nullptr;           // null: nobody to ask, so questions are answered No
    std::ostream* events = nullptr;       // JSON lines, one per event
    // Called before each event is written, so events that happen outside the panel (scripts,
    // deleted files) land in order.
    std::function<void()> beforeEvent;
  };

  ConsolePanel(std::ostream& out, Options options);

  std::u16string GetText(int controlId) override;
  void SetText(int controlId, std::u16string_view text) override;
  bool IsChecked(int controlId) override;
  void SetChecked(int controlId, bool checked) override;
  void Enable(int controlId, bool enabled) override;
  void SetProgress(int percent) override;
  MessageAnswer ShowMessage(std::u16string_view title, std::u16string_view text, MessageIcon icon,
                            MessageButtons buttons) override;
  void StartTimer(int timerId, int intervalMs) override;
  void StopTimer(int timerId) override;
  void PumpMessages() override {}

  // An event that does not come from the panel itself ({"event": kind, "name": name}).
  void Note(const std::string& kind, const std::string& name);

  // Seconds spent at each progress step, in order: the status text and its duration.
  std::vector<std::pair<std::u16string, double>> StepTimes() const;
  // Ends the live line on a terminal.
  void Finish();

 private:
  void Event(const std::string& json);
  void ShowStatus();

  std::ostream& out_;
  Options options_;
  std::map<int, std::u16string> texts_;
  std::map<int, bool> checked_;
  int percent_ = 0;
  bool lineOpen_ = false;
  using Clock = std::chrono::steady_clock;
  std::vector<std::pair<std::u16string, Clock::time_point>> steps_;
};

}  // namespace orvane::cli
