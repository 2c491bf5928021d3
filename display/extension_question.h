// A question to an extension of the server, asked by its bare request.
#pragma once

#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <cstdint>
#include <span>

#include "display/replies.h"

namespace gromlit {

struct ExtensionQuestion {
  unsigned sequence = 0;  // 0: not asked
};

// Whether the server has the extension. The first call for it waits, unless
// xcb_prefetch_extension_data has been answered.
bool HasExtension(xcb_extension_t* extension);

// Asks. `request` is the whole request, its first four bytes left free. REQUIRES: the server has
// the extension.
ExtensionQuestion AskExtension(xcb_extension_t* extension, uint8_t opcode,
                               std::span<uint8_t> request);

// The answer, of at least 32 bytes; null where it was an error or nothing was asked.
Reply<uint8_t> AnswerOf(ExtensionQuestion question);

}  // namespace gromlit
