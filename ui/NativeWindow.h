#pragma once

#include <functional>
#include <memory>

#include "platform/DesktopWindows.h"
#include "platform/Geometry.h"
#include "platform/Text.h"

struct TFont {
  UnicodeString Name = u"Tahoma";
  int CharHeight = 11;  ///< height of the characters without leading, in pixels at kDesignDpi
  bool Bold = false;

  bool operator==(const TFont&) const = default;
};

/// A window of the system, destroyed with this object. It decides nothing: what is shown and when is up to
/// the form or control that owns it. Constructors throw EError of kind System when the window cannot be
/// created. Errors that leave an event go to the application's default handling.
class TNativeWindow {
 public:
  TNativeWindow(const TNativeWindow&) = delete;
  TNativeWindow& operator=(const TNativeWindow&) = delete;

  TWindowHandle Handle() const;
  /// The title of a form, the text of a control. For a screen reader it is the window's name.
  void SetText(TextView text);
  /// Paints what has changed of the window and its children before it returns.
  void Repaint();

  struct TImpl;  ///< the back end's own

 protected:
  explicit TNativeWindow(std::unique_ptr<TImpl> impl);
  ~TNativeWindow();

  std::unique_ptr<TImpl> fImpl;
};

enum class TFormKind {
  Status,  ///< no border, always on top, a task bar button of its own; a click does not activate it
  Dialog,  ///< owned: title bar, close box, a border that changes its size
};

struct TFormEvents {
  std::function<void()> OnClose;  ///< the user asks the form to close, Esc included; the window stays
  /// The client area has this size in pixels, on a monitor with `dpi`; called after any change of either.
  std::function<void(int width, int height, int dpi)> OnSized;
};

/// A top-level window, created hidden.
class TNativeForm : public TNativeWindow {
 public:
  /// `className` is what other programs see; `owner` outlives the form, null for a status form.
  TNativeForm(TFormKind kind, TextView className, const TNativeForm* owner, TFormEvents events);

  /// In pixels of the screen; the size stays.
  void SetPosition(int left, int top);
  /// The size by its client area, in pixels; the place stays.
  void SetClientSize(int width, int height);
  /// The user cannot make the client area smaller than this; in pixels at kDesignDpi.
  void SetLeastClientSize(int width, int height);
  /// Gives the client area the same size on a monitor with `dpi`; the place stays.
  void ScaleTo(int dpi);

  /// Puts the form on the screen and paints it. A status form does not take the input focus: it asks for
  /// nothing, and the user types on in the host.
  void Show();
  void Hide();

  /// What the user reads when he signs out meanwhile; empty: nothing. It is the application's being busy that
  /// asks him to wait.
  void SetShutdownReason(TextView reason) const;
};

enum class TControlKind {
  Panel,   ///< fills itself with the button face; outer bevel lowered, inner bevel raised, one pixel each
  Label,   ///< its text centred both ways, never wrapped: a new line begins at a carriage return
  Edit,    ///< a line of text that the user types
  Ground,  ///< what a TNativeTreeList fills; hands it the input focus
};

/// A child window, shown with its form. The parent outlives it.
class TNativeControl : public TNativeWindow {
 public:
  TNativeControl(TControlKind kind, const TNativeWindow& parent);

  /// In pixels of the parent's client area.
  void SetBounds(const TRect& bounds);
  /// The font that the control draws with; `dpi` also scales bevels and images.
  void SetFont(const TFont& font, int dpi);
  /// A control that is not visible leaves its place empty.
  void SetVisible(bool visible);
  void Focus();
  /// As the user has changed it.
  UnicodeString Text() const;

 protected:
  using TNativeWindow::TNativeWindow;
};

enum class TButtonRole {
  Plain,
  Default,  ///< the one that Enter presses where no other button has the input focus; one for each form
};

/// A push button with an image, a text, or both.
class TNativeButton : public TNativeControl {
 public:
  TNativeButton(TButtonRole role, const TNativeWindow& parent, std::function<void()> onClick);

  /// A number of resources/Icons.h; drawn in the size that suits the scale.
  void SetImage(int icon);
  /// There is no room for the text, which has been set: the image alone is drawn, and the text is its tool
  /// tip.
  void SetTextHidden();
};

/// A progress bar with its text centred over it.
class TNativeBar : public TNativeControl {
 public:
  explicit TNativeBar(const TNativeWindow& parent);

  /// The filled part, as fractions of the width. Painted with the next Repaint. A part that does not begin at
  /// 0 tells a screen reader nothing: it only moves.
  void SetBar(double begin, double end);
};
