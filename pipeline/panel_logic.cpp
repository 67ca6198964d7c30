#include "pipeline/panel_logic.h"

#include "base/wide_text.h"

namespace orvane {

namespace {

constexpr std::u16string_view kTitle = u"Orvane Platform";

void Say(PanelView& panel, std::u16string_view text) {
  panel.ShowMessage(kTitle, text, MessageIcon::kNone, MessageButtons::kOk);
}

// An explicitly empty value reads as the default, like an absent one.
std::u16string ReadOr(SettingsStore& settings, std::u16string_view key,
                      std::u16string_view fallback) {
  std::u16string value = settings.Read(key);
  return value.empty() ? std::u16string(fallback) : value;
}

}  // namespace

std::u16string SettingsFilePath(std::u16string_view settingsFolder) {
  std::u16string path(settingsFolder);
  if (path.empty() || path.back() != u'\\') path += u'\\';
  return path + std::u16string(kSettingsFileName);
}

void LoadPanelSettings(PanelView& panel, SettingsStore& settings) {
  panel.SetText(kVersionControl, u"v" + std::u16string(kPanelVersion));
  panel.SetText(control::kToken, settings.Read(u"apiToken"));
  panel.SetText(control::kExchangeFolder, settings.Read(u"exchangeFolder"));
  // Only the exact lower-case "true" checks the box.
  panel.SetChecked(control::kExportDisplacement,
                   ReadOr(settings, u"exportDisplacement", u"false") == u"true");
  bool targetA = ReadOr(settings, u"blenderTarget", u"5.2") == u"5.1";
  panel.SetChecked(control::kTargetA, targetA);
  panel.SetChecked(control::kTargetB, !targetA);
}

void OnFolderEdited(PanelView& panel, SettingsStore& settings) {
  settings.Write(u"exchangeFolder", panel.GetText(control::kExchangeFolder));
}

void OnExportDisplacementClicked(PanelView& panel, SettingsStore& settings) {
  settings.Write(u"exportDisplacement",
                 panel.IsChecked(control::kExportDisplacement) ? u"true" : u"false");
}

void OnTargetClicked(PanelView& panel, SettingsStore& settings) {
  settings.Write(u"blenderTarget", BlenderTargetOf(panel));
}

void OnFolderPicked(PanelView& panel, SettingsStore& settings, std::u16string_view folder) {
  panel.SetText(control::kExchangeFolder, folder);
  settings.Write(u"exchangeFolder", folder);
}

void OnSave(PanelView& panel, SettingsStore& settings, std::u16string_view dashboardUrl) {
  std::u16string token = TrimWhitespace(panel.GetText(control::kToken));
  settings.Write(u"apiToken", token);
  Say(panel, token.empty() ? u"Token is empty - enter a token from " + std::u16string(dashboardUrl)
                           : u"Token saved.");
}

void OnRefresh(PanelView& panel, PanelState& state, std::u16string_view serviceUrl,
               const RefreshWorker& startWorker) {
  std::u16string token = TrimWhitespace(panel.GetText(control::kToken));
  if (token.empty()) {
    Say(panel, u"Enter an API token.");
    return;
  }
  panel.Enable(control::kRefresh, false);
  StartBalanceSpinner(panel, state, u"Checking...");
  startWorker(std::u16string(serviceUrl), std::move(token));
}

void OnRefreshResult(PanelView& panel, PanelState& state, const AccountStatus& status,
                     std::u16string_view dashboardUrl) {
  StopBalanceSpinner(panel, state);
  panel.Enable(control::kRefresh, true);
  if (status.ok) {
    panel.SetText(control::kBalance, BalanceText(status));
  } else if (status.error == u"invalid_token" || status.error == u"token_empty") {
    panel.SetText(control::kBalance, u"Invalid token");
    Say(panel, u"Invalid token.\nUpdate your token at " + std::u16string(dashboardUrl));
  } else {
    panel.SetText(control::kBalance, u"Error");
    Say(panel, u"Connection error:\n" + status.error);
  }
}

int LogoResourceForDpi(unsigned dpi) {
  if (dpi == 0) dpi = 96;
  return dpi >= 144 ? kLargeLogoResource : kLogoResource;
}

void OnClose(PanelView& panel, PanelState& state) {
  StopStatusSpinner(panel, state);
  if (state.balanceSpinning) StopBalanceSpinner(panel, state);
}

}  // namespace orvane
