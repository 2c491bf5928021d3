// How people draw the gestures of the starter library: every way that they may take, drawn by a
// simulated hand. The ways are written down here and not taken from the library's symbols: whether
// those suffice is what is measured.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "core/gromlit.h"
#include "core/option_files.h"
#include "recognition/stroke.h"
#include "tests/unit/recognition/pen_points.h"

namespace gromlit {

// One way of drawing a gesture: its corners, or closely set points of a curve, in any unit, y
// downwards.
struct DrawingWay {
  std::string gesture;  // the name of the library's first symbol for it
  std::string how;      // start, direction, legs, loops, in words
  PenPoints points;
};

// All ways of all gestures, those of a gesture together.
const std::vector<DrawingWay>& StarterWays();

// The way as a hand that is no machine draws it: corners off by 3 % of the diagonal, rounded or
// overshot by up to 6 %, lines that bow by up to 6 % of their length, proportions 0.75 to 1.33,
// leaning by up to 10 degrees and turned by up to 10, a tremble of 1 % of the diagonal, with one
// stroke in four hooks of up to 5 % at its ends, 20 to 248 points, 40 to 800 pixels. `care` scales
// all of that but for the last two: 1 as said, 1.5 a careless hand.
Stroke DrawnByHand(const DrawingWay& way, std::mt19937* random, double care = 1);

// The plug-ins of an installation directory with their actions, DefaultPlugin set; sorted by class.
std::vector<GromlitPlugin*> ReadStarterPlugins(const char* directory);

// The options of a new user who takes what is recommended, with the way of matching given.
GromlitUserOptions RecommendedOptions(MatchingWay way);

// What a drawing did.
enum class Outcome { kRight, kWrong, kNothing };

// Strokes over an application with the plug-in pin, with options as a user has them. What a gesture
// should do is what the action with the symbol of that name does, in pin or, where pin has none and
// the options choose to fall back, in DefaultPlugin; an action of the same name is as right.
class StarterJudge {
 public:
  StarterJudge(GromlitPlugin* pin, const GromlitUserOptions& options);

  // The action that the gesture stands for; null when it stands for none here.
  const GromlitAction* Meant(const std::string& gesture) const;
  // What the stroke does; *ran, if any, is the action that ran or null.
  Outcome Judge(const GromlitAction& meant, const Stroke& stroke, const GromlitAction** ran) const;

 private:
  GromlitPlugin* pin_;
  GromlitUserOptions options_;
};

// Whether the action may cost work when it is run by mistake: quit, close, cut, delete, interrupt.
bool Destructive(const GromlitAction& action);

}  // namespace gromlit
