#include "launcher/first_options.h"

#include <string>

#include "core/choices.h"
#include "core/option_files.h"
#include "core/strings.h"
#include "places/places.h"

namespace gromlit {
namespace {

constexpr const char* kBrowser = "xdg-open";
constexpr const char* kPlayers[] = {"pw-play", "paplay", "aplay", "play"};

}  // namespace

GromlitUserOptions FirstOptions() {
  GromlitUserOptions options{};
  DefaultUserOptions(&options);
  if (!FindInPath(kBrowser).empty()) CopyText(options.urlcmd, std::string(kBrowser) + " %s");
  for (const char* player : kPlayers) {
    if (FindInPath(player).empty()) continue;
    CopyText(options.sndcmd, std::string(player) + " %s");
    break;
  }
  ChooseRecommended(&options);
  return options;
}

}  // namespace gromlit
