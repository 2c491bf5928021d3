// The release that an interaction waits for while it holds the pointer, and that may never come.
//
// A press is sometimes read late. By then its window may have gone from the screen and come back,
// as it does where a window manager is started again; with that the server ended the grab of the
// press, and the release went to whatever lay there. An interaction that takes the pointer for a
// press like that would keep it from everybody until somebody clicked. So while one holds the
// pointer, the event loop looks now and then whether any button is still down.
#pragma once

namespace gromlit {

// To be called with each grab for a button that is down: from now on, `lost` is called once when no
// button is down and no release has arrived. One interaction at a time; the later one counts.
void AwaitRelease(void (*lost)());

// To be called when the grab is given back.
void ForgetRelease();

// To be called when the pointer has been taken for something else, to which the release goes:
// whoever awaits it is told at once.
void ReleaseGoesElsewhere();

// How long the event loop may wait before it looks, milliseconds; -1 when nothing is awaited.
int ReleaseWait();

// Looks when that time is over: one round trip.
void LookForRelease();

}  // namespace gromlit
