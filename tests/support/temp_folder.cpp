// A fresh folder for one test, removed with everything in it afterwards.
#include "support/temp_folder.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace zorvi::testing {

TempFolder::TempFolder() {
    static std::atomic<int> counter{0};
    char base[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, base);
    // A name that is its own short name (process and counter, eight hex
    // digits). Wine makes up the short name of a longer one and finds it
    // again by reading the whole folder; in the shared temporary folder that
    // lookup now and then misses, and a compiler started by its short path
    // never runs.
    for (int attempt = 0; attempt < 1000 && path_.empty(); ++attempt) {
        char name[16] = {};
        std::snprintf(name, sizeof name, "z%07lx",
                      ((GetCurrentProcessId() & 0xFFFFul) << 12) | (counter++ & 0xFFFul));
        const std::string candidate = std::string(base) + name;
        if (CreateDirectoryA(candidate.c_str(), nullptr)) path_ = candidate;
    }
    if (path_.empty()) throw std::runtime_error("no temporary folder could be made");
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void TempFolder::Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(*this / name, std::ios::binary | std::ios::trunc) << bytes;
}

std::string TempFolder::Read(const std::string& name) const {
    std::ostringstream bytes;
    bytes << std::ifstream(*this / name, std::ios::binary).rdbuf();
    return bytes.str();
}

void Touch(const std::string& path) {
    const HANDLE file = CreateFileA(path.c_str(), FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES, 0,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
    FILETIME time{};
    GetFileTime(file, nullptr, nullptr, &time);
    ULARGE_INTEGER ticks{{time.dwLowDateTime, time.dwHighDateTime}};
    ticks.QuadPart += 100'000'000;
    time = {ticks.LowPart, ticks.HighPart};
    SetFileTime(file, nullptr, nullptr, &time);
    CloseHandle(file);
}

}  // namespace zorvi::testing
