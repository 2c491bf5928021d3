#include "tests/e2e/usage.h"

#include <X11/Xutil.h>
#include <X11/extensions/XRes.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "tests/support/files.h"

namespace gromlit::testing {
namespace {

namespace fs = std::filesystem;

int EntriesOf(const std::string& directory) {
  std::error_code error;
  int count = 0;
  for (fs::directory_iterator it(directory, error); !error && it != fs::directory_iterator();
       it.increment(error))
    count++;
  return count;
}

// Memory in kilobytes that the process has written to. Pages that it only read are its own as long
// as no other run of the program has them, which another test may. The sanitizer's own pages say
// nothing of the program.
long PrivateOf(const std::string& process) {
  if (ReadText(process + "/maps").find("libasan") != std::string::npos) return 0;
  std::ifstream rollup(process + "/smaps_rollup");
  long kb = 0;
  for (std::string line; std::getline(rollup, line);)
    if (std::sscanf(line.c_str(), "Private_Dirty: %ld", &kb) == 1) return kb;
  return 0;
}

int ChildrenIn(const std::string& process) {
  std::ifstream list(process + "/task/" + fs::path(process).filename().string() + "/children");
  int count = 0;
  for (pid_t child; list >> child;) count++;
  return count;
}

}  // namespace

int Usage::Resources() const {
  int sum = 0;
  for (const auto& [type, count] : resources) sum += count;
  return sum;
}

Usage UsageOf(pid_t pid, Display* display, XID client) {
  const std::string process = "/proc/" + std::to_string(pid);
  Usage usage;
  usage.private_kb = PrivateOf(process);
  usage.descriptors = EntriesOf(process + "/fd");
  usage.threads = EntriesOf(process + "/task");
  usage.children = ChildrenIn(process);
  int count = 0;
  XResType* types = nullptr;
  if (XResQueryClientResources(display, client, &count, &types) != 0) {
    for (int i = 0; i < count; i++) {
      char* name = XGetAtomName(display, types[i].resource_type);
      usage.resources[name != nullptr ? name : "?"] += static_cast<int>(types[i].count);
      if (name != nullptr) XFree(name);
    }
    if (types != nullptr) XFree(types);
  }
  unsigned long bytes = 0;
  if (XResQueryClientPixmapBytes(display, client, &bytes) != 0)
    usage.pixmap_bytes = static_cast<long>(bytes);
  return usage;
}

std::string Describe(const Usage& usage) {
  std::string text = "private " + std::to_string(usage.private_kb) + " kB, " +
                     std::to_string(usage.descriptors) + " descriptors, " +
                     std::to_string(usage.threads) + " threads, " + std::to_string(usage.children) +
                     " children, " + std::to_string(usage.Resources()) + " X resources (";
  const char* gap = "";
  for (const auto& [type, count] : usage.resources) {
    text += gap + type + " " + std::to_string(count);
    gap = ", ";
  }
  return text + "), pixmaps " + std::to_string(usage.pixmap_bytes) + " bytes";
}

}  // namespace gromlit::testing
