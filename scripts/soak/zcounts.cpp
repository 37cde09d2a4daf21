// zcounts.exe: what running processes hold, for the soak run (scripts/soak.sh).
//
// Usage:  zcounts.exe NAME [NAME...]
//   For every running process whose image is NAME (e.g. zorvi.exe; any case),
//   one line of name=value pairs:
//     handles      GetProcessHandleCount
//     handle_list  the process's entries in the system's handle list
//                  (NtQuerySystemInformation), for platforms where the first is 0
//     gdi          GetGuiResources(GR_GDIOBJECTS)
//     gdi_table    used entries of the process's GDI handle table (the PEB's
//                  GdiSharedHandleTable) that it or nobody owns: its GDI
//                  objects and the stock ones, for platforms where gdi is 0
//     user         GetGuiResources(GR_USEROBJECTS)
//     windows      the process's windows: top-level ones, hidden ones too,
//                  and all their children
//     threads      the process's threads in a process snapshot
//     pagefile_kb  committed memory (PROCESS_MEMORY_COUNTERS.PagefileUsage)
//   A figure that cannot be read is -1. A NAME with no running process gives
//   the line "NAME none".
// Exit code 0, or 2 when the process list cannot be read.
#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>
#include <winternl.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// The system handle list's rows (SystemExtendedHandleInformation).
constexpr ULONG kExtendedHandleInformation = 64;
struct HandleRow {
    PVOID object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG grantedAccess;
    USHORT creatorBackTraceIndex;
    USHORT objectTypeIndex;
    ULONG attributes;
    ULONG reserved;
};
struct HandleList {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleRow rows[1];
};

// One entry of a GDI handle table.
struct GdiEntry {
    UINT64 object;
    USHORT ownerProcessId;
    USHORT lockAndCount;
    USHORT unique;
    UCHAR type;
    UCHAR flags;
    UINT64 userPointer;
};
static_assert(sizeof(GdiEntry) == 24);
constexpr std::size_t kGdiTableEntries = 0x10000;
constexpr std::size_t kPebGdiTableOffset = 0xF8;  // PEB.GdiSharedHandleTable, 64-bit

long long HandleListCount(DWORD processId) {
    using Query = NTSTATUS(WINAPI*)(ULONG, PVOID, ULONG, PULONG);
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
    if (query == nullptr) return -1;
    // The list grows while it is read; a few tries with a bigger buffer, then give up.
    std::vector<unsigned char> buffer(1 << 20);
    for (int attempt = 0; attempt < 5; ++attempt) {
        ULONG needed = 0;
        const NTSTATUS status = query(kExtendedHandleInformation, buffer.data(),
                                      static_cast<ULONG>(buffer.size()), &needed);
        if (status == 0) {
            const auto* list = reinterpret_cast<const HandleList*>(buffer.data());
            long long count = 0;
            for (ULONG_PTR i = 0; i < list->count; ++i) count += list->rows[i].processId == processId;
            return count;
        }
        buffer.resize(std::max<std::size_t>(buffer.size() * 2, needed + 65536));
    }
    return -1;
}

long long GdiTableCount(HANDLE process, DWORD processId) {
    PROCESS_BASIC_INFORMATION basic{};
    ULONG length = 0;
    if (NtQueryInformationProcess(process, ProcessBasicInformation, &basic, sizeof basic, &length) != 0) {
        return -1;
    }
    UINT64 table = 0;
    SIZE_T read = 0;
    if (!ReadProcessMemory(process, static_cast<char*>(static_cast<void*>(basic.PebBaseAddress)) +
                                        kPebGdiTableOffset,
                           &table, sizeof table, &read) ||
        table == 0) {
        return -1;
    }
    std::vector<GdiEntry> entries(kGdiTableEntries);
    if (!ReadProcessMemory(process, reinterpret_cast<void*>(table), entries.data(),
                           entries.size() * sizeof(GdiEntry), &read)) {
        return -1;
    }
    long long count = 0;
    for (const GdiEntry& entry : entries) {
        count += entry.type != 0 && (entry.ownerProcessId == 0 ||
                                     entry.ownerProcessId == static_cast<USHORT>(processId));
    }
    return count;
}

struct WindowCount {
    DWORD processId;
    long long count;
};

BOOL CALLBACK CountChild(HWND, LPARAM context) {
    ++reinterpret_cast<WindowCount*>(context)->count;
    return TRUE;
}

BOOL CALLBACK CountTopLevel(HWND window, LPARAM context) {
    auto* windows = reinterpret_cast<WindowCount*>(context);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == windows->processId) {
        ++windows->count;
        EnumChildWindows(window, CountChild, context);
    }
    return TRUE;
}

void Report(const char* name, DWORD processId, DWORD threads) {
    long long handles = -1, gdi = -1, gdiTable = -1, user = -1, pagefileKb = -1;
    const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId);
    if (process != nullptr) {
        DWORD count = 0;
        if (GetProcessHandleCount(process, &count)) handles = count;
        gdi = GetGuiResources(process, GR_GDIOBJECTS);
        user = GetGuiResources(process, GR_USEROBJECTS);
        gdiTable = GdiTableCount(process, processId);
        PROCESS_MEMORY_COUNTERS memory{};
        memory.cb = sizeof memory;
        if (GetProcessMemoryInfo(process, &memory, sizeof memory)) {
            pagefileKb = static_cast<long long>(memory.PagefileUsage / 1024);
        }
        CloseHandle(process);
    }
    WindowCount windows{processId, 0};
    EnumWindows(CountTopLevel, reinterpret_cast<LPARAM>(&windows));
    std::printf("%s pid=%lu handles=%lld handle_list=%lld gdi=%lld gdi_table=%lld user=%lld "
                "windows=%lld threads=%lu pagefile_kb=%lld\n",
                name, processId, handles, HandleListCount(processId), gdi, gdiTable, user,
                windows.count, threads, pagefileKb);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: zcounts NAME [NAME...]\n");
        return 2;
    }
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return 2;
    struct Running {
        std::string image;
        DWORD id;
        DWORD threads;
    };
    std::vector<Running> running;
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32First(snapshot, &entry); more; more = Process32Next(snapshot, &entry)) {
        running.push_back({entry.szExeFile, entry.th32ProcessID, entry.cntThreads});
    }
    CloseHandle(snapshot);
    for (int i = 1; i < argc; ++i) {
        bool found = false;
        for (const Running& process : running) {
            if (lstrcmpiA(process.image.c_str(), argv[i]) != 0) continue;
            Report(argv[i], process.id, process.threads);
            found = true;
        }
        if (!found) std::printf("%s none\n", argv[i]);
    }
    std::fflush(stdout);
    return 0;
}
