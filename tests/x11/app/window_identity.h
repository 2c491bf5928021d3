// What a top-level window of the program tells window managers. After the test library's headers,
// which cannot bear Xlib's macros.
#pragma once

#include <X11/Xutil.h>
#include <gtest/gtest.h>

#include "app/windows/top_level.h"
#include "display/display.h"
#include "display/x_handles.h"

namespace gromlit::testing {

// The names, the class, the size that cannot be changed and the close protocol, each as it is
// wanted.
inline void ExpectIdentity(Window window, const WindowIdentity& wanted) {
  char* text = nullptr;
  ASSERT_NE(XFetchName(dpy, window, &text), 0);
  const XData<char> title(text);
  EXPECT_STREQ(title.get(), wanted.title);
  text = nullptr;
  EXPECT_EQ(XGetIconName(dpy, window, &text) != 0, wanted.icontitle != nullptr);
  const XData<char> icontitle(text);
  EXPECT_STREQ(icontitle.get(), wanted.icontitle);
  XClassHint hint{};
  ASSERT_NE(XGetClassHint(dpy, window, &hint), 0);
  const XData<char> name(hint.res_name);
  const XData<char> classpart(hint.res_class);
  EXPECT_STREQ(name.get(), wanted.name);
  EXPECT_STREQ(classpart.get(), "Gromlit");
  XSizeHints size{};
  long supplied = 0;
  ASSERT_NE(XGetWMNormalHints(dpy, window, &size, &supplied), 0);
  EXPECT_EQ(size.flags & (PMinSize | PMaxSize | PBaseSize), PMinSize | PMaxSize | PBaseSize);
  for (const int width : {size.min_width, size.max_width, size.base_width})
    EXPECT_EQ(width, wanted.width);
  for (const int height : {size.min_height, size.max_height, size.base_height})
    EXPECT_EQ(height, wanted.height);
  Atom* list = nullptr;
  int count = 0;
  ASSERT_NE(XGetWMProtocols(dpy, window, &list, &count), 0);
  const XData<Atom> protocols(list);
  ASSERT_EQ(count, 1);
  EXPECT_EQ(list[0], wm_delete);
}

}  // namespace gromlit::testing
