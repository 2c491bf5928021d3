// The main window and the tray's menu, as those who listen to other clients know them.
#include "app/main_window/main_menu.h"
#include "app/main_window/main_window.h"
#include "app/tray/tray_menu.h"
#include "fuzz/fake_server.h"

namespace gromlit {
namespace {

bool shown = false;

}  // namespace

void ShowGromlit() {
  shown = true;
}
void HideGromlit() {
  shown = false;
}
bool GromlitIsShown() {
  return shown;
}
void ConfirmExitGromlit(XDialog*) {
  throw fuzz::Ended();
}
void OpenTrayMenu(int, int) {}

}  // namespace gromlit
