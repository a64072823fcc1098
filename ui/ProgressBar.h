#pragma once

#include "ui/Controls.h"

enum class TProgressTextStyle {
  Percent,  ///< the filled part and its percentage
  Text,     ///< a bar that moves to and fro, and the text
};

/// Shows how far a long piece of work is. It changes on the screen with Repaint only: the work keeps the
/// message loop from running, so nothing here waits for a timer.
class TProgressBar : public TControl {
 public:
  explicit TProgressBar(TForm& form);
  TNativeControl& Window() noexcept override { return fWindow; }

  void SetText(TextView text) { fText = text; }
  void SetMax(int max) { fMax = max; }
  void SetPosition(int position) { fPosition = position; }
  void SetTextStyle(TProgressTextStyle style) { fStyle = style; }
  /// Paints what is set and, with the style Text, where the bar is at this moment.
  void Repaint();

 private:
  UnicodeString fText;
  TProgressTextStyle fStyle = TProgressTextStyle::Text;
  int fMax = 100;
  int fPosition = 0;
  TNativeBar fWindow;
};
