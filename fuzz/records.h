// Records made of what the fuzzer gives, with as many actions, commands and points as it says; and
// what is done with every record that was read.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <string>

#include "core/gromlit.h"
#include "recognition/stroke.h"

namespace gromlit::fuzz {

void FillSymbol(FuzzedDataProvider* data, GromlitSymbol* sym);
void FillPlugin(FuzzedDataProvider* data, GromlitPlugin* plugin);
void FillOptions(FuzzedDataProvider* data, GromlitUserOptions* options);
Stroke MakeAnyStroke(FuzzedDataProvider* data);

// A text that may hold any byte but NUL.
std::string AnyText(FuzzedDataProvider* data, size_t limit);

// Releases everything that belongs to the record, and empties it.
void ReleasePlugin(GromlitPlugin* plugin);

// Empties both lists and all that has been retired, with everything that belongs to them.
void ReleaseLists();

// Ends the run where a record is not within its limits.
void CheckSymbol(const GromlitSymbol& sym);
void CheckPlugin(const GromlitPlugin& plugin);

// Draws a symbol in all the ways that there are: into its icon, on the display, as SVG and as PNG.
void DrawSymbol(const GromlitSymbol& sym);

// Draws all actions of a plug-in, finds those that the stroke stands for both ways, and runs them
// all, keys, clicks and programs being recorded only.
void UsePlugin(GromlitPlugin* plugin, const Stroke& stroke);

}  // namespace gromlit::fuzz
