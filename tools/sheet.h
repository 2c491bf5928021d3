// A cheat sheet: the gestures of all plug-ins with what they do.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/command_words.h"
#include "tools/installation.h"

namespace gromlit {

// Of one thing to do so many drawings are shown; of the others the sheet says how many they are.
inline constexpr size_t kShownDrawings = 4;

// One thing to do and every way to draw it: actions of a plug-in that have the same name and do the
// same stand together, in their order.
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

// How many drawings of the entry are shown, and what is said of the others: empty for none.
size_t ShownDrawings(const SheetEntry& entry);
std::string OtherDrawings(const SheetEntry& entry);

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
