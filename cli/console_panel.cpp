#include "cli/console_panel.h"

#include <iostream>
#include <nlohmann/json.hpp>

#include "base/wide_text.h"

namespace orvane::cli {

namespace {

constexpr int kBarWidth = 24;

const char* IconName(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::kWarning: return "warning";
    case MessageIcon::kError: return "error";
    case MessageIcon::kNone: break;
  }
  return "none";
}

const char* AnswerName(MessageAnswer answer) {
  switch (answer) {
    case MessageAnswer::kYes: return "yes";
    case MessageAnswer::kNo: return "no";
    case MessageAnswer::kOk: break;
  }
  return "ok";
}

}  // namespace

ConsolePanel::ConsolePanel(std::ostream& out, Options options)
    : out_(out), options_(std::move(options)) {}

void ConsolePanel::Event(const std::string& json) {
  if (options_.events == nullptr) return;
  if (options_.beforeEvent) options_.beforeEvent();
  *options_.events << json << "\n";
}

void ConsolePanel::Note(const std::string& kind, const std::string& name) {
  if (options_.events == nullptr) return;
  *options_.events << nlohmann::json{{"event", kind}, {"name", name}}.dump() << "\n";
}

std::u16string ConsolePanel::GetText(int controlId) {
  return texts_[controlId];
}

void ConsolePanel::SetText(int controlId, std::u16string_view text) {
  texts_[controlId] = text;
  // A trace is handed to support: the token never goes into it.
  std::string shown = controlId == control::kToken ? "(hidden)" : ToUtf8(text);
  Event(nlohmann::json{{"event", "text"}, {"control", controlId}, {"text", shown}}.dump());
  if (controlId == control::kStatusLine1) ShowStatus();
  if (controlId == control::kStatusLine2 && !text.empty()) {
    Finish();
    out_ << ToUtf8(text) << "\n";
  }
  if (controlId == control::kBalance && !text.empty()) {
    Finish();
    out_ << "Balance: " << ToUtf8(text) << "\n";
  }
}

bool ConsolePanel::IsChecked(int controlId) {
  return checked_[controlId];
}

void ConsolePanel::SetChecked(int controlId, bool checked) {
  checked_[controlId] = checked;
}

void ConsolePanel::Enable(int controlId, bool enabled) {
  Event(nlohmann::json{{"event", "enable"}, {"control", controlId}, {"enabled", enabled}}.dump());
}

void ConsolePanel::SetProgress(int percent) {
  percent_ = percent;
  Event(nlohmann::json{{"event", "progress"}, {"percent", percent}}.dump());
}

void ConsolePanel::StartTimer(int timerId, int) {
  Event(nlohmann::json{{"event", "timer"}, {"timer", timerId}, {"running", true}}.dump());
}

void ConsolePanel::StopTimer(int timerId) {
  Event(nlohmann::json{{"event", "timer"}, {"timer", timerId}, {"running", false}}.dump());
}

void ConsolePanel::ShowStatus() {
  const std::u16string& text = texts_[control::kStatusLine1];
  steps_.emplace_back(text, Clock::now());
  std::string percent = std::to_string(percent_) + "%";
  if (!options_.terminal) {
    out_ << std::string(4 - std::min<size_t>(4, percent.size()), ' ') << percent << "  "
         << ToUtf8(text) << "\n";
    return;
  }
  int filled = percent_ * kBarWidth / 100;
  out_ << "\r\x1b[2K[" << std::string(static_cast<size_t>(filled), '#')
       << std::string(static_cast<size_t>(kBarWidth - filled), ' ') << "] " << percent << "  "
       << ToUtf8(text) << std::flush;
  lineOpen_ = true;
}

void ConsolePanel::Finish() {
  if (!lineOpen_) return;
  out_ << "\n";
  lineOpen_ = false;
}

MessageAnswer ConsolePanel::ShowMessage(std::u16string_view title, std::u16string_view text,
                                        MessageIcon icon, MessageButtons buttons) {
  Finish();
  out_ << "\n[" << ToUtf8(title) << "]\n" << ToUtf8(text) << "\n";
  MessageAnswer answer = MessageAnswer::kOk;
  if (buttons == MessageButtons::kYesNo) {
    if (options_.answer) {
      answer = *options_.answer;
      out_ << "(answered " << AnswerName(answer) << " from the command line)\n";
    } else if (options_.in != nullptr) {
      out_ << "[y/N] " << std::flush;
      std::string reply;
      std::getline(*options_.in, reply);
      answer =
          reply == "y" || reply == "Y" || reply == "yes" ? MessageAnswer::kYes : MessageAnswer::kNo;
    } else {
      answer = MessageAnswer::kNo;
      out_ << "(answered no: nobody to ask; give --yes or --no)\n";
    }
  }
  out_ << "\n";
  Event(nlohmann::json{{"event", "box"},
                       {"title", ToUtf8(title)},
                       {"text", ToUtf8(text)},
                       {"icon", IconName(icon)},
                       {"buttons", buttons == MessageButtons::kYesNo ? "yes-no" : "ok"},
                       {"answer", AnswerName(answer)}}
            .dump());
  return answer;
}

std::vector<std::pair<std::u16string, double>> ConsolePanel::StepTimes() const {
  std::vector<std::pair<std::u16string, double>> times;
  for (size_t i = 0; i + 1 < steps_.size(); ++i) {
    std::chrono::duration<double> spent = steps_[i + 1].second - steps_[i].second;
    times.emplace_back(steps_[i].first, spent.count());
  }
  return times;
}

}  // namespace orvane::cli
