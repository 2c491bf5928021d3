// The records that the whole program shares, their limits, and the lists that hold them.
//
// A symbol is a shape that can be drawn; a command is one thing to do; an action binds a symbol to
// a list of commands; a plug-in holds the actions of one application. All of them are plain records
// of fixed size. The files store them byte by byte (core/record_codec.h); nothing here may be
// copied to a file as it lies in memory.
//
// Every record lives on the heap (records: new; strings: malloc, like StrDup) until the program
// ends and is reachable from one of the globals below, from another record, or from an editor's
// working copy. A record that leaves its list is not released: somebody may still look at it.
#pragma once

#include <cstdint>

#include "core/command_types.h"

namespace gromlit {

// --- Limits -----------------------------------------------------------------------------------

inline constexpr int kMaxPoints = 64;         // corner points of a symbol's vector
inline constexpr int kMaxKeys = 8;            // key pairs of a command
inline constexpr int kMaxCommands = 128;      // commands of an action
inline constexpr int kMaxActions = 128;       // actions of a plug-in
inline constexpr int kMaxStrokePoints = 256;  // points kept of a live stroke
inline constexpr int kIconSize = 32;          // columns and rows of a symbol's icon

// Editor pixels: corner points lie on multiples of 8 between these two, 32 cells each way.
inline constexpr int kGridMin = 16;
inline constexpr int kGridMax = 264;

inline constexpr int kNameSize = 32;       // bytes of a symbol's name field, its NUL included
inline constexpr int kTextSize = 64;       // bytes of most other text fields
inline constexpr int kUrlCmdSize = 128;    // bytes of the browser command line field
inline constexpr int kFileNameSize = 256;  // bytes of a file's name, its NUL included
inline constexpr int kClassBuffer = 100;  // bytes for a class text read from a window, NUL included

// --- Records ----------------------------------------------------------------------------------

struct Shape;  // recognition/shape.h

// A named shape. INV-SYMBOL-1: `signature` and `shape` are null or were computed from the points
// that are in the record now; whoever changes the points, or copies a symbol over another, sets
// them to null.
struct GromlitSymbol {
  char name[kNameSize];  // NUL-terminated; also the base name of its file
  uint8_t npoints;       // 0..kMaxPoints
  // Corner points, numbered from 1 to npoints; editor pixels. Index 0 is not a point.
  uint16_t x[kMaxPoints + 1];
  uint16_t y[kMaxPoints + 1];
  uint32_t icon[kIconSize];  // row r is icon[r], column c is bit c
  uint32_t spare;            // reserved, kept as read
  char* signature;           // cached signature, heap, owned by the record; null until computed
  Shape* shape;              // the same for matching by shape
};

struct GromlitCmd {
  uint8_t type;                 // CommandType; any other value does nothing when run
  uint8_t nkeys;                // key pairs in use; kept as read, at most kMaxKeys are sent
  uint16_t keycode[kMaxKeys];   // X key codes
  uint16_t keystate[kMaxKeys];  // X modifier state of each key
  uint8_t buttons[6];           // reserved, kept as read
  uint8_t flag;                 // reserved, kept as read
  uint8_t checked;              // the type's check box: Text "use as filename", Internet "forum"
  int32_t spare;                // reserved, kept as read
  uint32_t ntext;               // bytes of text without its NUL; 0 when text is null
  char* text;                   // heap, owned by the command, NUL-terminated; or null
};

struct GromlitAction {
  GromlitSymbol sym;               // a copy: later changes of the symbol library do not reach it
  char name[kTextSize];            // NUL-terminated
  int32_t spare;                   // reserved, kept as read
  uint32_t ncmds;                  // 0..kMaxCommands
  GromlitCmd* cmds[kMaxCommands];  // in execution order, owned by the action
};

struct GromlitPlugin {
  char appname[kTextSize];    // shown to the user, NUL-terminated
  char classname[kTextSize];  // class text of the windows it serves, NUL-terminated; the key
  int32_t spare3;             // reserved, kept as read, as are the fields down to chars8
  int32_t spare4;
  uint8_t spare1;
  uint8_t spare2;
  char chars1[kTextSize];  // raw bytes, not strings
  char chars2[kTextSize];
  char chars3[kTextSize];
  char chars4[kTextSize];
  char chars5[kTextSize];
  char chars6[kTextSize];
  char chars7[kTextSize];
  char chars8[kTextSize];
  uint8_t nactions;                     // 0..kMaxActions; 0 until the actions are loaded
  GromlitAction* actions[kMaxActions];  // in match order, owned by the plug-in
  // Memory only: name of its file below the plug-in directory, NUL-terminated; empty until it is
  // read or written. It is saved and deleted there, whatever its name.
  char storedfile[kFileNameSize];
  // Memory only: file name (heap, below the plug-in directory) that holds more than this record
  // does, because reading its actions failed half-way, and has not been set aside yet; else null.
  // INV-PLUGIN-1: no save overwrites such a file before a copy of it lies in damaged/.
  char* damagedfile;
};

struct GromlitUserOptions {
  int32_t button;       // mouse button that draws, 1..5
  int32_t sensitivity;  // pixels that a stroke must reach before it is matched
  int32_t tolerance;    // kept for the preferences; matching does not read it
  int32_t splash;       // non-zero: splash window at start
  int32_t showactions;  // non-zero: show the plug-in's actions while drawing
  int32_t temp1;        // reserved, kept as read, as are temp2..temp4 and charspare2
  int32_t temp2;
  int32_t temp3;
  int32_t temp4;
  char urlcmd[kUrlCmdSize];    // browser command line; its first %s becomes the URL
  char sndcmd[kTextSize];      // sound player command line; its first %s becomes the file
  char charspare2[kTextSize];  // raw bytes
};

// --- Lists ------------------------------------------------------------------------------------

// Both lists end with a node whose record is null; walkers stop at the first such node.
struct GromlitSymbolList {
  char* filename;  // heap; with its extension when found at start, without when saved in this run
  GromlitSymbol* sym;
  GromlitSymbolList* next;
};

struct GromlitPluginList {
  // Heap. As found in the plug-in directory, extension included; for a plug-in made in this run its
  // class name (it is never read again).
  char* filename;
  int loaded;  // 0: only the plug-in record was read; 1: actions and commands too
  GromlitPlugin* plugin;
  GromlitPluginList* next;
};

extern GromlitSymbolList* allSymbols;  // core/symbol_files.cc
extern GromlitPluginList* allPlugins;  // core/plugin_files.cc
extern GromlitPlugin* DefaultPlugin;   // serves applications that have no plug-in
extern GromlitUserOptions* user;       // the options in force
extern const char* GromlitPath;        // installation directory; all data lie below it

// Copies a symbol into another record: name, npoints, points 1..63, the x of point 64 and the icon.
// The y of point 64, `spare`, `signature` and `shape` of dst stay as they were. A caller that gives
// dst another shape must therefore release its hold on the old ones and set them to null
// (INV-SYMBOL-1).
void CopyGromlitSymbol(GromlitSymbol* dst, const GromlitSymbol* src);

// Sets the cached signature and shape to null without freeing them: for a record that was copied
// whole from another, to which they still belong.
void DisownFeatures(GromlitSymbol* sym);

// Frees both and sets them to null: for a record whose points change, or that goes.
void ReleaseFeatures(GromlitSymbol* sym);

}  // namespace gromlit
