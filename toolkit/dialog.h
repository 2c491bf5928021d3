// The dialog box: the logo banner with a title, message lines or an owner's widget, and one or two
// buttons. Dialogs are built once and then only shown and hidden; they are not modal.
//
// The window manager does not frame a dialog (override-redirect), so it is shown where PopUpDialog
// puts it and is closed by its buttons only. With today's manners it does: see dialog_hands.h.
#pragma once

#include <X11/Xlib.h>

#include "toolkit/dialog_record.h"

namespace gromlit {

inline constexpr const char* labelYes = "Yes";
inline constexpr const char* labelNo = "No";
inline constexpr const char* labelOK = "OK";
inline constexpr const char* labelCancel = "Cancel";

// Makes a dialog with two buttons, not mapped. A `wd` of 0 sizes it from `msgs`, which are kept by
// reference; otherwise wd and ht (pixels) are added to the size of an empty one. The title is cut
// to what the field holds, as it is in PopUpDialog.
XDialog* MakeDialogLabeled(const char* title, const char* const* msgs, void (*yesfn)(XDialog* dlog),
                           int wd, int ht, const char* ylabel, const char* nlabel);

// The same with "Yes" and "No".
XDialog* MakeDialog(const char* title, const char* const* msgs, void (*yesfn)(XDialog* dlog),
                    int wd, int ht);

// One button, "OK", which closes the dialog.
XDialog* MakeMsgDialog(const char* title, const char* const* msgs, int wd, int ht);

// Shows the dialog on top of everything, centred on root position (px, py) but kept on the screen;
// one that is larger than the screen ends at the screen's right or bottom edge. A dialog that is
// shown already moves and is drawn anew. With today's manners the keyboard stays where it is.
void PopUpDialog(XDialog* dlog, const char* title, int px, int py);

// The same, centred on the pointer, for what the user has asked for. One round trip. With today's
// manners it lies beside what it asks about, where there is room, and gets the keyboard.
void MousePopUpDialog(XDialog* dlog, const char* title);

// Hide the dialog. A yes-function ends with DialogYes when its work is done, and may be DialogYes.
void DialogYes(XDialog* dlog);
void DialogNo(XDialog* dlog);

// Resizes the dialog for a content area of width x height pixels below the banner, and moves the
// buttons with its corner.
void ResizeDialog(XDialog* dlog, int width, int height);

// Handlers; the drawing does not look at its event. A release on the dialog's own background gives
// the pointer back, whoever of the program's widgets holds it.
void DrawDialog(XDialog* dlog, XEvent* event = nullptr);
void DialogButtonUp(XDialog* dlog, XEvent* event);

}  // namespace gromlit
