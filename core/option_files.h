// The options file: GromlitPath/options/default.user.
#pragma once

#include "core/gromlit.h"

namespace gromlit {

inline constexpr const char* optionDirectory = "options";
inline constexpr const char* defaultOptionFile = "default.user";
inline constexpr const char* GromlitOptionFileHeaderString = "GromlitOption";
inline constexpr const char* defaultURLcmd = "netscape %s";
inline constexpr const char* defaultSoundcmd = "play %s";

// Reads GromlitPath/options/`fname` into a new record; null, silently, when it is missing, too
// short or has a wrong header.
GromlitUserOptions* LoadUserOptions(const char* fname);

// Writes usr to GromlitPath/options/`fname` (safe saving: core/files.h). Returns 1; or 0 after
// reporting "Save Options" with the system error, which stays in errno; the old file is left as it
// was.
int SaveUserOptions(const GromlitUserOptions* usr, const char* fname);

// Stores the defaults into usr; temp1..temp4 and charspare2 are not touched.
void DefaultUserOptions(GromlitUserOptions* usr);

// Sets `user` from the options file, or from the defaults when there is no usable one (the file is
// not created). Returns user.
GromlitUserOptions* GetUserOptions();

// The button that is grabbed for these options: usr->button where it is 1..5, else 3 (0 would grab
// every button). The record keeps what it holds.
int EffectiveButton(const GromlitUserOptions* usr);

}  // namespace gromlit
