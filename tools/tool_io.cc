#include "tools/tool_io.h"

#include <cstdio>

#include "core/printable.h"

namespace gromlit {

int Complain(const std::string& name, const std::string& what) {
  std::fprintf(stderr, "gromlit-tool: %s: %s\n", Printable(name).c_str(), Printable(what).c_str());
  return kTrouble;
}

std::string InputName(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

void Write(const std::string& text) {
  // NOLINTNEXTLINE(cert-err33-c): main asks once, at the end, whether all has been written
  std::fwrite(text.data(), 1, text.size(), stdout);
}

int WarnOfDamage(const std::string& path, const DataFile& file) {
  for (const std::string& damage : file.damage) Complain(path, damage);
  return file.damage.empty() ? kSuccess : kTrouble;
}

bool ReadUsable(const std::string& path, Kind kind, const char* what, DataFile* file) {
  std::string error;
  if (!ReadDataFile(path.c_str(), file, &error)) {
    Complain(path, error);
    return false;
  }
  if (file->kind != kind) {
    Complain(path, what);
    return false;
  }
  WarnOfDamage(path, *file);
  return !file->unusable;
}

}  // namespace gromlit
