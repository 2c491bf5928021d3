#include "app/preferences/news.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "app/windows/dialogs.h"
#include "core/choices.h"
#include "core/gromlit.h"

namespace gromlit {
namespace {

constexpr const char* kNewsText =
    "Gromlit has choices that are recommended, and some of them are off.\n"
    "To see them: Options, Preferences, and the button \"More...\".";

}  // namespace

void TellOfNews(bool busy) {
  if (busy) return;
  const std::string path = std::string(GromlitPath) + "/" + kNewsFile;
  struct stat info {};
  if (lstat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return;
  if (unlink(path.c_str()) == 0) ShowNotice("Recommended Choices", kNewsText);
}

}  // namespace gromlit
