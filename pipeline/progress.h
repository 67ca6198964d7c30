// Progress, errors and the two spinners, shown on a panel while the send runs on its thread.
#pragma once

#include <string>
#include <string_view>

#include "pipeline/panel_view.h"

namespace orvane {

// Panel-wide state of the spinners: one panel, one thread.
struct PanelState {
  bool statusSpinning = false;
  int statusFrame = 0;
  std::u16string statusText;
  bool balanceSpinning = false;
  int balanceFrame = 0;
  std::u16string balanceText;
};

// Progress bar, status line 1 (with a turning frame when animated), then a pass through the
// waiting window messages so the panel stays alive.
void SetProgress(PanelView& panel, PanelState& state, int percent, std::u16string_view text,
                 bool animate);

// Full bar, "Error.", the messages pumped, status line 2 emptied, and the message in an error box.
void ShowError(PanelView& panel, PanelState& state, std::u16string_view message);

// The balance line turns while the Refresh check runs on its worker.
void StartBalanceSpinner(PanelView& panel, PanelState& state, std::u16string_view text);
void StopBalanceSpinner(PanelView& panel, PanelState& state);
void StopStatusSpinner(PanelView& panel, PanelState& state);

// One tick of timer 1001 or 1002; other ids are ignored.
void TimerTick(PanelView& panel, PanelState& state, int timerId);

}  // namespace orvane
