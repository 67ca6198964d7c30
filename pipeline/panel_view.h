// What the send and the panel's logic need of a panel window. The Win32 panel and the console
// panel implement it; tests record it.
#pragma once

#include <string>
#include <string_view>

namespace orvane {

// Control ids of dialog template 101.
namespace control {
inline constexpr int kToken = 1003;
inline constexpr int kSave = 1004;
inline constexpr int kBalance = 1005;
inline constexpr int kRefresh = 1006;
inline constexpr int kExchangeFolder = 1007;
inline constexpr int kBrowse = 1008;
inline constexpr int kExportDisplacement = 1009;
inline constexpr int kBakeGeometry = 1010;
inline constexpr int kSend = 1011;
inline constexpr int kProgress = 1012;
inline constexpr int kStatusLine1 = 1013;
inline constexpr int kStatusLine2 = 1014;
inline constexpr int kTargetA = 1017;  // "A - Blender 5.1 and older"
inline constexpr int kTargetB = 1018;  // "B - Blender 5.2 and newer"
}  // namespace control

// Timer ids of the two spinners.
inline constexpr int kStatusSpinnerTimer = 1001;
inline constexpr int kBalanceSpinnerTimer = 1002;
inline constexpr int kSpinnerIntervalMs = 150;

enum class MessageIcon { kNone, kWarning, kError };
enum class MessageButtons { kOk, kYesNo };
enum class MessageAnswer { kOk, kYes, kNo };

class PanelView {
 public:
  virtual ~PanelView() = default;
  virtual std::u16string GetText(int controlId) = 0;
  virtual void SetText(int controlId, std::u16string_view text) = 0;
  virtual bool IsChecked(int controlId) = 0;
  virtual void SetChecked(int controlId, bool checked) = 0;
  virtual void Enable(int controlId, bool enabled) = 0;
  virtual void SetProgress(int percent) = 0;
  // A box owned by the panel; answers the button the user pressed.
  virtual MessageAnswer ShowMessage(std::u16string_view title, std::u16string_view text,
                                    MessageIcon icon, MessageButtons buttons) = 0;
  virtual void StartTimer(int timerId, int intervalMs) = 0;
  virtual void StopTimer(int timerId) = 0;
  // Handles every waiting window message, then returns.
  virtual void PumpMessages() = 0;
};

// "5.1" when radio A is checked, otherwise "5.2".
std::u16string BlenderTargetOf(PanelView& panel);

}  // namespace orvane
