// The one home of the display connection and of everything made from it once, at start-up:
// colours, fonts, graphics contexts, cursors and atoms. All of it lives until the program ends.
#pragma once

#include <X11/Xlib.h>

#include "core/gromlit.h"

namespace gromlit {

extern Display* dpy;
extern int screen;     // default screen number
extern Window root;    // root window of that screen
extern Colormap cmap;  // its default colour map

// The size of the screen now, device pixels: what RandR made of it, which Xlib does not follow.
extern int screenwidth;
extern int screenheight;

// Colours with their allocated pixels. white and black carry the screen's own white and black.
extern XColor white;
extern XColor black;
extern XColor lgrey;
extern XColor grey;
extern XColor dgrey;
extern XColor blue;

// Fonts: id, metrics, and the height of a line (ascent + descent), logical pixels (display/scale.h;
// widths are device pixels, which TextWidth knows, toolkit/text.h).
inline constexpr const char* txtFontname = "fixed";
inline constexpr const char* buttonFontname = "-*-helvetica-medium-r-normal--12-*1";
inline constexpr const char* logoFontname = "-*-helvetica-bold-r-normal--18-*1";
extern Font txtFont;
extern Font labelFont;
extern Font logoFont;
extern XFontStruct* txtFontinfo;
extern XFontStruct* labelFontinfo;
extern XFontStruct* logoFontinfo;
extern int txtCharht;
extern int labelCharht;
extern int logoCharht;

// Graphics contexts on the root window, black on lgrey, in the label, logo and text font.
extern GC buttongc;
extern GC logogc;
extern GC txtgc;

extern Cursor xCursor;
extern Cursor ptCursor;
extern Cursor txtCursor;
extern Cursor targetCursor;
extern Cursor gromlitCursor;
extern Cursor handCursor;
extern Pixmap handcursorImage;
extern Pixmap handcursorMaskImage;

extern Atom wm_delete;
extern Atom wm_protocols;

// Opens the display (null: the environment's) and sets dpy, screen, root, cmap and the screen's
// size. Returns false when it cannot be opened.
bool OpenDisplay(const char* name);

// Waits until the server has done all that it was asked, unless it has answered the last request
// already.
void FinishRequests();

// ConfigureNotify handler of the root window, which also reports windows that are moved: takes the
// screen's size over. The one who selects the root window's events asks for StructureNotify.
void FollowScreenSize(void* obj, XEvent* event);

// The steps that follow, each to be called once, in this order; MakeResources (toolkit/resources.h)
// calls them all, behind the colours (display/palette.h). None reports an error. The fonts
// (display/fonts.h) come before the contexts.
void MakeHandCursor();
void MakeContexts();

// The cursors that come from the desktop's theme, whose files are read and for which the server is
// asked what it can: a few round trips, for windows that are not on the screen when the program has
// started.
void MakeCursors();

// Asks whether the server has the font for them, without waiting: MakeCursors takes the answer in.
void AskForCursorFont();

// Gives a window one of these, once it is made.
void UseCursor(Window window, const Cursor* cursor);

// Interns the window manager's atoms and others that are needed soon, in one round trip; makes them
// when nobody has done so yet, so that a window manager that starts later can close windows without
// ending the program.
void MakeAtoms();

}  // namespace gromlit
