#include "actions/spare_keys.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <optional>
#include <vector>

#include "actions/character_keys.h"
#include "display/display.h"
#include "display/lock_modifiers.h"
#include "display/replies.h"
#include "display/x_handles.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

// Long enough for a busy application to have read the last key.
constexpr auto kKeep = std::chrono::seconds(2);

// On the root window, while anything is lent: pairs of key code and symbol.
constexpr const char* kLoans = "_GROMLIT_SPARE_KEYS";
constexpr long kMaxLoans = 2L * kKeyCodes;

// The question what is noted there, until it is answered.
std::optional<xcb_get_property_cookie_t> asked;

// Both levels: a letter with one symbol would have its capital on the other.
constexpr int kLevels = 2;

struct SpareKey {
  KeyCode code = 0;
  KeySym symbol = NoSymbol;  // what it is lent for
};

struct Spares {
  bool known = false;
  std::vector<SpareKey> keys;  // in the order of lending
  Clock::time_point pressed;
};

Spares& TheSpares() {
  static auto* const spares = new Spares;
  return *spares;
}

bool AnyLent() {
  return std::ranges::any_of(TheSpares().keys,
                             [](const SpareKey& key) { return key.symbol != NoSymbol; });
}

// What the server's keys mean, `width` symbols for each code from `first` on.
struct Meanings {
  int first = 0;
  int last = -1;
  int width = 0;
  XData<KeySym> symbols;

  bool Empty(int code) const {
    const KeySym* key = symbols.get() + ptrdiff_t{code - first} * width;
    return std::all_of(key, key + width, [](KeySym symbol) { return symbol == NoSymbol; });
  }
  bool Means(int code, KeySym symbol) const {
    return code >= first && code <= last && width > 0 &&
           symbols.get()[ptrdiff_t{code - first} * width] == symbol;
  }
};

Meanings ReadMeanings() {
  Meanings meanings;
  int last;
  XDisplayKeycodes(dpy, &meanings.first, &last);
  meanings.symbols.reset(XGetKeyboardMapping(dpy, static_cast<KeyCode>(meanings.first),
                                             last - meanings.first + 1, &meanings.width));
  if (meanings.symbols != nullptr) meanings.last = last;
  return meanings;
}

// The codes that mean nothing, those with most neighbours first: neighbours are lent by one
// request, and every request makes every program read the keyboard anew. Loans that still stand
// among them.
std::vector<SpareKey> FindSpareKeys(const std::vector<SpareKey>& loans) {
  const Meanings meanings = ReadMeanings();
  const std::bitset<kKeyCodes> modifiers = ReadModifierMap().any;
  std::array<KeySym, kKeyCodes> lent{};
  for (const SpareKey& loan : loans) {
    if (meanings.Means(loan.code, loan.symbol)) lent[loan.code] = loan.symbol;
  }
  std::vector<std::vector<SpareKey>> runs;
  for (int code = meanings.first; code <= meanings.last; code++) {
    const KeySym symbol = lent[static_cast<size_t>(code)];
    if (modifiers[static_cast<size_t>(code)] || (symbol == NoSymbol && !meanings.Empty(code))) {
      continue;
    }
    if (runs.empty() || runs.back().back().code != code - 1) runs.emplace_back();
    runs.back().push_back({static_cast<KeyCode>(code), symbol});
  }
  std::ranges::stable_sort(runs, [](const auto& a, const auto& b) { return a.size() > b.size(); });
  std::vector<SpareKey> keys;
  for (const auto& run : runs) keys.insert(keys.end(), run.begin(), run.end());
  return keys;
}

Spares& KnownSpares() {
  Spares& spares = TheSpares();
  if (!spares.known) spares.keys = FindSpareKeys(spares.keys);
  spares.known = true;
  return spares;
}

struct Change {
  int first;
  int count;
};

Bool IsOfChange(Display*, XEvent* event, XPointer change) {
  const auto* wanted = reinterpret_cast<const Change*>(change);
  const XMappingEvent& mapping = event->xmapping;
  return event->type == MappingNotify && mapping.request == MappingKeyboard &&
         mapping.first_keycode == wanted->first && mapping.count == wanted->count;
}

