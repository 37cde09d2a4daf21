// The two routines that put the program's messages on the screen.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace zorvi {

// Notices and questions: title "<application title> - Check"; returns the
// button pressed (IDOK, IDYES, ...).
int ShowCheckMessage(HWND owner, const std::wstring& text, UINT style);

// A trapped failure of one of the user's commands: "description (number:procedure)"
// under "<application title> - Error", OK with the exclamation icon.
void ReportError(HWND owner, long errorNumber, const std::wstring& description,
                 const std::wstring& procedureName);

// Every box goes through this one function; tests put their own in to see
// and answer the boxes. An empty function restores the platform's box.
using MessageBoxFunction =
    std::function<int(HWND owner, const std::wstring& text, const std::wstring& title, UINT style)>;
MessageBoxFunction SetMessageBoxFunction(MessageBoxFunction function);

}  // namespace zorvi
