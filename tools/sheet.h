// A cheat sheet: the gestures of all plug-ins with what they do.
#pragma once

#include <string>
#include <vector>

#include "tools/command_words.h"
#include "tools/installation.h"

namespace gromlit {

// One thing to do and every way to draw it: actions of a plug-in that have the same name and do the
// same stand together.
struct SheetEntry {
  std::string name;
  std::vector<CommandWords> does;
  std::vector<const GromlitSymbol*> drawings;
};

// A plug-in, or what is to be said of one without actions.
struct SheetSection {
  std::string title;
  std::string where;  // over which windows
  std::vector<SheetEntry> entries;
};

// The plug-ins that the program uses, "Default" and "Desktop" first, the others in order of their
// names. Points into `found`.
std::vector<SheetSection> SheetOf(Installation* found);

// A page that can be printed, with all that it needs in it; or its sections alone, for another
// page: headings of the second level and lists of the class "gestures".
std::string SheetPage(const std::vector<SheetSection>& sections);
std::string SheetSections(const std::vector<SheetSection>& sections);

// The whole sheet as one drawing.
std::string SheetDrawing(const std::vector<SheetSection>& sections);

// The same as sheets of A4 paper, one drawing each.
std::vector<std::string> SheetPapers(const std::vector<SheetSection>& sections);

}  // namespace gromlit
