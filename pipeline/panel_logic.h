// The panel's own logic, apart from any window system: its settings file, Save, Refresh and the
// Refresh result. The Win32 panel and the console panel call these from their handlers.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "pipeline/panel_view.h"
#include "pipeline/progress.h"
#include "service/account_status.h"

namespace orvane {

inline constexpr std::u16string_view kPanelVersion = u"3.41";
inline constexpr int kVersionControl = 1002;

// The settings file's section "Settings", key by key. Reading an absent key answers empty text.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  virtual std::u16string Read(std::u16string_view key) = 0;
  virtual void Write(std::u16string_view key, std::u16string_view value) = 0;
};

// The settings file path: the host's settings folder, a "\" unless it ends in one, the name.
std::u16string SettingsFilePath(std::u16string_view settingsFolder);
inline constexpr std::u16string_view kSettingsFileName = u"Quillbar.ini";

// Panel opening: version text, token and folder, the two options from the file.
void LoadPanelSettings(PanelView& panel, SettingsStore& settings);

// Handlers, each writing its key the moment its control changes.
void OnFolderEdited(PanelView& panel, SettingsStore& settings);
void OnExportDisplacementClicked(PanelView& panel, SettingsStore& settings);
void OnTargetClicked(PanelView& panel, SettingsStore& settings);
void OnFolderPicked(PanelView& panel, SettingsStore& settings, std::u16string_view folder);
void OnSave(PanelView& panel, SettingsStore& settings, std::u16string_view dashboardUrl);

// Starts the account check on a worker; the worker's answer comes back through OnRefreshResult
// on the panel's thread.
using RefreshWorker = std::function<void(std::u16string serviceUrl, std::u16string token)>;
void OnRefresh(PanelView& panel, PanelState& state, std::u16string_view serviceUrl,
               const RefreshWorker& startWorker);
void OnRefreshResult(PanelView& panel, PanelState& state, const AccountStatus& status,
                     std::u16string_view dashboardUrl);

// The logo image for the panel's screen: 96 DPI when the system answers 0, the large image from
// 144 DPI (150 % scaling) up.
inline constexpr int kLogoResource = 2001;       // 320 x 60
inline constexpr int kLargeLogoResource = 2002;  // 640 x 120
int LogoResourceForDpi(unsigned dpi);

// Closing: both spinners stop.
void OnClose(PanelView& panel, PanelState& state);

}  // namespace orvane
