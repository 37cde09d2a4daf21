// The check and error boxes: the title, text and buttons each routine gives its box.
#include <gtest/gtest.h>

#include <functional>

#include "core/mdlMain.h"
#include "core/messages_win.h"

namespace zorvi {
namespace {

TEST(Messages, BoxesCarryTheTitleTextAndButtonsOfTheirRoutine) {
    const auto check = [](const char* title, const wchar_t* text, UINT style) {
        return [=] {
            mdlMain::SetAppTitle(title);  // a second instance's has a blank appended
            const int pressed = ShowCheckMessage(nullptr, text, style);
            return mdlMain::SetAppTitle("Zorvi"), pressed;
        };
    };
    const auto error = [](long number, const wchar_t* description, const wchar_t* procedure) {
        return [=] { return ReportError(nullptr, number, description, procedure), IDOK; };
    };
    const struct {
        std::function<int()> show;
        std::wstring shown;  // title|text|style
        int pressed;         // which a check box returns
    } cases[] = {
        {check("Zorvi", L"a.mml\r\nOK?", MB_OKCANCEL | MB_ICONINFORMATION),
         L"Zorvi - Check|a.mml\r\nOK?|65", IDCANCEL},
        {check("Zorvi ", L"x", MB_YESNO), L"Zorvi  - Check|x|4", IDNO},
        // Nothing in the description is escaped; the number is written out, 0 too.
        {error(0, L"Odd (a: b)", L"Compile"), L"Zorvi - Error|Odd (a: b) (0:Compile)|48", IDOK},
        {error(-76, L"Gone", L"Play"), L"Zorvi - Error|Gone (-76:Play)|48", IDOK},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.shown));
        std::vector<std::wstring> shown;
        const MessageBoxFunction previous = SetMessageBoxFunction(
            [&](HWND, const std::wstring& text, const std::wstring& title, UINT style) {
                shown.push_back(title + L"|" + text + L"|" + std::to_wstring(style));
                return c.pressed;
            });
        EXPECT_EQ(c.show(), c.pressed);
        SetMessageBoxFunction(previous);
        EXPECT_EQ(shown, std::vector<std::wstring>{c.shown});
    }
}

}  // namespace
}  // namespace zorvi
