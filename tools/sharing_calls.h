// The calls of gromlit-tool that put data files into one document and take them out of it again.
// Each prints its result and returns the exit status.
#pragma once

#include <string>
#include <vector>

namespace gromlit {

// Writes one document (tools/collection.h) of all the files, and of all symbols, plug-ins and
// options of the installation directories among `paths`, to `output`; "-" is the standard output.
// What is left out is named: a second symbol of one name, the plug-in files that are not used.
int ExportFiles(const std::vector<std::string>& paths, const std::string& output);

// What importing does where the directory has a symbol or plug-in, and it is another one.
enum class Existing {
  kKeep,     // it stays
  kMerge,    // a plug-in gets the actions that it does not have, as many as fit
  kReplace,  // it goes to replaced/ and the new one takes its place; options, too
};

// Puts what the document at `input` ("-": standard input) holds into the installation directory
// `dir`: nothing before all of it has been found sound. Prints one line for each file; with
// `dry_run` that is all.
// - Equal is what `show` prints equally. An action is one that the plug-in has when one of its
//   actions has the same name and the same points: a second could never run.
// - Options belong to a hand and a machine: only kReplace takes them.
// - A new plug-in never takes the file name of another class.
int ImportFiles(const std::string& input, const std::string& dir, Existing existing, bool dry_run);

}  // namespace gromlit
