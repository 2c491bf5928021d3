// Which plug-in the main window shows.
#pragma once

#include "app/main_window/gromlit_app.h"
#include "core/gromlit.h"

namespace gromlit {

// Shows the plug-in of this class, its actions loaded on first use; the default plug-in when there
// is none. *updated (may be null) becomes 1 when another plug-in is shown than before, else it is
// left alone. Returns the plug-in's node; null when the class has no plug-in. Does not redraw the
// grid.
GromlitPluginList* UpdateGromlitApp(GromlitApp* gromlit, const char* classname, int* updated);

// To be called right before the request that takes a window of the program from the screen. The
// pointer is then on what was below, often another application, without having gone there;
// GromlitAppTrackEnter does not follow it. One round trip.
void KeepShownPlugin();

// Whether the pointer has come into a window because one of the program's went from above it, and
// not by moving: the same request did both; or, where a window manager takes its frame away later,
// the pointer is still where it was, or was within that frame until it went. REQUIRES: app is not
// null.
bool IsUncovering(const XCrossingEvent& crossing);

// UnmapNotify of a top-level window: when it is the frame that the pointer is still in, though the
// window inside it went before, what is below is not followed either. One round trip for that
// frame, none for others. REQUIRES: app is not null.
void NoteFrameGone(const XUnmapEvent& gone);

// How the rooms below show plug-ins in `app`; its button is the one given. They do nothing while
// there is no `app`.
PluginView MakePluginView(XButton* button);

}  // namespace gromlit
