// The part of the recognition report that is about the starter library.
#pragma once

namespace gromlit {

struct RecordedSet;

// Percent of drawings that ran the right action, and of those that ran another one.
struct RightAndWrong {
  double right;
  double wrong;
};

// Prints what drawings of the library's symbols themselves run, over each of its plug-ins that has
// the symbol or falls back to it; returns the shares by shape at the tolerance Medium.
RightAndWrong PrintStarterSymbols(const char* skeleton);

// Prints what people's strokes run over applications without a plug-in, where a recorded gesture is
// one of the starter library's.
void PrintStarterPeople(const char* skeleton, const RecordedSet& set);

// Prints the tables: simulated drawings of every way of every gesture, over each plug-in of the
// library in `skeleton`, by shape and by signature, and what badly drawn strokes run.
void PrintStarterLibrary(const char* skeleton);

// The confusions, one a line, for whoever works on the library.
void PrintStarterConfusions(const char* skeleton);

}  // namespace gromlit
