// The check and error boxes: the title, text and buttons each routine gives its box.
#include <gtest/gtest.h>

#include "core/mdlMain.h"
#include "core/messages_win.h"

namespace zorvi {
namespace {

TEST(Messages, BoxesCarryTheTitleTextAndButtonsOfTheirRoutine) {
    std::vector<std::wstring> shown;  // title|text|style of each box
    const MessageBoxFunction previous = SetMessageBoxFunction(
        [&](HWND, const std::wstring& text, const std::wstring& title, UINT style) {
            shown.push_back(title + L"|" + text + L"|" + std::to_wstring(style));
            return IDNO;
        });
    mdlMain::SetAppTitle("Zorvi ");  // a second instance's has a blank appended
    EXPECT_EQ(ShowCheckMessage(nullptr, L"a.mml\r\nOK?", MB_YESNO | MB_ICONINFORMATION), IDNO);
    mdlMain::SetAppTitle("Zorvi");
    // Nothing in the description is escaped; the number is written out, 0 too.
    ReportError(nullptr, 0, L"Odd (a: b)", L"Compile");
    ReportError(nullptr, -76, L"Gone", L"Play");
    SetMessageBoxFunction(previous);
    EXPECT_EQ(shown, (std::vector<std::wstring>{L"Zorvi  - Check|a.mml\r\nOK?|68",
                                                L"Zorvi - Error|Odd (a: b) (0:Compile)|48",
                                                L"Zorvi - Error|Gone (-76:Play)|48"}));
}

}  // namespace
}  // namespace zorvi
