// What the files of the main window share: its settings file, caption,
// control ids and a few measurements of windows and files.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "core/mdlMain.h"
#include "core/text.h"
#include "core/version.h"
#include "core/wide_win.h"
#include "files/path_win.h"
#include "settings/schema.h"
#include "ui/main/layout.h"
#include "ui/main/mdlView.h"
#include "ui/main/watch.h"

namespace zorvi::main_parts {

namespace keys = settings::main_file;
namespace config_keys = settings::config_file;

inline constexpr UINT_PTR kWatchTimerId = 1;
// A one-shot look at the target soon, after a compile during which saves
// were refused. Ten milliseconds is the shortest wait a window timer gives.
inline constexpr UINT_PTR kLookAgainTimerId = 2;
inline constexpr UINT kLookAgainMs = 10;
inline constexpr int kComboId = 3001;
inline constexpr int kIconCount = 8;  // resource icons 101..108: image n is icon 100 + n
// The launcher list opens this many closed-list heights downwards.
inline constexpr int kDropDownRows = 8;

inline std::wstring Caption(const std::string& target) {
    return Widen(MainCaption(target, mdlMain::AppTitle(), VersionText(ThisVersion())));
}

// The target's last-write time in FILETIME ticks; nullopt when it is no file.
inline std::optional<std::uint64_t> LastWriteTime(const std::string& path) {
    if (path.empty() || !mdlFile::FileExists(path)) return std::nullopt;
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
    return (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
           data.ftLastWriteTime.dwLowDateTime;
}

inline bool EndsWithExe(const std::string& path) { return AsciiLower(path).ends_with(".exe"); }

inline int Height(const RECT& rect) { return rect.bottom - rect.top; }
inline int Width(const RECT& rect) { return rect.right - rect.left; }

// The per-monitor DPI of a window where the system can tell it (Windows 10
// and Wine), else the screen's.
inline UINT WindowDpi(HWND window) {
    using GetDpiForWindowFunction = UINT(WINAPI*)(HWND);
    static const auto getDpiForWindow =
        reinterpret_cast<GetDpiForWindowFunction>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    if (getDpiForWindow != nullptr && window != nullptr) {
        if (const UINT dpi = getDpiForWindow(window); dpi != 0) return dpi;
    }
    return static_cast<UINT>(GetScreenDpi().x);
}

// The message font at a DPI, so that a window on a 144-DPI screen reads as
// large as its icons.
inline NONCLIENTMETRICSW MetricsForDpi(UINT dpi) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    using ForDpiFunction = BOOL(WINAPI*)(UINT, UINT, PVOID, UINT, UINT);
    static const auto forDpi = reinterpret_cast<ForDpiFunction>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"user32.dll"), "SystemParametersInfoForDpi")));
    if (forDpi == nullptr || !forDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi)) {
        SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    }
    return metrics;
}

}  // namespace zorvi::main_parts
