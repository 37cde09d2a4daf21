// Reading a shortcut file with IShellLinkA and IPersistFile, and the shell's
// folder chooser. COM is started for each call and ended after it, so
// nothing else of the program needs it.
#include "ui/config/config_shell_win.h"

#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

#include <memory>

#include "core/wide_win.h"
#include "files/path_text.h"

namespace zorvi {
namespace {

struct Releaser {
    void operator()(IUnknown* object) const noexcept { object->Release(); }
};
template <typename T>
using ComObject = std::unique_ptr<T, Releaser>;

// COM for this thread while the object lives; ended only if it was started here.
class ComScope {
public:
    ComScope() : started_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComScope() {
        if (started_) CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    bool started_;
};

// Arguments may be longer than a path; the shell's own limit for them.
constexpr int kArgumentsBuffer = 1024;

std::string Cut(const std::string& buffer) { return mdlFile::TrimNull(buffer); }

}  // namespace

std::optional<LaunchTarget> ReadShortcut(const std::string& path) {
    const ComScope com;
    IShellLinkA* rawLink = nullptr;
    if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                                reinterpret_cast<void**>(&rawLink)))) {
        return std::nullopt;
    }
    const ComObject<IShellLinkA> link(rawLink);
    IPersistFile* rawFile = nullptr;
    if (FAILED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&rawFile)))) {
        return std::nullopt;
    }
    const ComObject<IPersistFile> file(rawFile);
    if (FAILED(file->Load(Widen(path).c_str(), STGM_READ))) return std::nullopt;

    LaunchTarget target;
    std::string buffer(mdlFile::kPathBuffer, '\0');
    WIN32_FIND_DATAA found{};
    if (link->GetPath(buffer.data(), static_cast<int>(buffer.size()), &found, 0) != S_OK) {
        return std::nullopt;  // a shortcut to no file (a printer, a control panel item)
    }
    target.path = Cut(buffer);
    buffer.assign(kArgumentsBuffer, '\0');
    if (SUCCEEDED(link->GetArguments(buffer.data(), kArgumentsBuffer)))
        target.arguments = Cut(buffer);
    buffer.assign(mdlFile::kPathBuffer, '\0');
    if (SUCCEEDED(link->GetWorkingDirectory(buffer.data(), static_cast<int>(buffer.size())))) {
        target.workingFolder = Cut(buffer);
    }
    int showCommand = SW_SHOWNORMAL;
    if (SUCCEEDED(link->GetShowCmd(&showCommand))) target.showCommand = showCommand;
    return target;
}

std::optional<std::string> BrowseForFolder(HWND owner, const std::wstring& title) {
    const ComScope com;
    BROWSEINFOW info{};
    info.hwndOwner = owner;
    info.lpszTitle = title.c_str();
    info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    const LPITEMIDLIST chosen = SHBrowseForFolderW(&info);
    if (chosen == nullptr) return std::nullopt;
    std::string path(mdlFile::kPathBuffer, '\0');
    const bool found = SHGetPathFromIDListA(chosen, path.data()) != FALSE;
    CoTaskMemFree(chosen);
    if (!found) return std::nullopt;
    return Cut(path);
}

}  // namespace zorvi
