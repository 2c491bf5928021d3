// Which action of a plug-in a stroke stands for. Everybody who asks that asks here: the capture,
// the companion tool and the tests. The way of matching is chosen here and nowhere else.
#pragma once

#include <cstdint>

#include "core/gromlit.h"
#include "core/option_files.h"
#include "recognition/stroke.h"

namespace gromlit {

// The matching options.
struct Matching {
  int32_t way;        // MatchingWay; any other value matches by signature
  int32_t tolerance;  // for ways that measure a distance: 1 strict .. 5 generous; kept as read
};

// The matching that these options ask for.
Matching MatchingOf(const GromlitUserOptions& options);

// The way that is in force with these: kBySignature for values that nobody knows.
MatchingWay WayOf(const Matching& how);

// Index of the action of pin that the stroke stands for, -1 when there is none. By signature it is
// the first one, in the plug-in's order, whose symbol matches; by shape the one that the stroke
// looks most like, if it looks enough like it for the tolerance.
int FindAction(const GromlitPlugin* pin, const Stroke& stroke, const Matching& how);

// How much the stroke is like the two actions of pin that it is most like, by a way that measures
// it: 1 the same; -1 where there is no such action, and where the way measures nothing.
struct Scores {
  float best = -1;
  float next = -1;
};

Scores ScoresOf(const GromlitPlugin* pin, const Stroke& stroke, const Matching& how);

// An action and the plug-in that it belongs to.
struct FoundAction {
  GromlitPlugin* plugin = nullptr;
  int index = -1;  // in the plug-in; -1: there is none
};

// The action that a stroke over an application with the plug-in pin runs: pin's own; where it has
// none for the stroke, and the options choose to fall back, that of DefaultPlugin. Without an
// action the result names pin, which may be null: nothing is found in it.
FoundAction FindActionToRun(GromlitPlugin* pin, const Stroke& stroke,
                            const GromlitUserOptions& options);

// Index of the first of pin's first `n` actions that takes every stroke that a symbol could stand
// for, so that an action with it behind them never runs; -1 when there is none. Any other is found
// by some stroke, as far as can be told. REQUIRES: 0 <= n <= pin->nactions.
int FindTaker(const GromlitPlugin* pin, int n, GromlitSymbol* sym, const Matching& how);

}  // namespace gromlit
