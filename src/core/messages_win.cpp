// The two routines that put the program's messages on the screen.
#include "core/messages_win.h"

#include "core/mdlMain.h"
#include "core/wide_win.h"

namespace zorvi {
namespace {

MessageBoxFunction& CurrentBox() {
    static MessageBoxFunction box;
    return box;
}

int ShowBox(HWND owner, const std::wstring& text, const std::wstring& title, UINT style) {
    if (const MessageBoxFunction& box = CurrentBox()) return box(owner, text, title, style);
    return MessageBoxW(owner, text.c_str(), title.c_str(), style);
}

}  // namespace

MessageBoxFunction SetMessageBoxFunction(MessageBoxFunction function) {
    MessageBoxFunction previous = std::move(CurrentBox());
    CurrentBox() = std::move(function);
    return previous;
}

int ShowCheckMessage(HWND owner, const std::wstring& text, UINT style) {
    SetForegroundWindow(owner);
    return ShowBox(owner, text, Widen(mdlMain::AppTitle()) + L" - Check", style);
}

void ReportError(HWND owner, long errorNumber, const std::wstring& description,
                 const std::wstring& procedureName) {
    SetForegroundWindow(owner);
    const std::wstring text =
        description + L" (" + std::to_wstring(errorNumber) + L":" + procedureName + L")";
    ShowBox(owner, text, Widen(mdlMain::AppTitle()) + L" - Error", MB_OK | MB_ICONEXCLAMATION);
}

}  // namespace zorvi
