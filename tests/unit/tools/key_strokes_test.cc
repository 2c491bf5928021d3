// The key strokes of texts on the keyboards of several countries, from the system's own data of
// them.
#include "keymap/key_strokes.h"

#include <gtest/gtest.h>

namespace gromlit {
namespace {

constexpr uint16_t kShift = 1;
constexpr uint16_t kControl = 4;
constexpr uint16_t kAlt = 8;
constexpr uint16_t kSuper = 64;
constexpr uint16_t kAltGr = 128;

Keymap MapOf(const char* layouts) {
  xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES);
  const xkb_rule_names names = {
      .rules = "evdev", .model = "pc105", .layout = layouts, .variant = "", .options = ""};
  Keymap map(xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
  xkb_context_unref(context);
  return map;
}

// "code,state" of a stroke, "none" where there is none.
std::string On(const Keymap& map, std::string_view text) {
  const auto stroke = FindKeyStroke(map.get(), text);
  if (!stroke.has_value()) return "none";
  return std::to_string(stroke->keycode) + "," + std::to_string(stroke->state);
}

std::string Key(int code, int state) {
  return std::to_string(code) + "," + std::to_string(state);
}

TEST(KeyStrokes, ArePlacesOnThePackingKeyboardWhateverTheEnvironmentSays) {
  setenv("XKB_DEFAULT_LAYOUT", "de", 1);
  const Keymap us = PackingKeymap();
  unsetenv("XKB_DEFAULT_LAYOUT");
  ASSERT_NE(us, nullptr);
  EXPECT_EQ(On(us, "z"), Key(52, 0));
  EXPECT_EQ(On(us, "Control-Shift-z"), Key(52, kControl | kShift));
  EXPECT_EQ(On(us, "Shift-Control-z"), Key(52, kControl | kShift));
  EXPECT_EQ(On(us, "Control-Z"), Key(52, kControl | kShift));
  EXPECT_EQ(On(us, "Alt-Left"), Key(113, kAlt));
  EXPECT_EQ(On(us, "Super-F5"), Key(71, kSuper));
  EXPECT_EQ(On(us, "Mod4-F5"), Key(71, kSuper));
  EXPECT_EQ(On(us, "Control-Next"), On(us, "Control-Page_Down"));
  EXPECT_EQ(On(us, "Control-minus"), Key(20, kControl));
  EXPECT_EQ(On(us, "Control--"), Key(20, kControl));
  EXPECT_EQ(On(us, "Control-plus"), Key(21, kControl | kShift));
  for (const char* text : {"", "Control-", "-", "Ctrl-c", "Control-nothing", "Control-adiaeresis"})
    EXPECT_EQ(On(us, text), std::string_view(text) == "-" ? Key(20, 0) : "none") << text;
  EXPECT_EQ(On(us, std::string_view("F5\0", 3)), "none");
}

TEST(KeyStrokes, FollowTheLayout) {
  const Keymap de = MapOf("de");
  EXPECT_EQ(On(de, "Control-z"), Key(29, kControl));
  EXPECT_EQ(On(de, "Control-equal"), Key(19, kControl | kShift));
  EXPECT_EQ(On(de, "Control-bracketleft"), Key(17, kControl | kAltGr));
  // Shift and the symbol of another level: which symbol was meant is not known here.
  EXPECT_EQ(On(de, "Control-Shift-equal"), "none");
  const Keymap fr = MapOf("fr");
  EXPECT_EQ(On(fr, "Control-a"), Key(24, kControl));
  EXPECT_EQ(On(fr, "Control-1"), Key(10, kControl | kShift));
}

TEST(KeyStrokes, TakeLettersFromAnotherLayoutWhereTheFirstHasNone) {
  EXPECT_EQ(On(MapOf("ru"), "Control-z"), "none");
  EXPECT_EQ(On(MapOf("ru"), "Control-Left"), Key(113, kControl));
  EXPECT_EQ(On(MapOf("ru,de"), "Control-z"), Key(29, kControl));
  EXPECT_EQ(On(MapOf("us,de"), "Control-z"), Key(52, kControl));
}

}  // namespace
}  // namespace gromlit
