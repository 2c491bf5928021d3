#include "display/fonts.h"

#include <X11/Xutil.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "display/display.h"
#include "display/font_question.h"
#include "display/scaled_fonts.h"

namespace gromlit {
namespace {

struct WantedFont {
  const char* name;
  Font* font;
  XFontStruct** info;
  int* height;
  FontQuestion question;
};
WantedFont wanted[] = {{txtFontname, &txtFont, &txtFontinfo, &txtCharht, {}},
                       {buttonFontname, &labelFont, &labelFontinfo, &labelCharht, {}},
                       {logoFontname, &logoFont, &logoFontinfo, &logoCharht, {}}};
bool asked = false;

void LoadFont(const FontQuestion& question, const char* name, Font* font, XFontStruct** info,
              int* height) {
  *info = LoadScaledFont(question);
  if (*info == nullptr) {
    std::printf("Text font %s not found, using fixed.", name);
    *info = LoadScaledFont("fixed");
  }
  if (*info == nullptr) {
    // A server without any "fixed" still has the font of its default graphics context; its metrics
    // keep every window that measures text from reading through a null pointer.
    *info = XQueryFont(dpy, XGContextFromGC(DefaultGC(dpy, screen)));
    if (*info == nullptr) return;
    (*info)->fid = None;  // the id of that query names the graphics context, not a font
    *height = (*info)->ascent + (*info)->descent;
    return;
  }
  *font = (*info)->fid;
  *height = (*info)->ascent + (*info)->descent;
}

// The wide forms that were asked for.
struct WideForm {
  XFontStruct* font;
  XFontStruct* wide;
};
std::vector<WideForm>& WideForms() {
  static auto* forms = new std::vector<WideForm>;
  return *forms;
}

}  // namespace

void AskForFonts() {
  for (WantedFont& font : wanted) font.question = AskForFont(font.name);
  asked = true;
}

void LoadFonts() {
  // Those of a connection that is closed.
  for (const WideForm& form : WideForms()) {
    if (form.wide != nullptr && form.wide != form.font) XFreeFontInfo(nullptr, form.wide, 1);
  }
  WideForms().clear();
  ForgetScaledFonts();
  if (!asked) AskForFonts();
  asked = false;
  for (const WantedFont& font : wanted) {
    LoadFont(font.question, font.name, font.font, font.info, font.height);
  }
}

XFontStruct* WideFormOf(XFontStruct* font) {
  for (const WideForm& form : WideForms()) {
    if (form.font == font) return form.wide;
  }
  constexpr std::string_view kWide = "-iso10646-1";
  std::string name = UnscaledName(font);
  XFontStruct* wide = nullptr;
  if (name.ends_with(kWide)) {
    wide = font;
  } else if (const size_t encoding = name.rfind('-'); encoding != std::string::npos) {
    // The last two fields name the letters that a font has.
    const size_t registry = encoding > 0 ? name.rfind('-', encoding - 1) : std::string::npos;
    if (registry != std::string::npos) {
      name.replace(registry, std::string::npos, kWide);
      wide = LoadScaledFont(name.c_str());
    }
  }
  WideForms().push_back({font, wide});
  return wide;
}

}  // namespace gromlit
