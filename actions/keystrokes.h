// From characters and recorded keys to synthetic key events.
//
// Everything goes through core key codes and modifier state bits: no input methods, no compose
// sequences. Bytes of 128 and above are never typed by events that are sent.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>
#include <string_view>

#include "core/gromlit.h"
#include "display/sent_input.h"

namespace gromlit {

inline constexpr int kCharacters = 256;

// Key code (0: no key gives the character) and modifier state for each character.
extern uint8_t charTableKeycodes[kCharacters];
extern uint8_t charTableKeystates[kCharacters];

// Room that KeyStrokeToString may need, its NUL included.
inline constexpr int kKeyStrokeText = 128;

// Fills both tables, at start-up and when the keyboard has changed: for each character the first
// state in the order 0..64, 64, 128 and within it the lowest key code (the server's highest key
// code is never tried) whose XLookupString gives exactly that one byte. One pass over states and
// key codes, without the states that cannot differ from a lower one for the key.
void BuildCharToKeycode();

// Looks a character up, taken as a signed byte; bytes of 128 and above have no key. Stores key code
// and state and returns the key code, 0 when there is none.
int CharToKeycode(int ch, int* keycode, int* keystate);

// Writes the text of a key stroke, such as "Control-Shift-a", into buf (kKeyStrokeText bytes): the
// state bits in the order Control, Mod2..Mod5, Alt (Mod1), Shift, then the name of the key's
// unshifted symbol. Empty when the key has no name. Returns buf.
char* KeyStrokeToString(char* buf, int keycode, int keystate);

// Sends one key press and one release to win with the given state; positions in pixels.
void SendHotKey(Window win, int winx, int winy, int keycode, int keystate, int rootx, int rooty);

// The window that gets the keys of a command: the input focus when it is a real window, else kwin.
Window KeyTarget(Window focus, Window kwin);

// The way of keys that are sent as events (delivery.h).
void SendStroke(const InputPlace& place, int keycode, int keystate);
size_t SendText(const InputPlace& place, std::string_view text, bool more);

}  // namespace gromlit
