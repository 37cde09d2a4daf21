// The about window: the program's title, version and build date, a link to
// the maker's web page and, when expanded, the keyboard shortcuts.
#pragma once

#include <windows.h>

#include <array>
#include <string>

#include "core/handles_win.h"
#include "ui/window_base.h"

namespace zorvi {

class frmAbout : public BaseWindow<frmAbout> {
public:
    static const wchar_t* ClassName() { return L"ZorviAbout"; }

    // cmdCommand 0 closes the window, 1 shows or hides the shortcut keys.
    static constexpr int kCommandCount = 2;

    // homePage: the maker's web address; empty hides the link.
    explicit frmAbout(std::string homePage);
    ~frmAbout();

    // Creates the window hidden and collapsed, in the middle of the screen.
    bool Create(HWND owner);
    // Puts the shortcut keys of the current language into the text box and
    // shows the window in front, expanded or not as it was left.
    void ShowAbout();
    // Relabels every text in the current language, after a change of
    // Setting/Language.
    void ChangeLangAbout();
    // Button 1: shows or hides the shortcut keys, and sizes the window to match.
    void ToggleExpanded();
    bool Expanded() const { return expanded_; }
    // Closing by the close box or button 0: only hides, unless the program is
    // shutting down.
    void Unload();

    // What tests read back.
    HWND TextBox() const { return txtText_; }
    HWND Command(int index) const { return cmdCommand_[static_cast<std::size_t>(index) % 2]; }
    HWND VersionLabel() const { return lblVersion_; }
    HWND BuildLabel() const { return lblBuild_; }
    HWND LinkLabel() const { return lblLabel2_; }

private:
    friend class BaseWindow<frmAbout>;
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // Every key reaches the window before its controls; true when it was used.
    bool Form_KeyDown(HWND from, int keyCode, int shiftState);
    static LRESULT CALLBACK ControlProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                        UINT_PTR id, DWORD_PTR data) noexcept;
    void CreateControls();
    void ApplyFonts(const std::wstring& shown);
    void Layout();
    SIZE WindowSize() const;
    int Scaled(int pixels) const;
    void OpenHomePage();

    std::string homePage_;
    bool expanded_ = false;
    bool visited_ = false;
    int dpi_ = 96;
    HWND picLogo_ = nullptr;
    HWND lblTitle_ = nullptr;
    HWND lblVersion_ = nullptr;
    HWND lblBuild_ = nullptr;
    HWND lblLabel2_ = nullptr;
    std::array<HWND, kCommandCount> cmdCommand_{};
    HWND txtText_ = nullptr;
    UniqueIcon logo_;
    UniqueFont font_, titleFont_, linkFont_;
};

// The process-wide about window, created on first use with this owner (the
// main window, so that it stays in front of it).
frmAbout& AboutWindow(HWND owner = nullptr);
// The main window's shut-down: with the shutting-down flag set, this
// destroys the about window if there is one.
void ReleaseAboutWindow();

}  // namespace zorvi
