#pragma once

#include <functional>
#include <memory>

#include "platform/Desktop.h"
#include "platform/Geometry.h"
#include "platform/Text.h"

struct TFont {
  UnicodeString Name = u"Tahoma";
  int CharHeight = 11;  ///< height of the characters without leading, in pixels at kDesignDpi
  bool Bold = false;

  bool operator==(const TFont&) const = default;
};

enum class TWindowKind {
  StatusForm,  ///< top level: no border, always on top, a task bar button of its own
  Panel,       ///< fills itself with the button face; outer bevel lowered, inner bevel raised, one pixel each
  Label,       ///< its text centred both ways, never wrapped: a new line begins at a carriage return
  TreeList,    ///< the ground of a TNativeTreeList, which fills it
};

/// What a window reports. Each is called from the message loop; errors that leave it go to the application's
/// default handling.
struct TWindowEvents {
  std::function<void()> OnClose;              ///< the user asks a form to close; the window stays
  std::function<void(int dpi)> OnDpiChanged;  ///< a form has come to a monitor of another scale
};

/// One window of the system, created hidden (children: shown with their form) and destroyed with this object.
/// It holds no behaviour: what it shows and when is decided by the control that owns it. The constructor
/// throws EError of kind System when the window cannot be created.
class TNativeWindow {
 public:
  /// `parent` must outlive the window; null for a form. `className` is what other programs see of a form.
  TNativeWindow(TWindowKind kind, TextView className, TNativeWindow* parent, TWindowEvents events = {});
  ~TNativeWindow();
  TNativeWindow(const TNativeWindow&) = delete;
  TNativeWindow& operator=(const TNativeWindow&) = delete;

  TWindowHandle Handle() const;

  /// In pixels: of the screen for a form, of the parent's client area for a child.
  void SetBounds(const TRect& bounds);
  void SetText(TextView text);
  /// The font that the window draws with; `dpi` also scales the bevels.
  void SetFont(const TFont& font, int dpi);

  /// Shows a form without taking the input focus: it asks for nothing, and the user types on in the host.
  void Show();
  /// Paints the window and its children before it returns.
  void Repaint();

 private:
  struct TImpl;
  std::unique_ptr<TImpl> fImpl;
};