// Gives each code its symbol; neighbours share a request. Returns when all programs can read it.
void SetMeanings(std::vector<SpareKey> keys) {
  std::ranges::sort(keys, {}, &SpareKey::code);
  std::vector<Change> changes;
  for (size_t i = 0; i < keys.size();) {
    std::vector<KeySym> symbols;
    const int first = keys[i].code;
    do {
      symbols.insert(symbols.end(), kLevels, keys[i].symbol);
      i++;
    } while (i < keys.size() && keys[i].code == keys[i - 1].code + 1);
    const int count = static_cast<int>(symbols.size()) / kLevels;
    XChangeKeyboardMapping(dpy, first, kLevels, symbols.data(), count);
    changes.push_back({first, count});
  }
  XSync(dpy, False);
  XEvent event;
  for (Change& change : changes) {
    while (XCheckIfEvent(dpy, &event, IsOfChange, reinterpret_cast<XPointer>(&change))) {
    }
  }
}

Atom LoansProperty() {
  return XInternAtom(dpy, kLoans, False);
}

// Before the keys get their symbols, so that a program killed in between leaves a trace.
void RecordLoans() {
  std::vector<long> pairs;
  for (const SpareKey& key : TheSpares().keys) {
    if (key.symbol == NoSymbol) continue;
    pairs.push_back(key.code);
    pairs.push_back(static_cast<long>(key.symbol));
  }
  XChangeProperty(dpy, root, LoansProperty(), XA_CARDINAL, 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(pairs.data()),
                  static_cast<int>(pairs.size()));
}

SpareKey* FindLent(KeySym symbol) {
  auto& keys = TheSpares().keys;
  const auto found = std::ranges::find(keys, symbol, &SpareKey::symbol);
  return found == keys.end() ? nullptr : &*found;
}

// Takes back those that still mean what they were lent for.
void TakeBack(const std::vector<SpareKey>& loans) {
  const Meanings meanings = ReadMeanings();
  std::vector<SpareKey> cleared;
  for (const SpareKey& loan : loans) {
    if (loan.symbol == NoSymbol || !meanings.Means(loan.code, loan.symbol)) continue;
    cleared.push_back({loan.code, NoSymbol});
  }
  SetMeanings(cleared);
  XDeleteProperty(dpy, root, LoansProperty());
  XFlush(dpy);
}

}  // namespace

size_t LendKeys(std::span<const char32_t> text) {
  Spares& spares = KnownSpares();
  auto next = spares.keys.begin();
  std::vector<SpareKey> lent;
  size_t n = 0;
  for (; n < text.size(); n++) {
    const KeySym symbol = SymbolOfCharacter(text[n]);
    if (symbol == NoSymbol || KeyOfCharacter(text[n]).keycode != 0 || FindLent(symbol) != nullptr)
      continue;
    next = std::ranges::find(next, spares.keys.end(), KeySym{NoSymbol}, &SpareKey::symbol);
    if (next == spares.keys.end()) break;
    next->symbol = symbol;
    lent.push_back(*next);
  }
  if (!lent.empty()) {
    RecordLoans();
    SetMeanings(lent);
    NoteKeysPressed();
  }
  return n;
}

KeyCode LentKey(char32_t c) {
  const KeySym symbol = SymbolOfCharacter(c);
  const SpareKey* key = symbol != NoSymbol ? FindLent(symbol) : nullptr;
  return key != nullptr ? key->code : KeyCode{0};
}

size_t SpareKeys() {
  return KnownSpares().keys.size();
}

void NoteKeysPressed() {
  TheSpares().pressed = Clock::now();
}

int SpareKeysWait() {
  if (!AnyLent()) return -1;
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(TheSpares().pressed + kKeep - Clock::now());
  return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

void ReturnKeys() {
  if (!AnyLent()) return;
  std::vector<SpareKey>& keys = TheSpares().keys;
  TakeBack(keys);
  for (SpareKey& key : keys) key.symbol = NoSymbol;
}

void AskForLoans() {
  asked = xcb_get_property(XGetXCBConnection(dpy), 0, static_cast<xcb_window_t>(root),
                           static_cast<xcb_atom_t>(LoansProperty()), XA_CARDINAL, 0, kMaxLoans);
}

void ReturnKeysOfTheDead() {
  if (!asked) AskForLoans();
  const auto noted = AnswerTo(xcb_get_property_reply, *asked);
  asked.reset();
  if (noted == nullptr || noted->type != XA_CARDINAL || noted->format != 32) return;
  const std::span pairs(static_cast<const uint32_t*>(xcb_get_property_value(noted.get())),
                        noted->value_len);
  std::vector<SpareKey> loans;
  for (size_t i = 0; i + 1 < pairs.size(); i += 2) {
    if (pairs[i] < kKeyCodes) loans.push_back({static_cast<KeyCode>(pairs[i]), pairs[i + 1]});
  }
  TakeBack(loans);
}

void ForgetSpareKeys() {
  // What is lent stays noted: the change may have left it, and then it is still to be taken back.
  TheSpares().known = false;
}

}  // namespace gromlit
