#include "app/symbols/symbol_editor_steps.h"

#include "display/display.h"
#include "toolkit/bevel.h"
#include "toolkit/text.h"

namespace gromlit {
namespace {

constexpr int kTitleY = 96;  // baseline of the step's title
constexpr int kLinesX = 320;

// What a step shows beside its widgets.
struct Step {
  const char* title;
  const char* const* lines;  // ended by a null pointer
};

const char* const kVectorLines[] = {"Create the symbol by clicking",
                                    "and dragging the mouse.",
                                    "",
                                    "Click again on the last point",
                                    "to stop capture of the vector format.",
                                    "",
                                    "Once completed, you can modify",
                                    "the shape by clicking and dragging",
                                    "the black squares.",
                                    "",
                                    "The vector data is used to recognize",
                                    "the symbol.",
                                    nullptr};
const char* const kBitmapLines[] = {
    "Create the symbol icon bitmap.", "",     "Turn on or off a pixel by",
    "clicking on the pixel.",         "",     "The icon is not used to",
    "recognize the symbol.",          nullptr};
const char* const kNameLines[] = {
    "Enter the symbol name.",  "",     "To edit the name, place the mouse",
    "into the edit area.",     "",     "Click the Save button or hit",
    "the Return key to save.", nullptr};

constexpr Step kVectorStep = {"Step 1: Edit Vector Format:", kVectorLines};
constexpr Step kBitmapStep = {"Step 2: Edit Bitmap Format:", kBitmapLines};
constexpr Step kNameStep = {"Step 3: Save Symbol As:", kNameLines};

const Step& StepOf(const SymbolEditor* editor) {
  return editor->state == kSymName     ? kNameStep
         : editor->state == kSymBitmap ? kBitmapStep
                                       : kVectorStep;
}

}  // namespace

void DrawSymbolEditor(SymbolEditor* editor, XEvent*) {
  const Step& step = StepOf(editor);
  XClearWindow(dpy, editor->window);
  XSetForeground(dpy, editor->gc, black.pixel);
  DrawText(editor->window, editor->gc, kSymbolWorkX, kTitleY, step.title);
  int baseline = kSymbolWorkY + txtCharht;
  for (const char* const* line = step.lines; *line != nullptr; line++) {
    DrawText(editor->window, editor->gc, kLinesX, baseline, *line);
    baseline += txtCharht;
  }
}

}  // namespace gromlit
