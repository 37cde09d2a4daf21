// Converting between the ANSI code page of paths and settings and the wide
// text that windows show.
#include "core/wide_win.h"

#include <windows.h>

namespace zorvi {

std::wstring Widen(std::string_view ansi) { return WidenFrom(ansi, CP_ACP); }

std::wstring WidenFrom(std::string_view bytes, unsigned codePage) {
    if (bytes.empty()) return {};
    const int length = MultiByteToWideChar(codePage, 0, bytes.data(),
                                           static_cast<int>(bytes.size()), nullptr, 0);
    if (length <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(codePage, 0, bytes.data(), static_cast<int>(bytes.size()), wide.data(),
                        length);
    return wide;
}

unsigned UsableCodePage(int requested) {
    if (requested > 0) {
        const auto codePage = static_cast<unsigned>(requested);
        // The system's own list is not enough: it names pages, such as
        // UTF-16, that the conversion refuses. One letter through the
        // conversion settles it.
        wchar_t probe[2] = {};
        if (IsValidCodePage(codePage) && MultiByteToWideChar(codePage, 0, "A", 1, probe, 2) == 1) {
            return codePage;
        }
    }
    return GetACP();
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
