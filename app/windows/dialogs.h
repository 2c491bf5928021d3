// The dialogs that several commands share, made once at start-up and then only shown and hidden.
#pragma once

#include "core/gromlit.h"
#include "toolkit/dialog.h"
#include "toolkit/text_editor.h"

namespace gromlit {

inline constexpr const char* labelAboutGromlit = "About Gromlit";

// Lines of the questions and notices, each ended by a null pointer.
extern const char* const AboutGromlitMsgs[];
extern const char* const ConfirmDeleteSymbolMsg[];
extern const char* const ConfirmDeletePluginMsg[];
extern const char* const ConfirmExitMsg[];
extern const char* const EditPluginNameMsg[];

// Product, version, rights and where to write to.
extern XDialog* about;

// The one question for all that asks "really?". Whoever shows it sets its lines (msgs), its
// argument and its yesfn first, so that the last to show it decides what "Yes" does.
extern XDialog* confirm;

// The question for a plug-in's new name: `child` is its text field (TextEditor), `arg` the plug-in.
extern XDialog* editname;

// What the user is told without having asked; see ShowNotice and ShowFailure.
extern XDialog* notice;

// Make the dialogs, not mapped. MakeAboutDialog makes the notice for failures as well, since
// whatever follows may need it. `yesfn` is what the OK of editname does.
void MakeAboutDialog();
void MakeConfirmDialog();
void MakeEditNameDialog(void (*yesfn)(XDialog* dlog));

// Shows `what` at the pointer in a dialog with this title and an OK button. A line feed begins a
// new line; the text is copied, longer lines are cut to 100 bytes and lines beyond the sixth left
// out. Prints the text on the error stream instead when the dialogs were not made yet.
void ShowNotice(const char* title, const char* what);

// The same for what was not done, and why.
void ShowFailure(const char* what);

// The same for a save that failed: a line for `what`, such as "The plug-in was not saved.", and one
// for `error`, the errno that the save left.
void ShowSaveFailure(const char* what, int error);

}  // namespace gromlit
