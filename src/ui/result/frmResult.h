// The result window: the compiler's log for the target file, with the verdict
// of the last compile, in a read-only text box that fills the window.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/handles_win.h"
#include "ui/window_base.h"

namespace zorvi {

class frmResult : public BaseWindow<frmResult> {
public:
    static const wchar_t* ClassName() { return L"ZorviResult"; }

    frmResult() = default;
    ~frmResult();

    // Creates the window hidden and places it from ResultWindow/Left, Top,
    // Width and Height.
    bool Create();
    // Fills the text box from logPath, or when it is empty from the log of
    // the current target file (mode 0 plain, 1 compile error, 2 zero-byte
    // output), and brings the window to the front. A log that cannot be read
    // leaves the text as it was, and the window too unless this is a
    // command-line run, where it is shown all the same.
    void ShowResult(int mode, const std::string& logPath = {});
    // Relabels the window in the current language after a change of
    // Setting/Language: the caption, and the verdict or the missing-log
    // line before the log. The log itself stays as it was shown.
    void ChangeLangResult();
    // The hide of AutoClose. In a command-line run there is no way back to a
    // hidden window, so there it closes the window and with it the run.
    void HideResult();
    // Closing by the close box or by the program: saves the place when the
    // window is in its normal state; ends a command-line run; otherwise only
    // hides, unless the program is shutting down.
    void Unload();

    HWND TextBox() const { return txtText_; }

private:
    friend class BaseWindow<frmResult>;
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // Every key reaches the window before the text box; true when it was used.
    bool Form_KeyDown(int keyCode, int shiftState);
    void SavePlacement();
    // A font with glyphs for every character of the text to be shown.
    void ApplyFont(std::wstring_view shown);
    static LRESULT CALLBACK TextBoxProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                        UINT_PTR id, DWORD_PTR data) noexcept;

    UniqueFont font_;
    HWND txtText_ = nullptr;
    std::string captionLog_;  // the log named in the caption; empty when none is
    // What stands before the log as shown (the verdict header, or the whole
    // text when the log was missing), and whether the log was missing.
    std::wstring shownFrame_;
    int shownMode_ = 0;
    bool shownMissing_ = false;
};

// The process-wide result window, created on first use.
frmResult& ResultWindow();
// The main window's shut-down: unloads the result window if there is one
// (with the shutting-down flag set, that saves its place and destroys it).
void ReleaseResultWindow();
// After a change of language: the result window's caption, if it exists.
void RelabelResultWindow();

// Serves messages while the result window is shown, for the command-line runs
// that have no main window; returns once it is closed or hidden.
int RunResultWindowUntilClosed();

// Called with the log's path between its existence test and its read; tests
// make the log vanish there. None unless a test sets one.
void SetBeforeLogReadForTesting(std::function<void(const std::string& log)> hook);

}  // namespace zorvi
