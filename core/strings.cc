#include "core/strings.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core/letters.h"

namespace gromlit {

size_t StrLength(const char* s) {
  return std::strlen(s);
}

int StrCmp(const char* a, const char* b) {
  return std::strcmp(a, b);
}

char* StrCopy(char* dst, const char* src) {
  // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.strcpy): the caller has made room
  return std::strcpy(dst, src);
}

char* StrAppend(char* dst, const char* src) {
  // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.strcpy): the caller has made room
  return std::strcat(dst, src);
}

char* StrDup(const char* s) {
  return s == nullptr ? nullptr : strdup(s);
}

char* MaxStrCopy(const char* s, int size) {
  const std::string_view text = s;
  const auto room = static_cast<size_t>(size);
  if (text.size() <= room - 3) return StrDup(s);
  const size_t kept = LetterStart(text, room - 4);
  char* cut = static_cast<char*>(std::malloc(room));
  if (cut == nullptr) return nullptr;
  std::copy_n(s, kept, cut);
  StrCopy(cut + kept, "...");
  return cut;
}

void CopyText(std::span<char> dst, std::string_view src) {
  const size_t n = std::min(src.size(), dst.size() - 1);
  // The text may lie in dst itself, as when a field is cut in place.
  if (n != 0) std::memmove(dst.data(), src.data(), n);
  std::fill(dst.begin() + static_cast<std::ptrdiff_t>(n), dst.end(), '\0');
}

std::string_view FieldText(std::span<const char> field) {
  return {field.data(), strnlen(field.data(), field.size() - 1)};
}

int SortStrCmp(const void* a, const void* b) {
  return std::strcmp(*static_cast<const char* const*>(a), *static_cast<const char* const*>(b));
}

}  // namespace gromlit
