// orvane-panel: the panel outside the host, over a scene file. See docs/windows.md.
//
//   orvane-panel SCENE [--settings DIR] [--service URL] [--dashboard URL] [STEP ...]
//
// Steps: type:ID=TEXT  click:ID  answer:ok|yes|no  wait-refresh  hold:MS  print:ID  close
// Without steps the panel stays open for a person to use until it is closed.
#include "plugin/windows_api.h"

#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "base/wide_text.h"
#include "host/memory/scene_file.h"
#include "pipeline/panel_view.h"
#include "plugin/harness/panel_harness.h"
#include "plugin/module_state.h"
#include "service/service_config.h"
#include "service/winhttp_client.h"

namespace {

using orvane::FromUtf8;
using orvane::MessageAnswer;
using orvane::ToUtf8;
using orvane::plugin::PanelHarness;

constexpr char kUsage[] =
    "usage: orvane-panel SCENE [--settings DIR] [--service URL] [--dashboard URL] [STEP ...]\n"
    "steps: type:ID=TEXT click:ID answer:ok|yes|no wait-refresh hold:MS print:ID close\n";

void PrintNewMessages(PanelHarness& harness, size_t& shown) {
  for (; shown < harness.messages.size(); ++shown) {
    const auto& message = harness.messages[shown];
    std::cout << "message [" << ToUtf8(message.title) << "] " << ToUtf8(message.text) << "\n";
  }
}

// A control id or a duration: digits only.
std::optional<int> Number(const std::string& text) {
  if (text.empty() || text.size() > 9 ||
      text.find_first_not_of("0123456789") != std::string::npos) {
    return std::nullopt;
  }
  return std::stoi(text);
}

// One step; false when it cannot be done.
bool RunStep(PanelHarness& harness, const std::string& step) {
  size_t colon = step.find(':');
  std::string verb = step.substr(0, colon);
  std::string argument = colon == std::string::npos ? "" : step.substr(colon + 1);
  if (verb == "type") {
    size_t equals = argument.find('=');
    auto id = Number(argument.substr(0, equals));
    if (equals == std::string::npos || !id) return false;
    harness.Type(*id, FromUtf8(argument.substr(equals + 1)));
  } else if (verb == "click") {
    auto id = Number(argument);
    if (!id) return false;
    harness.Click(*id);
  } else if (verb == "answer") {
    if (argument != "ok" && argument != "yes" && argument != "no") return false;
    harness.answers.push_back(argument == "yes"  ? MessageAnswer::kYes
                              : argument == "no" ? MessageAnswer::kNo
                                                 : MessageAnswer::kOk);
  } else if (verb == "wait-refresh") {
    if (!harness.PumpUntil([&] { return harness.Enabled(orvane::control::kRefresh); })) {
      std::cerr << "orvane-panel: the balance check did not come back\n";
    }
  } else if (verb == "hold") {
    // The panel stays up and alive for a while, for a person or a screenshot.
    auto milliseconds = Number(argument);
    if (!milliseconds) return false;
    harness.PumpUntil([] { return false; }, *milliseconds);
  } else if (verb == "print") {
    auto id = Number(argument);
    if (!id) return false;
    std::cout << argument << ": " << ToUtf8(harness.Text(*id)) << "\n";
  } else if (verb == "close") {
    harness.CloseBox();
  } else {
    return false;
  }
  return true;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  std::vector<std::string> args;
  for (int i = 1; i < argc; ++i)
    args.push_back(ToUtf8(std::u16string(argv[i], argv[i] + wcslen(argv[i]))));
  if (args.empty() || args[0] == "--help") {
    std::cerr << kUsage;
    return args.empty() ? 2 : 0;
  }
  auto loaded = orvane::host::memory::LoadSceneFile(args[0]);
  if (!loaded.scene) {
    std::cerr << "orvane-panel: " << loaded.error << "\n";
    return 1;
  }
  std::u16string service(orvane::kServiceBaseUrl), dashboard(orvane::kDashboardUrl);
  std::vector<std::string> steps;
  for (size_t i = 1; i < args.size(); ++i) {
    bool hasValue = i + 1 < args.size();
    if (args[i] == "--settings" && hasValue) {
      loaded.scene->settingsDirectory = FromUtf8(args[++i]);
    } else if (args[i] == "--service" && hasValue) {
      service = FromUtf8(args[++i]);
    } else if (args[i] == "--dashboard" && hasValue) {
      dashboard = FromUtf8(args[++i]);
    } else if (args[i].starts_with("--")) {
      std::cerr << "orvane-panel: unknown option " << args[i] << "\n" << kUsage;
      return 2;
    } else {
      steps.push_back(args[i]);
    }
  }

  orvane::plugin::StartGdiplus();
  orvane::WinHttpClient http;
  int exitCode = 0;
  {
    PanelHarness harness(*loaded.scene, loaded.scene->files, http, service, dashboard);
    if (steps.empty()) harness.UseSystemDialogs();
    harness.Open();
    if (harness.Panel() == nullptr) {
      std::cerr << "orvane-panel: the panel could not be opened (error " << GetLastError() << ")\n";
      exitCode = 1;
    } else if (steps.empty()) {
      harness.PumpUntil([&] { return harness.Panel() == nullptr; }, INT_MAX);
    } else {
      size_t shown = 0;
      for (const std::string& step : steps) {
        if (!RunStep(harness, step)) {
          std::cerr << "orvane-panel: cannot do the step \"" << step << "\"\n" << kUsage;
          exitCode = 2;
          break;
        }
        PrintNewMessages(harness, shown);
      }
    }
  }
  orvane::plugin::StopGdiplus();
  return exitCode;
}
