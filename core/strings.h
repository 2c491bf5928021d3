// Small text helpers and the bounded copies that everything read from outside goes through.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace gromlit {

// Length of s in bytes, without its NUL.
size_t StrLength(const char* s);

// Byte comparison; 0 when equal, else negative or positive like strcmp.
int StrCmp(const char* a, const char* b);

// Copies src with its NUL into dst, which must be large enough; returns dst.
char* StrCopy(char* dst, const char* src);

// Appends src to dst, which must be large enough; returns dst.
char* StrAppend(char* dst, const char* src);

// New heap copy of s; null for a null s.
char* StrDup(const char* s);

// New heap string of at most `size` bytes, its NUL included, to show in a field of limited width:
// a plain copy when the length of s is at most size - 3, else the first size - 4 bytes and "...";
// fewer where the cut would go through a letter of UTF-8.
// REQUIRES: size >= 4.
char* MaxStrCopy(const char* s, int size);

// Bounded copy: as much of src as fits, always NUL-terminated; the rest of dst is zeroed.
// src may lie in dst. REQUIRES: dst is not empty.
void CopyText(std::span<char> dst, std::string_view src);

// The text in a fixed field: up to its first NUL, or the whole field but its last byte.
// REQUIRES: field is not empty.
std::string_view FieldText(std::span<const char> field);

// qsort comparison of two text pointers (const char* const*), bytewise ascending.
int SortStrCmp(const void* a, const void* b);

}  // namespace gromlit
