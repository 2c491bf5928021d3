// The two dialogs that lead to a plug-in for an application that has none: one offers to download
// it, the other one makes an empty one for the application that is clicked on.
#pragma once

#include "toolkit/dialog.h"

namespace gromlit {

extern const char* const NoPluginMsg[];
extern const char* const NewPluginMsg[];

// Make the dialogs, not mapped.
XDialog* MakeDownloadDialog();
XDialog* MakeNewPluginDialog();

// Yes to the offer: opens the download page for the class that is the dialog's argument.
void YesDownloadPlugin(XDialog* dlog);

// OK of the other: lets the user click on an application and makes a plug-in for its class, which
// is shown then. An application that has a plug-in already keeps it. Nothing is made when
// the pointer cannot be had. When the new plug-in cannot be saved it is there until the program
// ends, and the user is told.
void YesNewPlugin(XDialog* dlog);

}  // namespace gromlit
