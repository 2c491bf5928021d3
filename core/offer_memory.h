// For which unknown classes the offer to make a plug-in has been made.
#pragma once

namespace gromlit {

// The memory behind the offer to make a plug-in for an unknown class: made once per class and run.
struct RememberFindNew {
  char* classname;  // heap
  int prompt;       // never used
  RememberFindNew* next;
};
extern RememberFindNew* RememberFindNewList;

// 1 when the class was already remembered in this run; else remembers it and returns 0.
int RememberClass(const char* classname);

// Whether it was.
bool IsRememberedClass(const char* classname);

}  // namespace gromlit
