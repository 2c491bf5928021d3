// Keys that the server makes, as if the user had pressed them on the keyboard.
//
// They reach every program, also those that ignore what another program sends, but they meet what
// the user holds down and has locked. So while an action types:
//   - modifiers that the user holds are let go, and pressed again after it where the user still
//     holds them. Who still does is known from the events of the devices themselves, which are
//     listened to for as long as the action runs. While another client has frozen the keyboard
//     nobody knows; then they stay up.
//   - Caps and Num Lock are out of force for the keys that obey them, and the first layout of the
//     keyboard is in force. What was locked comes back after it.
//
// INV-REAL-1: no key is down for the program when its requests leave for the server: press and
// release, with their modifiers, go in one piece. So none stays down, whoever dies.
#pragma once

#include <string_view>

#include "display/sent_input.h"

namespace gromlit {

// Whether the server can; if it cannot, says so on standard error the first time.
bool CanMakeInput();

// Asks for what a first key needs, so that its stroke does not wait: a dozen round trips the first
// time, a few when the keyboard has changed, else none.
void PrepareInput();

// Presses and releases a key with the modifiers (and locks) of keystate, state bits. Nothing
// happens for a key code that the server does not have.
void MakeStroke(const InputPlace& place, int keycode, int keystate);

// Types a text: UTF-8 where it is valid, else each byte a character of Latin-1. Characters that are
// on no key are typed with lent key codes (spare_keys.h), and where these do not suffice, after a
// pause that leaves applications time to read what was typed before. With `more` the text goes on:
// a character that is cut at its end is left. Returns the number of bytes that it took.
size_t MakeText(const InputPlace& place, std::string_view text, bool more);

// After an action: gives back modifiers, locks and layout. Nothing happens when no key was made.
void FinishInput();

// Gives back everything at once, lent key codes, too: before the program ends. The user's locks and
// keys are as the user left them after it.
void ReleaseEverything();

}  // namespace gromlit
