#include "actions/delivery.h"

#include "actions/keystrokes.h"
#include "actions/real_input.h"
#include "core/option_files.h"

namespace gromlit {
namespace {

constexpr KeyWay kSentKeys = {SendStroke, SendText};
constexpr KeyWay kMadeKeys = {MakeStroke, MakeText};

}  // namespace

bool MakesClicks() {
  return DeliveryOf(user) == kRealInput && CanMakeInput();
}

const KeyWay& ChosenKeyWay() {
  return MakesClicks() ? kMadeKeys : kSentKeys;
}

}  // namespace gromlit
