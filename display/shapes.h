// Windows of other shapes than a rectangle: what the pointer goes through, what is cut out.
//
// Asked for by hand and not through the extension's library, which would ask the server for more
// than is needed, one question after the other, when it is first used.
#pragma once

#include <X11/Xlib.h>

namespace gromlit {

// The two steps in which the server is asked what it can, without waiting: the second is taken when
// the first has been answered, else it waits. Where they are left out, the first use below waits.
void AskForShapes();
void AskForShapesVersion();

// Whether what the pointer goes through can be set (version 1.1 of the shape extension). The
// functions below do nothing where it cannot.
bool HasInputShapes();

// Lets the pointer through a window, for good.
void LetPointerThrough(Window window);

// The seen part of a window becomes a rectangle of it, loses one, or is the whole window again.
void ShowPart(Window window, const XRectangle& part);
void CutOut(Window window, const XRectangle& hole);
void ShowWhole(Window window);

}  // namespace gromlit
