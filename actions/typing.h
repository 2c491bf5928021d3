// The commands that type: stored keys, texts, and files of text.
//
// Each goes the way that the options choose (delivery.h).
#pragma once

#include "core/gromlit.h"
#include "display/sent_input.h"

namespace gromlit {

// Gives the application the stored key pairs of a HotKey or Menu command, at most kMaxKeys.
void SendKeyPairs(const InputPlace& place, const GromlitCmd* cmd);

// Types a text; by events that are sent: byte by byte, bytes without a key skipped.
void TypeText(const InputPlace& place, const char* text, size_t length);

// Types the bytes of a regular file, in blocks; nothing, silently, when it cannot be opened.
void TypeFile(const InputPlace& place, const char* fname);

}  // namespace gromlit
