#include "actions/delivery.h"

#include "actions/keystrokes.h"
#include "actions/real_input.h"
#include "core/option_files.h"

namespace gromlit {
namespace {

constexpr KeyWay kSentKeys = {true, SendStroke, SendText};
constexpr KeyWay kMadeKeys = {false, MakeStroke, MakeText};

}  // namespace

bool MakesClicks() {
  return DeliveryOf(user) == kRealInput && CanMakeInput();
}

void PrepareKeys() {
  if (MakesClicks()) PrepareInput();
}

const KeyWay& ChosenKeyWay() {
  return MakesClicks() ? kMadeKeys : kSentKeys;
}

}  // namespace gromlit
