#include "core/choices.h"

#include <algorithm>
#include <iterator>

#include "core/option_files.h"

namespace gromlit {
namespace {

constexpr Choice kChoices[] = {
    {"Match by Shape",
     "A stroke runs the action whose symbol it looks most like, if it is like enough.",
     &GromlitUserOptions::temp3, kByShape, false, true},
    {"Real Input", "Keys and clicks arrive as if you had made them yourself, in every application.",
     &GromlitUserOptions::temp1, kRealInput, false, true},
    {"Draw with Locks On", "Gestures work while Caps Lock, Num Lock or Scroll Lock is on, too.",
     &GromlitUserOptions::temp2, kDrawWithLocks, true, true},
    {"Fall Back to Default",
     "A stroke that an application's plug-in does not know is tried in Default.",
     &GromlitUserOptions::temp2, kFallBack, true, true},
    {"Activate the Window First",
     "The window below the stroke gets the keyboard before the action runs.",
     &GromlitUserOptions::temp2, kActivateFirst, true, true},
    {"Open Web Pages Directly",
     "The browser goes to the page itself, and asks no web service for the way.",
     &GromlitUserOptions::temp2, kOpenDirectly, true, true},
    {"Menus and Fields as on Today's Desktops",
     "Menus stay open after a click, the wheel scrolls, fields select, copy and paste.",
     &GromlitUserOptions::temp4, kModernManners, false, true},
    {"Name the Action while Drawing",
     "A label at the top of the monitor tells what the stroke so far would do.",
     &GromlitUserOptions::temp2, kNameWhileDrawing, true, false},
};

}  // namespace

std::span<const Choice> Choices() {
  return kChoices;
}

bool IsOn(const GromlitUserOptions& options, const Choice& choice) {
  const int32_t field = options.*choice.field;
  return choice.bit ? (field & choice.value) != 0 : field == choice.value;
}

void TurnChoice(GromlitUserOptions* options, const Choice& choice, bool on) {
  int32_t* field = &(options->*choice.field);
  if (IsOn(*options, choice) == on) return;
  if (!choice.bit) {
    *field = on ? choice.value : 0;
  } else if (on) {
    *field |= choice.value;
  } else {
    *field &= ~choice.value;
  }
}

void ChooseRecommended(GromlitUserOptions* options) {
  for (const Choice& choice : kChoices) TurnChoice(options, choice, choice.recommended);
}

bool LacksRecommended(const GromlitUserOptions& options) {
  return std::any_of(std::begin(kChoices), std::end(kChoices), [&](const Choice& choice) {
    return choice.recommended && !IsOn(options, choice);
  });
}

int RecommendedChoices() {
  return static_cast<int>(std::count_if(std::begin(kChoices), std::end(kChoices),
                                        [](const Choice& choice) { return choice.recommended; }));
}

}  // namespace gromlit
