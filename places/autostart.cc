#include "places/autostart.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "core/files.h"
#include "core/gromlit.h"
#include "core/printable.h"
#include "places/places.h"

namespace gromlit {
namespace {

constexpr size_t kMaxEntry = 65536;

std::string PathOf(const std::string& folder) {
  return folder + "/" + kAutostartFile;
}

bool Fail(const std::string& what, int error, std::string* why) {
  *why = Printable(what) + ": " + std::strerror(error);
  return false;
}

// A value of the type string: a backslash begins an escape.
std::string AsValue(std::string_view text) {
  std::string value;
  for (const char c : text) {
    if (c == '\\') value += '\\';
    value += c;
  }
  return value;
}

// A word of Exec: in quotes, in which four characters are escaped; "%" begins a field code. The
// escapes of a value come on top.
std::string AsWord(std::string_view text) {
  std::string word = "\"";
  for (const char c : text) {
    if (std::string_view("\"`$\\").find(c) != std::string_view::npos) word += '\\';
    if (c == '%') word += '%';
    word += c;
  }
  return AsValue(word + "\"");
}

bool HasControl(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; });
}

}  // namespace

bool TurnAutostartOn(const std::string& folder, const std::string& program,
                     const std::string& directory, std::string* error) {
  for (const std::string& path : {program, directory})
    if (HasControl(path)) return Fail(path, EINVAL, error);
  const std::string text =
      "[Desktop Entry]\nType=Application\nName=Gromlit\nComment=Mouse gestures\nExec=" +
      AsWord(program) + (directory.empty() ? "" : " -path " + AsWord(directory)) +
      "\nTryExec=" + AsValue(program) + "\nIcon=gromlit\nTerminal=false\nStartupNotify=false\n";
  if (!MakeDirectories(folder)) return Fail(folder, errno, error);
  const char* former = GromlitPath;
  GromlitPath = folder.c_str();  // where the temporary of the save goes
  RemoveStaleTemporaries();      // nobody else looks for them here
  const bool saved = SaveFile(PathOf(folder).c_str(), std::as_bytes(std::span(text)));
  const int why = errno;
  GromlitPath = former;
  return saved || Fail(PathOf(folder), why, error);
}

bool TurnAutostartOff(const std::string& folder, std::string* error) {
  const bool removed = RemoveFile(PathOf(folder).c_str()) || errno == ENOENT || errno == ENOTDIR;
  const int why = errno;
  const char* former = GromlitPath;
  GromlitPath = folder.c_str();
  RemoveStaleTemporaries();
  GromlitPath = former;
  return removed || Fail(PathOf(folder), why, error);
}

bool IsAutostartOn(const std::string& folder) {
  std::vector<std::byte> file;
  if (!ReadFile(PathOf(folder).c_str(), kMaxEntry, &file)) return false;
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  return text.find("\nHidden=true") == std::string_view::npos;
}

bool ChooseAutostart(bool on, const std::string& directory, std::string* error) {
  std::string folder;
  if (!FindAutostart(&folder, error)) return false;
  if (!on) return TurnAutostartOff(folder, error);
  const std::string launcher = FindCompanion("gromlit-session");
  if (launcher.empty()) {
    *error = "gromlit-session was not found";
    return false;
  }
  std::string own;
  std::string usual;
  std::string unknown;
  if (!FindDirectory(directory.c_str(), &own, error)) return false;
  if (FindUsualDirectory(&usual, &unknown) && own == usual) own.clear();
  return TurnAutostartOn(folder, launcher, own, error);
}

bool AutostartChosen() {
  std::string folder;
  std::string unknown;
  return FindAutostart(&folder, &unknown) && IsAutostartOn(folder);
}

}  // namespace gromlit
