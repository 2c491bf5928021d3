// Splitting a command line into words.
#pragma once

namespace gromlit {

// Splits line at white space into heap words and stores them in argv, followed by a null pointer.
// There is no quoting: quotes are ordinary characters. Words may have any length. argv must have
// room for every word and the null (ArgvSlots(line) pointers). The caller owns the words.
// Returns the number of words.
int ParseArgs(const char* line, char** argv);

// Upper bound of the pointers that ParseArgs stores for this line, its terminating null included.
int ArgvSlots(const char* line);

}  // namespace gromlit
