#include "actions/keyboard_change.h"

#include "actions/character_keys.h"
#include "actions/keystrokes.h"
#include "actions/spare_keys.h"

namespace gromlit {

void KeyboardChanged(const XMappingEvent& event) {
  if (event.request == MappingPointer) return;
  ForgetCharacterKeys();
  ForgetSpareKeys();
  BuildCharToKeycode();
}

}  // namespace gromlit
