// The panel view over the panel's dialog window.
#pragma once

#include "plugin/windows_api.h"

#include "pipeline/panel_view.h"
#include "plugin/panel_services.h"

namespace orvane::plugin {

class Win32PanelView final : public PanelView {
 public:
  Win32PanelView(HWND dialog, const DesktopShell& shell) : dialog_(dialog), shell_(shell) {}

  // Read through a 2,048-character buffer, as the panel always has.
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
  void PumpMessages() override;

 private:
  HWND dialog_;
  const DesktopShell& shell_;
};

// Handles every window message waiting for this thread, then returns.
void PumpWaitingMessages();

// The system's message box, owned by `owner`.
MessageAnswer SystemMessageBox(HWND owner, std::u16string_view title, std::u16string_view text,
                               MessageIcon icon, MessageButtons buttons);

}  // namespace orvane::plugin
