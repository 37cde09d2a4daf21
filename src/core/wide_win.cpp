// Converting between the ANSI code page of paths and settings and the wide
// text that windows show.
#include "core/wide_win.h"

#include <windows.h>

namespace zorvi {

std::wstring Widen(std::string_view ansi) {
    if (ansi.empty()) return {};
    const int length = MultiByteToWideChar(CP_ACP, 0, ansi.data(), static_cast<int>(ansi.size()),
                                           nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, ansi.data(), static_cast<int>(ansi.size()), wide.data(),
                        length);
    return wide;
}

std::string Narrow(std::wstring_view wide) {
    if (wide.empty()) return {};
    const int length = WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()),
                                           nullptr, 0, nullptr, nullptr);
    std::string ansi(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), ansi.data(),
                        length, nullptr, nullptr);
    return ansi;
}

}  // namespace zorvi
