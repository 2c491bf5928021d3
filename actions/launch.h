// The outside programs that the user chose: sound player and browser.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace gromlit {

// "http://", the host of the web service, then path and query of each service.
extern const char* const GromlitForumURLprefix;
extern const char* const GromlitRedirectURLprefix;
extern const char* const GromlitDownloadURLprefix;
extern const char* const GromlitUploadURLprefix;

// Starts the sound command for a file. Returns the child's process id, or -1.
pid_t PlaySoundFile(const char* name);

// Starts the browser command; a URL without any ":" gets "http://" in front. Returns the child's
// process id, or -1.
pid_t LaunchBrowserURL(const char* cmdurl);

// A text as part of an address that stays one word of a command line: blanks, quotes, control
// characters and "%" as %XX. What a window says of itself must not add options to the browser.
std::string EncodeForAddress(std::string_view text);

// Opens a file below the installation directory in the browser, the directory's name encoded.
// Returns as LaunchBrowserURL.
pid_t LaunchGromlitFileURL(const char* path);

}  // namespace gromlit
