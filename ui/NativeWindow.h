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

enum class TWindowKind {
  StatusForm,  ///< top level: no border, always on top, a task bar button of its own
  Dialog,      ///< top level and owned: title bar, close box, a border that changes its size
  Panel,       ///< fills itself with the button face; outer bevel lowered, inner bevel raised, one pixel each
  Label,       ///< its text centred both ways, never wrapped: a new line begins at a carriage return
  Button,      ///< a push button with an image, a text, or both
  DefaultButton,  ///< the one that Enter presses where no other button has the input focus
  Edit,           ///< a line of text that the user types
  ProgressBar,    ///< its text centred over a bar
  TreeList,       ///< the ground of a TNativeTreeList, which fills it
};

/// Images of the buttons, drawn in the size that the scale wants.
enum class TButtonImage { ExpandAll, CollapseAll, Export };

/// What a window reports. Each is called from the message loop; errors that leave it go to the application's
/// default handling.
struct TWindowEvents {
  std::function<void()> OnClose;  ///< the user asks a form to close, Esc included; the window stays
  std::function<void(int dpi)> OnDpiChanged;           ///< a form has come to a monitor of another scale
  std::function<void(int width, int height)> OnSized;  ///< a form's client area has a new size, in pixels
  std::function<void()> OnClick;                       ///< a button is pressed, by whatever means
};

/// One window of the system, created hidden (children: shown with their form) and destroyed with this object.
/// It holds no behaviour: what it shows and when is decided by the control that owns it. The constructor
/// throws EError of kind System when the window cannot be created.
class TNativeWindow {
 public:
  /// `parent` is a child's parent, a dialog's owner, and outlives the window; null for a status form.
  /// `className` is what other programs see of a form.
  TNativeWindow(TWindowKind kind, TextView className, TNativeWindow* parent, TWindowEvents events = {});
  ~TNativeWindow();
  TNativeWindow(const TNativeWindow&) = delete;
  TNativeWindow& operator=(const TNativeWindow&) = delete;

  TWindowHandle Handle() const;

  /// A child's place, in pixels of its parent's client area.
  void SetBounds(const TRect& bounds);
  /// A form's place, in pixels of the screen; its size stays.
  void SetPosition(int left, int top);
  /// A form's size by its client area, in pixels, on a monitor with `dpi`; its place stays.
  void SetClientSize(int width, int height, int dpi);
  /// The user cannot make the client area of a form smaller than this.
  void SetLeastClientSize(int width, int height, int dpi);

  /// The title of a form, the text of a child. For a screen reader it is the window's name.
  void SetText(TextView text);
  /// As the user has changed it.
  UnicodeString Text() const;
  /// The font that the window draws with; `dpi` also scales bevels and images.
  void SetFont(const TFont& font, int dpi);
  void SetImage(TButtonImage image);
  /// A button without room for its text: the image alone is drawn, and the text shows as a tool tip.
  void SetTextHidden();
  /// The filled part of a progress bar, as fractions of its width. Painted with the next Repaint.
  void SetBar(double begin, double end);

  /// Puts a form on the screen. A status form does not take the input focus: it asks for nothing, and the
  /// user types on in the host.
  void Show();
  void Hide();
  /// A child that is not visible leaves its place empty.
  void SetVisible(bool visible);
  /// Gives a child the input focus.
  void Focus();
  /// Paints the window and its children before it returns.
  void Repaint();

  struct TImpl;  ///< the back end's own

 private:
  std::unique_ptr<TImpl> fImpl;
};
