// The options file: GromlitPath/options/default.user.
#pragma once

#include "core/gromlit.h"
#include "core/option_fields.h"

namespace gromlit {

inline constexpr const char* optionDirectory = "options";
inline constexpr const char* defaultOptionFile = "default.user";
inline constexpr const char* GromlitOptionFileHeaderString = "GromlitOption";

// Reads GromlitPath/options/`fname` into a new record; null, silently, when it is missing, too
// short or has a wrong header.
GromlitUserOptions* LoadUserOptions(const char* fname);

// Writes usr to GromlitPath/options/`fname` (safe saving: core/files.h). Returns 1; or 0 after
// reporting "Save Options" with the system error, which stays in errno; the old file is left as it
// was.
int SaveUserOptions(const GromlitUserOptions* usr, const char* fname);

// Stores the defaults into usr; the reserved fields, which have none, are not touched.
void DefaultUserOptions(GromlitUserOptions* usr);

// Sets `user` from the options file, or from the defaults when there is no usable one (the file is
// not created). Returns user.
GromlitUserOptions* GetUserOptions();

// What a user may choose beyond the behaviour of a run without an options file, kept in reserved
// fields. A value that is not listed acts as 0 and an unknown bit does nothing; both are saved as
// they were read, so that a file of a later version survives an earlier one. Without a record
// nothing is chosen.

// `temp1`: how keys and clicks reach an application.
enum Delivery : int32_t {
  kSentEvents = 0,  // sent to its window; some programs ignore what another program sends
  kRealInput = 1,   // made by the server's XTEST extension, as if the user's own
  kDeliveries,      // how many there are
};
Delivery DeliveryOf(const GromlitUserOptions* usr);

// `temp2`: bits.
enum Behaviour : int32_t {
  kDrawWithLocks = 1,      // strokes are drawn with Caps, Num or Scroll Lock on, too
  kFallBack = 2,           // what an application's own plug-in does not know is tried in Default
  kActivateFirst = 4,      // the window under the stroke gets the focus before the action
  kOpenDirectly = 8,       // web pages are opened without the web service in between
  kNameWhileDrawing = 16,  // a label names the action that the stroke so far would run
};
bool Chosen(const GromlitUserOptions* usr, Behaviour bit);

// `temp3`: how a stroke is compared with symbols.
enum MatchingWay : int32_t {
  kBySignature = 0,
  kByShape = 1,
  kMatchingWays,  // how many there are
};
MatchingWay MatchingWayOf(const GromlitUserOptions* usr);

// `temp4`: how windows answer to hands.
enum WindowManners : int32_t {
  kPlainManners = 0,
  kModernManners = 1,
};
WindowManners MannersOf(const GromlitUserOptions* usr);

// The button that is grabbed for these options: usr->button where it is 1..5, else 3 (0 would grab
// every button). The record keeps what it holds.
int EffectiveButton(const GromlitUserOptions* usr);

}  // namespace gromlit
