// Waiting in tests by polling a condition with a time limit, and finding the
// programs built beside the tests.
#include "support/wait.h"

#include <windows.h>

#include <thread>

namespace zorvi::testing {

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

std::wstring WindowText(HWND window) {
    const auto length = static_cast<int>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    const auto got = static_cast<int>(
        SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data())));
    text.resize(static_cast<std::size_t>(got));
    return text;
}

std::string BesideTestProgram(const std::string& name) {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string folder = path;
    folder.erase(folder.find_last_of('\\') + 1);
    return folder + name;
}

std::vector<std::pair<std::string, std::string>> KeyValueLines(const std::string& text) {
    std::vector<std::pair<std::string, std::string>> pairs;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(at, end - at);
        at = end + 1;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos) continue;
        pairs.emplace_back(line.substr(0, equals), line.substr(equals + 1));
    }
    return pairs;
}

}  // namespace zorvi::testing
