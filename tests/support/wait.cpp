// Waiting in tests by polling a condition with a time limit, reading windows
// and record files, and finding the programs built beside the tests.
#include "support/wait.h"

#include <sstream>
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
    // WM_GETTEXT, not GetWindowText: another process's edit control answers only the message.
    const auto length = static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
    std::wstring text(length + 1, L'\0');
    text.resize(static_cast<std::size_t>(
        SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::string BesideTestProgram(const std::string& name) {
    char path[MAX_PATH] = {};
    const std::string program(path, GetModuleFileNameA(nullptr, path, MAX_PATH));
    return program.substr(0, program.find_last_of('\\') + 1) + name;
}

std::vector<std::pair<std::string, std::string>> KeyValueLines(const std::string& text) {
    std::vector<std::pair<std::string, std::string>> pairs;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (const auto equals = line.find('='); equals != std::string::npos) {
            pairs.emplace_back(line.substr(0, equals), line.substr(equals + 1));
        }
    }
    return pairs;
}

int Starts(const std::string& record) {
    int count = 0;
    for (const auto& line : KeyValueLines(record)) count += line.first == "cmdline";
    return count;
}

}  // namespace zorvi::testing
