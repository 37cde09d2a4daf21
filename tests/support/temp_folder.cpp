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
                                      std::to_string(GetCurrentProcessId()) + "-" +
                                      std::to_string(counter++);
        if (CreateDirectoryA(candidate.c_str(), nullptr)) path_ = candidate;
    }
    if (path_.empty()) throw std::runtime_error("no temporary folder could be made");
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void TempFolder::Write(const std::string& name, const std::string& bytes) const {
    std::ofstream out(*this / name, std::ios::binary | std::ios::trunc);
    out << bytes;
}

std::string TempFolder::Read(const std::string& name) const {
    std::ifstream in(*this / name, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

}  // namespace zorvi::testing
