// From an error message in the log window to its line in the editor: reads
// the caret's line out of the text box; error_line.cpp decides what it names.
#include "ui/result/error_line_win.h"

#include <commctrl.h>

#include <optional>
#include <string>

#include "core/mdlMain.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "run/play.h"
#include "ui/result/error_line.h"

namespace zorvi {
namespace {

// The line under the pointer for a double click (a click at the very start
// of a line may leave the selection on the line before), else the caret's.
LRESULT LineAsked(HWND textBox, UINT message, LPARAM lParam) {
    if (message == WM_LBUTTONDBLCLK) {
        return HIWORD(SendMessageW(textBox, EM_CHARFROMPOS, 0, lParam));
    }
    return SendMessageW(textBox, EM_LINEFROMCHAR, static_cast<WPARAM>(-1), 0);
}

std::wstring LineText(HWND textBox, LRESULT line) {
    const auto start = SendMessageW(textBox, EM_LINEINDEX, static_cast<WPARAM>(line), 0);
    if (start < 0) return {};
    const auto length = SendMessageW(textBox, EM_LINELENGTH, static_cast<WPARAM>(start), 0);
    if (length <= 0) return {};
    // EM_GETLINE takes the buffer's size in its first character.
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    text[0] = static_cast<wchar_t>(text.size() > 0xFFFF ? 0xFFFF : text.size());
    const auto copied = SendMessageW(textBox, EM_GETLINE, static_cast<WPARAM>(line),
                                     reinterpret_cast<LPARAM>(text.data()));
    text.resize(copied > 0 ? static_cast<std::size_t>(copied) : 0);
    return text;
}

// The compile may have run on the short (8.3) name, which the log then shows.
std::optional<int> LineOfTarget(const std::string& logLine, const std::string& target) {
    if (const auto line = ErrorLineFor(logLine, mdlFile::GetFileName(target))) return line;
    const std::string shortName = mdlFile::GetFileName(mdlFile::GetShortPath(target));
    return ErrorLineFor(logLine, shortName);
}

}  // namespace

bool IsOpenLineRequest(UINT message, WPARAM wParam) {
    return message == WM_LBUTTONDBLCLK || (message == WM_CHAR && wParam == L'\r');
}

LRESULT OpenErrorLine(HWND textBox, UINT message, WPARAM wParam, LPARAM lParam) {
    const LRESULT result =
        message == WM_CHAR ? 0 : DefSubclassProc(textBox, message, wParam, lParam);
    try {
        const std::string target = mdlMain::TargetFile();
        if (target.empty()) return result;
        const std::wstring text = LineText(textBox, LineAsked(textBox, message, lParam));
        if (const auto line = LineOfTarget(Narrow(text), target)) {
            OpenEditorAtLine(GetParent(textBox), *line);
        }
    } catch (...) {
        // Nothing opens; the log stays as it is.
    }
    return result;
}

}  // namespace zorvi
