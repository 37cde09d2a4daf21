// Converting between the ANSI code page of paths and settings and the wide
// text that windows show.
#pragma once

#include <string>
#include <string_view>

namespace zorvi {

std::wstring Widen(std::string_view ansi);
std::string Narrow(std::wstring_view wide);

}  // namespace zorvi
