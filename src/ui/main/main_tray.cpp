// The main window in the task tray: the icon with its tip, its mouse
// messages, and coming back out of it.
#include "ui/main/frmZorvi.h"

#include <shellapi.h>

#include <algorithm>

#include "core/mdlMain.h"
#include "core/version.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "ui/main/main_parts.h"
#include "ui/main/menu_text.h"

namespace zorvi {

using namespace main_parts;

namespace {

constexpr UINT kTrayIconId = 1;

NOTIFYICONDATAW IconRecord(HWND window) {
    NOTIFYICONDATAW record{};
    record.cbSize = sizeof record;
    record.hWnd = window;
    record.uID = kTrayIconId;
    return record;
}

}  // namespace

std::wstring frmZorvi::TrayTip() const {
    const std::string& target = mdlMain::TargetFile();
    return Widen(TrayTipText(mdlMain::AppTitle(), VersionText(ThisVersion()), Watching(),
                             mdlFile::GetFileName(target)));
}

bool frmZorvi::NotifyTray(DWORD action) {
    NOTIFYICONDATAW record = IconRecord(Handle());
    record.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP;
    record.uCallbackMessage = kTrayMessage;
    record.hIcon = smallIcon_;
    // The platform holds 127 characters of tip; the file name is what is cut.
    const std::wstring tip = TrayTip();
    const std::size_t length = std::min(tip.size(), std::size(record.szTip) - 1);
    std::copy_n(tip.begin(), length, record.szTip);
    return Shell_NotifyIconW(action, &record) != FALSE;
}

void frmZorvi::AddIcon() {
    // Without a tray to hold the icon the window stays an ordinary minimised
    // one: hiding it would leave the user no way back.
    if (!NotifyTray(NIM_ADD)) return;
    ShowWindow(Handle(), SW_HIDE);
    inTray_ = true;
}

void frmZorvi::DeleteIcon() {
    if (!inTray_) return;
    NOTIFYICONDATAW record = IconRecord(Handle());
    Shell_NotifyIconW(NIM_DELETE, &record);
    inTray_ = false;
}

void frmZorvi::RefreshTrayIcon() {
    if (inTray_) NotifyTray(NIM_MODIFY);
}

void frmZorvi::CMD_OutIconFromTaskTray() {
    DeleteIcon();
    ShowWindow(Handle(), SW_SHOW);
    SetForegroundWindow(Handle());
    ShowWindow(Handle(), SW_RESTORE);
}

void frmZorvi::OnTrayMessage(LPARAM mouseMessage) {
    switch (LOWORD(mouseMessage)) {
    case WM_LBUTTONDBLCLK: CMD_OutIconFromTaskTray(); break;
    case WM_RBUTTONUP:
        SetForegroundWindow(Handle());
        CMD_ShowPopUp();
        break;
    default: break;
    }
}

UINT frmZorvi::TaskbarCreatedMessage() {
    static const UINT message = RegisterWindowMessageW(L"TaskbarCreated");
    return message;
}

void frmZorvi::OnTaskbarCreated() {
    // The shell restarted and forgot every icon: ours comes back if it was shown.
    if (inTray_) NotifyTray(NIM_ADD);
}

}  // namespace zorvi
