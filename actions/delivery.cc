#include "actions/delivery.h"

#include "actions/keystrokes.h"
#include "actions/real_input.h"
#include "core/option_files.h"

namespace gromlit {
namespace {

constexpr KeyWay kSentKeys = {true, SendStroke, SendText, nullptr, nullptr};
constexpr KeyWay kMadeKeys = {false, MakeStroke, MakeText, PrepareInput, FinishInput};
constexpr const KeyWay* kWays[] = {&kSentKeys, &kMadeKeys};

}  // namespace

bool MakesClicks() {
  return DeliveryOf(user) == kRealInput && CanMakeInput();
}

void PrepareKeys() {
  const KeyWay& way = ChosenKeyWay();
  if (way.prepare != nullptr) way.prepare();
}

void FinishKeys() {
  for (const KeyWay* way : kWays)
    if (way->finish != nullptr) way->finish();
}

const KeyWay& ChosenKeyWay() {
  return MakesClicks() ? kMadeKeys : kSentKeys;
}

}  // namespace gromlit
