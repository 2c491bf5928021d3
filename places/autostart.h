// Whether the program starts with the desktop: a file in the user's own autostart directory.
#pragma once

#include <string>

namespace gromlit {

inline constexpr const char* kAutostartFile = "gromlit.desktop";

// Writes the desktop entry into `folder`, made where it is not there, or removes it. The entry
// starts `program`, an absolute path, with -path `directory` where that is not empty. A path with a
// control character is refused. False with the reason in *error.
bool TurnAutostartOn(const std::string& folder, const std::string& program,
                     const std::string& directory, std::string* error);
bool TurnAutostartOff(const std::string& folder, std::string* error);

// Whether the entry is there and not hidden.
bool IsAutostartOn(const std::string& folder);

// The same for the user's own folder and the launcher that belongs to the running program. The
// entry names the installation directory where it is not the usual one.
bool ChooseAutostart(bool on, const std::string& directory, std::string* error);
bool AutostartChosen();

}  // namespace gromlit
