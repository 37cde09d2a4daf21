// What the benchmark stopwatches share: the clock, the printing of runs and
// medians, and finding a program's windows.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace stopwatch {

inline double NowMs() {
    static const double frequency = [] {
        LARGE_INTEGER value{};
        QueryPerformanceFrequency(&value);
        return static_cast<double>(value.QuadPart);
    }();
    LARGE_INTEGER count{};
    QueryPerformanceCounter(&count);
    return 1000.0 * static_cast<double>(count.QuadPart) / frequency;
}

inline double Median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

inline void PrintRuns(const char* name, const std::vector<double>& values) {
    std::printf("  %-28s", name);
    for (const double value : values) std::printf(" %.0f", value);
    std::printf("\n");
}

inline void PrintMedian(const char* name, const std::vector<double>& values) {
    std::printf("%-36s: %.1f ms (median of %zu)\n", name, Median(values), values.size());
}

inline bool Exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

namespace detail {

struct WindowQuery {
    DWORD processId;
    const char* windowClass;
    bool visibleOnly;
    HWND found;
};

inline BOOL CALLBACK MatchWindow(HWND window, LPARAM param) {
    auto* query = reinterpret_cast<WindowQuery*>(param);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    char name[64] = {};
    GetClassNameA(window, name, sizeof name);
    if (owner != query->processId || lstrcmpA(name, query->windowClass) != 0 ||
        (query->visibleOnly && !IsWindowVisible(window))) {
        return TRUE;
    }
    query->found = window;
    return FALSE;
}

}  // namespace detail

// A top-level window of the class that the process owns; a hidden one only
// when visibleOnly is false (the log window exists hidden from the start).
inline HWND FindOwnWindow(DWORD processId, const char* windowClass, bool visibleOnly) {
    detail::WindowQuery query{processId, windowClass, visibleOnly, nullptr};
    EnumWindows(detail::MatchWindow, reinterpret_cast<LPARAM>(&query));
    return query.found;
}

}  // namespace stopwatch
