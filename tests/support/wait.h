// Waiting in tests by polling a condition with a time limit, reading windows
// and record files, and finding the programs built beside the tests.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zorvi::testing {

using namespace std::chrono_literals;

// Checks a condition every 20 ms until it holds or the time is up.
bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit = 15s);

// The text of a window or control, of this process or another.
std::wstring WindowText(HWND window);

// A path in the folder of the running test program.
std::string BesideTestProgram(const std::string& name);

// "key=value" lines of a record file (CR LF or LF), in order; other lines skipped.
std::vector<std::pair<std::string, std::string>> KeyValueLines(const std::string& text);

// How many starts a stand-in's record holds: each begins with its "cmdline" line.
int Starts(const std::string& record);

}  // namespace zorvi::testing
