// The strokes and symbol libraries on which the recognition is measured.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "core/gromlit.h"
#include "recognition/stroke.h"

namespace gromlit {

// A recorded stroke; the numbers are indices into the lists of RecordedSet.
struct SetStroke {
  int person;
  int speed;
  int gesture;
  Stroke stroke;
};

struct RecordedSet {
  std::vector<std::string> people;
  std::vector<std::string> speeds;
  std::vector<std::string> gestures;
  std::vector<SetStroke> strokes;
};

// The recorded strokes, names sorted. Empty, with `missing` saying why, where there are none.
RecordedSet ReadRecordedSet(std::string* missing);

// Symbols in the form that a search wants, one action each, in the order of adding.
class Library {
 public:
  Library() = default;
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  void Add(const std::string& name, const GromlitSymbol& sym);
  // The same library without one action. Its features are computed anew.
  void CopyWithout(const Library& other, int index);
  const GromlitPlugin* plugin() const { return &plugin_; }
  GromlitSymbol* symbol(int index) const { return &plugin_.actions[index]->sym; }
  int size() const { return plugin_.nactions; }
  std::string name(int index) const { return plugin_.actions[index]->name; }

 private:
  GromlitPlugin plugin_ = {};
};

// The symbol that `gromlit-tool learn` would make of the strokes. REQUIRES: at least one drawable.
GromlitSymbol Learn(const std::vector<const Stroke*>& strokes);

// The symbols of an installation directory, in the order of their names; none when it cannot be
// read.
void ReadSymbolLibrary(const char* directory, Library* library);

// 40 to 190 steps of 6 pixels; the heading changes at each by a normal deviate times 0.05 to 0.65
// radians, the same for the whole walk.
Stroke RandomWalk(std::mt19937* random);

Stroke Reversed(const Stroke& stroke);

// A symbol as a hand might draw it: corners moved by 3 % of the diagonal and rounded, aspect 0.75
// to 1.25, rotation +-12 degrees, smooth noise of 1 % of the diagonal, 20 to 250 points, 40 to 800
// pixels.
Stroke SimulatedDrawing(const GromlitSymbol& sym, std::mt19937* random);

// The stroke with a hook of `part` of its diagonal before its beginning and behind its end, up to
// 70 degrees off the way on, as mice and touchpads make them.
Stroke WithHooks(const Stroke& stroke, double part, std::mt19937* random);

}  // namespace gromlit
