// The part of the recognition report that is about the starter library.
#pragma once

namespace gromlit {

struct RecordedSet;

// Prints what people's strokes run over applications without a plug-in, where a recorded gesture is
// one of the starter library's.
void PrintStarterPeople(const char* skeleton, const RecordedSet& set);

// Prints the tables: simulated drawings of every way of every gesture, over each plug-in of the
// library in `skeleton`, by shape and by signature, and what badly drawn strokes run.
void PrintStarterLibrary(const char* skeleton);

// The confusions, one a line, for whoever works on the library.
void PrintStarterConfusions(const char* skeleton);

}  // namespace gromlit
