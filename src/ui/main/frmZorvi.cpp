// The main window, the launcher strip. For now it carries the caption and the
// target file; toolbar, status bar and commands join it as they are built.
#include "ui/main/frmZorvi.h"

#include "core/mdlMain.h"
#include "core/version.h"
#include "core/wide_win.h"
#include "files/path_win.h"
#include "res/resource.h"
#include "settings/ini_win.h"

namespace zorvi {
namespace {

// Default size of the strip: 4410 x 1064 twips.
int TwipsToPixels(int twips, int dotsPerInch) { return MulDiv(twips, dotsPerInch, 1440); }

int ScreenDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
}

}  // namespace

bool frmZorvi::Create(HWND owner) {
    const std::wstring caption =
        Widen(mdlMain::AppTitle() + " v" + VersionText(ThisVersion()));
    const int dpi = ScreenDpi();
    const HICON icon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_APP));
    // WS_EX_APPWINDOW: the window is owned by the hidden application window
    // but still gets its own taskbar button.
    if (!CreateNative(WS_EX_APPWINDOW, caption.c_str(), WS_OVERLAPPEDWINDOW, 0, 0,
                      TwipsToPixels(4410, dpi), TwipsToPixels(1064, dpi), owner, icon)) {
        return false;
    }
    targetLabel_ = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | SS_PATHELLIPSIS,
                                   8, 8, 0, 0, Handle(), nullptr, GetModuleHandleW(nullptr),
                                   nullptr);
    SendMessageW(targetLabel_, WM_SETFONT,
                 reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    mdlMain::WindowOpened();
    return true;
}

void frmZorvi::Start(const std::string& file) {
    if (!file.empty()) {
        mdlMain::SetTargetFile(mdlFile::GetLongPath(file));
    } else if (ReadIniFlag(settings::main_file::kAutoSetFile, mdlMain::MainSettingsPath())) {
        const std::string last =
            ReadIni(settings::main_file::kHistorySection,
                    std::string(settings::main_file::kHistorySlotPrefix) + "0", "",
                    mdlMain::MainSettingsPath());
        if (mdlFile::FileExists(last)) mdlMain::SetTargetFile(last);
    }
    ShowTarget();
    ShowWindow(Handle(), SW_SHOWNORMAL);
    UpdateWindow(Handle());
}

void frmZorvi::ShowTarget() {
    SetWindowTextW(targetLabel_, Widen(mdlMain::TargetFile()).c_str());
}

LRESULT frmZorvi::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        MoveWindow(targetLabel_, 8, 8, LOWORD(lParam) - 16, HIWORD(lParam) - 16, TRUE);
        return 0;
    case WM_DESTROY:
        mdlMain::SetShuttingDown();
        mdlMain::WindowClosed();
        return 0;
    default:
        return BaseWindow::HandleMessage(message, wParam, lParam);
    }
}

}  // namespace zorvi
