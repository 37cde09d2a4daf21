// From an error message in the log window to its line in the editor.
#pragma once

#include <windows.h>

namespace zorvi {

// Whether a message to the log's text box asks for the line it stands on to
// be opened: a double click, or Enter.
bool IsOpenLineRequest(UINT message, WPARAM wParam);

// Answers such a message: a double click is first left to the box, which
// selects the clicked word; then, when the clicked line (for Enter the
// caret's) names a line of the target file (by its long or its short name),
// the target is opened in the editor there. Enter is swallowed, so the read-only box does
// not complain about it. Returns what the box returns.
LRESULT OpenErrorLine(HWND textBox, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace zorvi
