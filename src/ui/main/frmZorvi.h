// The main window, the launcher strip.
#pragma once

#include <string>

#include "ui/window_base.h"

namespace zorvi {

class frmZorvi : public BaseWindow<frmZorvi> {
public:
    static const wchar_t* ClassName() { return L"ZorviMain"; }

    // Creates the window hidden, owned by the application window.
    bool Create(HWND owner);
    // Sets the target file given on the command line (may be empty) and shows the window.
    void Start(const std::string& file);

private:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void ShowTarget();

    HWND targetLabel_ = nullptr;
};

}  // namespace zorvi
