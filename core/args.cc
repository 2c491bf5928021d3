#include "core/args.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

namespace gromlit {
namespace {

bool IsSpace(char c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// Steps to the next word of the line: *begin..*end. False when there is none.
bool NextWord(const char** begin, const char** end) {
  const char* p = *end;
  while (*p != '\0' && IsSpace(*p)) p++;
  *begin = p;
  while (*p != '\0' && !IsSpace(*p)) p++;
  *end = p;
  return *begin != *end;
}

}  // namespace

int ArgvSlots(const char* line) {
  int words = 0;
  for (const char *begin = line, *end = line; NextWord(&begin, &end);) words++;
  return words + 1;
}

int ParseArgs(const char* line, char** argv) {
  int count = 0;
  argv[0] = nullptr;
  for (const char *begin = line, *end = line; NextWord(&begin, &end);) {
    argv[count++] = strndup(begin, static_cast<size_t>(end - begin));
    argv[count] = nullptr;
  }
  return count;
}

}  // namespace gromlit
