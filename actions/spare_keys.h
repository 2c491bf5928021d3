// Key codes that the keyboard does not use, lent to characters that are on no key.
//
// A program that gets a key event looks at the keyboard when it comes to read the event, which may
// be long after the key was pressed. So each character has a code of its own, all that a text needs
// are lent before its first key, and they are taken back only some time after the last. What the
// server tells of these changes is swallowed here: nothing else that is known of the keys changes.
#pragma once

#include <X11/Xlib.h>

#include <span>

namespace gromlit {

// Lends codes to the characters of a text that are on no key, from its beginning as far as the
// codes go. Returns how many characters of the text can be typed now: all, or those before the
// first that got no code. Characters that can never be typed count, but have no code.
size_t LendKeys(std::span<const char32_t> text);

// The code that is lent to a character, 0 when none is.
KeyCode LentKey(char32_t c);

// How many codes there are in all.
size_t SpareKeys();

// Notes that keys were pressed now: what is lent stays so for two seconds more.
void NoteKeysPressed();

// How long until ReturnKeys is due, milliseconds; 0 when it is, -1 when nothing is lent.
int SpareKeysWait();

// Takes all codes back. Nothing happens when none is lent; else two round trips.
void ReturnKeys();

// Takes back what a run that was killed had lent. Once, when no other instance can be at work.
void ReturnKeysOfTheDead();

// Asks what that may be without waiting for the answer, which ReturnKeysOfTheDead takes in.
void AskForLoans();

// To be called when the keyboard was changed by another client: the codes may be gone.
void ForgetSpareKeys();

}  // namespace gromlit
