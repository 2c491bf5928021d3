#include "app/preferences/choices.h"

#include "recognition/find_action.h"

namespace gromlit {
namespace {

constexpr Choice kChoices[] = {
    {"Match by Shape",
     "A stroke runs the action whose symbol it looks most like, if it is like enough.",
     &GromlitUserOptions::temp3, kByShape, false, true},
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

}  // namespace gromlit
