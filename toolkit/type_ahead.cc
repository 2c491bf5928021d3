#include "toolkit/type_ahead.h"

namespace gromlit {
namespace {

constexpr uint32_t kPause = 1000;  // milliseconds after which a letter begins anew

// Not by the locale: what is typed and what is compared with it are bytes.
char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7f;
}

}  // namespace

bool TakeLetter(TypeAhead* ahead, const XKeyEvent& key, std::string_view bytes) {
  if (bytes.empty() || IsControl(bytes[0]) || (key.state & (ControlMask | Mod1Mask)) != 0) {
    return false;
  }
  const auto now = static_cast<uint32_t>(key.time);
  // Server times are 32 bits and wrap; so does their difference.
  if (now - ahead->last > kPause) ahead->typed.clear();
  if (ahead->typed.empty() && bytes[0] == ' ') return false;
  ahead->last = now;
  for (const char c : bytes) ahead->typed += Lower(c);
  return true;
}

bool BeginsWithTyped(const TypeAhead& ahead, std::string_view label) {
  if (ahead.typed.empty() || label.size() < ahead.typed.size()) return false;
  for (size_t i = 0; i < ahead.typed.size(); i++) {
    if (Lower(label[i]) != ahead.typed[i]) return false;
  }
  return true;
}

}  // namespace gromlit
