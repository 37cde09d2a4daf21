// A fresh folder for one test, removed with everything in it afterwards.
#include "support/temp_folder.h"

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace zorvi::testing {

TempFolder::TempFolder() {
    static std::atomic<int> counter{0};
    char base[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, base);
    for (int attempt = 0; attempt < 1000 && path_.empty(); ++attempt) {
        const std::string candidate = std::string(base) + "zorvi-test-" +
            std::to_string(GetCurrentProcessId()) + "-" + std::to_string(counter++);
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
