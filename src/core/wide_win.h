// Converting between the ANSI code page of paths and settings and the wide
// text that windows show.
#pragma once

#include <string>
#include <string_view>

namespace zorvi {

std::wstring Widen(std::string_view ansi);
std::string Narrow(std::wstring_view wide);

// Text in a given code page to wide text; NULs stay NULs.
std::wstring WidenFrom(std::string_view bytes, unsigned codePage);
// The code page asked for when the system can convert from it, else the
// system's ANSI code page: 0, negative numbers, unknown pages and the UTF-16
// and UTF-32 pages, which are no byte encodings to convert from, all fall back.
unsigned UsableCodePage(int requested);

}  // namespace zorvi
