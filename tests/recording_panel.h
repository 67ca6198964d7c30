// A panel that records what the send and the panel logic do to it, in order, and answers
// message boxes from a script.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "base/wide_text.h"
#include "pipeline/panel_view.h"

namespace orvane::testing {

class RecordingPanel final : public PanelView {
 public:
  std::map<int, std::u16string> texts;
  std::map<int, bool> checked;
  std::map<int, bool> enabled;
  std::deque<MessageAnswer> answers;  // for Yes/No boxes, in order; "No" when none is left
  std::vector<std::string> events;
  int progress = 0;

  std::u16string GetText(int id) override { return texts[id]; }
  void SetText(int id, std::u16string_view text) override {
    texts[id] = text;
    events.push_back("text " + std::to_string(id) + " " + ToUtf8(text));
  }
  bool IsChecked(int id) override { return checked[id]; }
  void SetChecked(int id, bool value) override { checked[id] = value; }
  void Enable(int id, bool value) override {
    enabled[id] = value;
    events.push_back("enable " + std::to_string(id) + (value ? " on" : " off"));
  }
  void SetProgress(int percent) override {
    progress = percent;
    events.push_back("progress " + std::to_string(percent));
  }
  MessageAnswer ShowMessage(std::u16string_view title, std::u16string_view text, MessageIcon icon,
                            MessageButtons buttons) override {
    MessageAnswer answer = MessageAnswer::kOk;
    if (buttons == MessageButtons::kYesNo) {
      answer = answers.empty() ? MessageAnswer::kNo : answers.front();
      if (!answers.empty()) answers.pop_front();
    }
    const char* iconName = icon == MessageIcon::kError     ? "error"
                           : icon == MessageIcon::kWarning ? "warning"
                                                           : "none";
    events.push_back("box [" + ToUtf8(title) + "] " + ToUtf8(text) + " (" + iconName + ") -> " +
                     (answer == MessageAnswer::kYes  ? "yes"
                      : answer == MessageAnswer::kNo ? "no"
                                                     : "ok"));
    return answer;
  }
  void StartTimer(int id, int) override {
    events.push_back("timer " + std::to_string(id) + " start");
  }
  void StopTimer(int id) override { events.push_back("timer " + std::to_string(id) + " stop"); }
  void PumpMessages() override {}

  // The events whose text starts with one of the prefixes.
  std::vector<std::string> Only(std::initializer_list<std::string_view> prefixes) const {
    std::vector<std::string> kept;
    for (const std::string& event : events) {
      for (std::string_view prefix : prefixes) {
        if (event.starts_with(prefix)) {
          kept.push_back(event);
          break;
        }
      }
    }
    return kept;
  }
};

}  // namespace orvane::testing
