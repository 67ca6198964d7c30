#include "pipeline/progress.h"

namespace orvane {

namespace {

constexpr std::u16string_view kFrames[] = {u"|", u"/", u"-", u"\\"};

std::u16string Framed(int frame, std::u16string_view text) {
  return std::u16string(kFrames[frame]) + u" " + std::u16string(text);
}

}  // namespace

std::u16string BlenderTargetOf(PanelView& panel) {
  return panel.IsChecked(control::kTargetA) ? u"5.1" : u"5.2";
}

void StopStatusSpinner(PanelView& panel, PanelState& state) {
  if (!state.statusSpinning) return;
  state.statusSpinning = false;
  panel.StopTimer(kStatusSpinnerTimer);
}

void SetProgress(PanelView& panel, PanelState& state, int percent, std::u16string_view text,
                 bool animate) {
  panel.SetProgress(percent);
  state.statusText = text;
  if (animate) {
    if (!state.statusSpinning) {
      state.statusSpinning = true;
      state.statusFrame = 0;
      panel.StartTimer(kStatusSpinnerTimer, kSpinnerIntervalMs);
    }
    panel.SetText(control::kStatusLine1, Framed(state.statusFrame, text));
  } else {
    StopStatusSpinner(panel, state);
    panel.SetText(control::kStatusLine1, text);
  }
  panel.PumpMessages();
}

void ShowError(PanelView& panel, PanelState& state, std::u16string_view message) {
  panel.SetProgress(100);
  state.statusText = u"Error.";
  StopStatusSpinner(panel, state);
  panel.SetText(control::kStatusLine1, state.statusText);
  panel.PumpMessages();
  panel.SetText(control::kStatusLine2, u"");
  panel.ShowMessage(u"Orvane Platform - Error", message, MessageIcon::kError, MessageButtons::kOk);
}

void StartBalanceSpinner(PanelView& panel, PanelState& state, std::u16string_view text) {
  state.balanceText = text;
  state.balanceFrame = 0;
  if (!state.balanceSpinning) {
    state.balanceSpinning = true;
    panel.StartTimer(kBalanceSpinnerTimer, kSpinnerIntervalMs);
  }
  panel.SetText(control::kBalance, Framed(state.balanceFrame, text));
}

void StopBalanceSpinner(PanelView& panel, PanelState& state) {
  state.balanceSpinning = false;
  panel.StopTimer(kBalanceSpinnerTimer);
}

void TimerTick(PanelView& panel, PanelState& state, int timerId) {
  if (timerId == kStatusSpinnerTimer) {
    state.statusFrame = (state.statusFrame + 1) % 4;
    panel.SetText(control::kStatusLine1, Framed(state.statusFrame, state.statusText));
  } else if (timerId == kBalanceSpinnerTimer) {
    state.balanceFrame = (state.balanceFrame + 1) % 4;
    panel.SetText(control::kBalance, Framed(state.balanceFrame, state.balanceText));
  }
}

}  // namespace orvane
