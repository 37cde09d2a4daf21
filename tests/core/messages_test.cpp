// The check and error boxes: titles, texts and styles as the user sees them.
#include <gtest/gtest.h>

#include "core/mdlMain.h"
#include "core/messages_win.h"

namespace zorvi {
namespace {

struct Shown {
    HWND owner;
    std::wstring text, title;
    UINT style;
};

// Records every box and answers it with a chosen button.
class BoxRecorder {
public:
    explicit BoxRecorder(int answer) {
        previous_ = SetMessageBoxFunction(
            [this, answer](HWND owner, const std::wstring& text, const std::wstring& title,
                           UINT style) {
                shown.push_back({owner, text, title, style});
                return answer;
            });
    }
    ~BoxRecorder() { SetMessageBoxFunction(std::move(previous_)); }
    std::vector<Shown> shown;

private:
    MessageBoxFunction previous_;
};

TEST(Messages, CheckMessageShowsTextAndStyleUnderCheckTitle) {
    const struct {
        std::wstring text;
        UINT style;
        int answer;
    } cases[] = {
        {L"File not found.\r\n", MB_ICONINFORMATION, IDOK},
        {L"a.mml\r\nThis file is set as a target.\r\nOK?", MB_YESNO | MB_ICONQUESTION, IDNO},
        {L"", MB_OK, IDOK},
        {L"Zorvi はすでに起動しています。", MB_ICONINFORMATION | MB_OK, IDYES},
    };
    for (const auto& c : cases) {
        BoxRecorder boxes(c.answer);
        EXPECT_EQ(ShowCheckMessage(nullptr, c.text, c.style), c.answer);
        ASSERT_EQ(boxes.shown.size(), 1u);
        EXPECT_EQ(boxes.shown[0].title, L"Zorvi - Check");
        EXPECT_EQ(boxes.shown[0].text, c.text);
        EXPECT_EQ(boxes.shown[0].style, c.style);
        EXPECT_EQ(boxes.shown[0].owner, nullptr);
    }
}

TEST(Messages, ErrorReportNamesNumberAndCommand) {
    const struct {
        const wchar_t* description;
        long number;
        const wchar_t* procedure;
        const wchar_t* text;
    } cases[] = {
        {L"Path not found", 76, L"Play", L"Path not found (76:Play)"},
        {L"Overflow", 0, L"Compile", L"Overflow (0:Compile)"},
        {L"Odd (text: here)", -2147024894L, L"Config-WriteIniFile",
         L"Odd (text: here) (-2147024894:Config-WriteIniFile)"},
        {L"", 5, L"", L" (5:)"},
    };
    for (const auto& c : cases) {
        BoxRecorder boxes(IDOK);
        ReportError(nullptr, c.number, c.description, c.procedure);
        ASSERT_EQ(boxes.shown.size(), 1u);
        EXPECT_EQ(boxes.shown[0].text, c.text);
        EXPECT_EQ(boxes.shown[0].title, L"Zorvi - Error");
        EXPECT_EQ(boxes.shown[0].style, static_cast<UINT>(MB_OK | MB_ICONEXCLAMATION));
    }
}

TEST(Messages, TitleFollowsTheApplicationTitle) {
    const std::string saved = mdlMain::AppTitle();
    mdlMain::SetAppTitle("Zorvi ");
    BoxRecorder boxes(IDOK);
    ShowCheckMessage(nullptr, L"x", MB_OK);
    mdlMain::SetAppTitle(saved);
    ASSERT_EQ(boxes.shown.size(), 1u);
    EXPECT_EQ(boxes.shown[0].title, L"Zorvi  - Check");
}

}  // namespace
}  // namespace zorvi
