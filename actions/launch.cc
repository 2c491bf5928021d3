#include "actions/launch.h"

#include <string_view>

#include "actions/child.h"
#include "core/gromlit.h"
#include "core/strings.h"

namespace gromlit {

#define GROMLIT_WEB "http://" GROMLIT_WEB_HOST

const char* const GromlitForumURLprefix =
    GROMLIT_WEB "/s.smart?x=0&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&c=";
const char* const GromlitRedirectURLprefix =
    GROMLIT_WEB "/s.smart?x=2&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&web=";
const char* const GromlitDownloadURLprefix =
    GROMLIT_WEB "/s.smart?x=1&d=1&s=5&sv=5&sl=1&pl=1&ol=1&o=0&sva=1&svb=2&c=";
const char* const GromlitUploadURLprefix = GROMLIT_WEB "/upload/plugin?";

pid_t PlaySoundFile(const char* name) {
  const std::string line = ExpandCommand(FieldText(user->sndcmd), name);
  return StartCommandLine(line.c_str(), "Error in Sound Command");
}

pid_t LaunchBrowserURL(const char* cmdurl) {
  std::string url = cmdurl;
  if (url.find(':') == std::string::npos) url.insert(0, "http://");
  const std::string line = ExpandCommand(FieldText(user->urlcmd), url);
  return StartCommandLine(line.c_str(), "Error in Website Command");
}

std::string EncodeForAddress(std::string_view text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  constexpr std::string_view kEncoded = " \"'`%\x7f";
  std::string encoded;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= ' ' && kEncoded.find(c) == kEncoded.npos) {
      encoded += c;
    } else {
      encoded += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return encoded;
}

pid_t LaunchGromlitFileURL(const char* path) {
  const std::string url = "file:" + EncodeForAddress(GromlitPath) + "/" + path;
  return LaunchBrowserURL(url.c_str());
}

}  // namespace gromlit
