// From characters and recorded keys to synthetic key events.
//
// Everything goes through core key codes and modifier state bits: no input methods, no compose
// sequences. Bytes of 128 and above are never typed.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>

#include "core/gromlit.h"
#include "display/sent_input.h"

namespace gromlit {

inline constexpr int kCharacters = 256;

// Key code (0: no key gives the character) and modifier state for each character. Filled once at
// start-up; later changes of the keyboard map are not noticed.
extern uint8_t charTableKeycodes[kCharacters];
extern uint8_t charTableKeystates[kCharacters];

// Room that KeyStrokeToString may need, its NUL included.
inline constexpr int kKeyStrokeText = 128;

// Fills both tables: for each character the first state in the order 0..64, 64, 128 and within it
// the lowest key code (the server's highest key code is never tried) whose XLookupString gives
// exactly that one byte. One pass over states and key codes.
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
Window KeyTarget(Window kwin);

// Sends the stored key pairs of a HotKey or Menu command, at most kMaxKeys.
void SendKeyPairs(const InputPlace& place, const GromlitCmd* cmd);

// Types a text byte by byte; bytes without a key are skipped.
void TypeText(const InputPlace& place, const char* text, size_t length);

// Types the bytes of a regular file, in blocks; nothing, silently, when it cannot be opened.
void TypeFile(const InputPlace& place, const char* fname);

}  // namespace gromlit
