// Where each field lies in the stored image of its record (those of the options:
// core/option_fields.h).
//
// These constants are the one description of the formats: the encoder and the decoder use them, and
// the assertions below hold every published offset. All integers are little-endian. "Gap" bytes
// come from the natural alignment of the first implementation's records and are zero when written;
// "slot" bytes once held pointers, are ignored when read and zero when written.
//
//   file       header (13 bytes)   records behind it
//   symbol     "GromlitSymbol"     one symbol image; what follows it is ignored
//   plug-in    "GromlitPlugin"     one plug-in image; then nactions times: an action image and its
//                                  ncmds commands, each a command image and ntext bytes of text
//   options    "GromlitOption"     one options image; what follows it is ignored
#pragma once

#include <cstddef>

#include "core/bytes.h"
#include "core/gromlit.h"

namespace gromlit {

inline constexpr size_t kHeaderSize = 13;  // every file begins with one, without a NUL

inline constexpr size_t kSymbolImageSize = 428;
inline constexpr size_t kCmdImageSize = 56;
inline constexpr size_t kActionImageSize = 1012;
inline constexpr size_t kPluginImageSize = 1164;
inline constexpr size_t kOptionsImageSize = 292;

namespace symbol_layout {
inline constexpr Field kName{0, kNameSize};
inline constexpr Field kNpoints{32, 1};
inline constexpr Field kGap{33, 1};
// x and y are arrays of 64 u16 each, indexed by the point's number, which starts at 1.
inline constexpr Field kX{34, size_t{2} * kMaxPoints};
inline constexpr Field kY{kX.end(), size_t{2} * kMaxPoints};
// The arrays have no element 64. Point 64 lies behind each of them: its x on the unused y[0], its y
// on the gap, and there only while the symbol has 64 points.
inline constexpr Field kX64{kX.end(), 2};
inline constexpr Field kY64{kY.end(), 2};
inline constexpr Field kIcon{292, size_t{4} * kIconSize};
inline constexpr Field kSpare{420, 4};
inline constexpr Field kSignatureSlot{424, 4};

static_assert(kName.end() == kNpoints.offset && kNpoints.end() == kGap.offset);
static_assert(kGap.end() == kX.offset && kX.offset == 47 - kHeaderSize);
static_assert(kY.offset == 162 && kY.offset == 175 - kHeaderSize);
static_assert(kX64.offset == 162 && kY64.offset == 290 && kY64.offset == 303 - kHeaderSize);
static_assert(kY64.end() == kIcon.offset && kIcon.offset == 305 - kHeaderSize);
static_assert(kIcon.end() == kSpare.offset && kSpare.offset == 433 - kHeaderSize);
static_assert(kSignatureSlot.offset == 437 - kHeaderSize);
static_assert(kSignatureSlot.end() == kSymbolImageSize);
}  // namespace symbol_layout

namespace cmd_layout {
inline constexpr Field kType{0, 1};
inline constexpr Field kNkeys{1, 1};
inline constexpr Field kKeycode{2, size_t{2} * kMaxKeys};
inline constexpr Field kKeystate{18, size_t{2} * kMaxKeys};
inline constexpr Field kButtons{34, 6};
inline constexpr Field kFlag{40, 1};
inline constexpr Field kChecked{41, 1};
inline constexpr Field kGap{42, 2};
inline constexpr Field kSpare{44, 4};
inline constexpr Field kNtext{48, 4};
inline constexpr Field kTextSlot{52, 4};

static_assert(kType.end() == kNkeys.offset && kNkeys.end() == kKeycode.offset);
static_assert(kKeycode.end() == kKeystate.offset && kKeystate.end() == kButtons.offset);
static_assert(kButtons.end() == kFlag.offset && kFlag.end() == kChecked.offset);
static_assert(kChecked.end() == kGap.offset && kGap.end() == kSpare.offset);
static_assert(kSpare.end() == kNtext.offset && kNtext.end() == kTextSlot.offset);
static_assert(kTextSlot.end() == kCmdImageSize);
}  // namespace cmd_layout

namespace action_layout {
inline constexpr Field kSym{0, kSymbolImageSize};
inline constexpr Field kName{428, kTextSize};
inline constexpr Field kSpare{492, 4};
inline constexpr Field kNcmds{496, 4};
inline constexpr Field kCmdSlots{500, size_t{4} * kMaxCommands};

static_assert(kSym.end() == kName.offset && kName.end() == kSpare.offset);
static_assert(kSpare.end() == kNcmds.offset && kNcmds.end() == kCmdSlots.offset);
static_assert(kCmdSlots.end() == kActionImageSize);
}  // namespace action_layout

namespace plugin_layout {
inline constexpr Field kAppname{0, kTextSize};
inline constexpr Field kClassname{64, kTextSize};
inline constexpr Field kSpare3{128, 4};
inline constexpr Field kSpare4{132, 4};
inline constexpr Field kSpare1{136, 1};
inline constexpr Field kSpare2{137, 1};
inline constexpr Field kChars1{138, kTextSize};
inline constexpr Field kChars2{202, kTextSize};
inline constexpr Field kChars3{266, kTextSize};
inline constexpr Field kChars4{330, kTextSize};
inline constexpr Field kChars5{394, kTextSize};
inline constexpr Field kChars6{458, kTextSize};
inline constexpr Field kChars7{522, kTextSize};
inline constexpr Field kChars8{586, kTextSize};
inline constexpr Field kNactions{650, 1};
inline constexpr Field kGap{651, 1};
inline constexpr Field kActionSlots{652, size_t{4} * kMaxActions};

static_assert(kAppname.end() == kClassname.offset && kClassname.end() == kSpare3.offset);
static_assert(kSpare3.end() == kSpare4.offset && kSpare4.end() == kSpare1.offset);
static_assert(kSpare1.end() == kSpare2.offset && kSpare2.end() == kChars1.offset);
static_assert(kChars1.end() == kChars2.offset && kChars2.end() == kChars3.offset);
static_assert(kChars3.end() == kChars4.offset && kChars4.end() == kChars5.offset);
static_assert(kChars5.end() == kChars6.offset && kChars6.end() == kChars7.offset);
static_assert(kChars7.end() == kChars8.offset && kChars8.end() == kNactions.offset);
static_assert(kNactions.end() == kGap.offset && kGap.end() == kActionSlots.offset);
static_assert(kActionSlots.end() == kPluginImageSize);
}  // namespace plugin_layout

}  // namespace gromlit
