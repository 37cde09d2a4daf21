// Where the configuration window's controls go on each page: rows of one
// height, labels in a column as wide as their longest text, lists and
// script boxes taking whatever room is left.
#include "ui/config/frmConfig.h"

#include <algorithm>

#include "res/string_ids.h"
#include "ui/config/config_parts.h"

namespace zorvi {
namespace {

using config_parts::Place;

// Drop-down lists open this much below their box.
constexpr int kDropDown = 160;
// Window-state lists and the two number boxes, at 96 DPI.
constexpr int kStateWidth = 110;
constexpr int kNumberWidth = 56;

}  // namespace

frmConfig::Metrics frmConfig::Measure() const {
    Metrics m{};
    TEXTMETRICW text{};
    if (const UniqueScreenDC screen(GetDC(nullptr)); screen) {
        const HGDIOBJ old = SelectObject(screen.get(), font_.get());
        GetTextMetricsW(screen.get(), &text);
        SelectObject(screen.get(), old);
    }
    m.text = std::max<int>(text.tmHeight, Scale(13));
    m.margin = Scale(6);
    m.gap = Scale(4);
    m.pad = Scale(10);
    RECT combo{};
    GetWindowRect(cboCombo(1), &combo);
    m.row = std::max<int>(combo.bottom - combo.top, m.text + Scale(8));
    m.check = std::max(Scale(17), m.text + Scale(4));
    m.button = std::max(Scale(23), m.text + Scale(10));
    m.buttonWidth = Scale(75);
    for (const HWND button : cmdCommand_) {
        m.buttonWidth = std::max(m.buttonWidth, TextWidth(button) + Scale(20));
    }
    m.caption = m.text + Scale(6);
    return m;
}

HWND frmConfig::Label(int captionId) const {
    for (const Captioned& entry : captions_) {
        if (entry.captionId == captionId) return entry.control;
    }
    return nullptr;
}

int frmConfig::PlaceLabel(int captionId, int x, int rowY, const Metrics& m) const {
    const HWND label = Label(captionId);
    const int width = TextWidth(label);
    Place(label, x, rowY + (m.row - m.text) / 2, width, m.text);
    return x + width;
}

void frmConfig::LayoutBasicPage(const Metrics& m, int width, int) {
    const int x0 = m.margin;
    const int w = width - 2 * m.margin;
    const int left = x0 + m.pad;

    // Option: the nine switches, then the timer and the icon size in one row.
    int y = m.margin;
    int cy = y + m.caption;
    for (const HWND option : chkOption_) {
        Place(option, left, cy, w - 2 * m.pad, m.check);
        cy += m.check;
    }
    cy += m.gap;
    int x = PlaceLabel(ids::kLabelTimerInterval, left, cy, m) + m.gap;
    Place(txtText(0), x, cy, Scale(kNumberWidth), m.row);
    x = PlaceLabel(ids::kLabelMsec, x + Scale(kNumberWidth) + m.gap, cy, m) + Scale(24);
    x = PlaceLabel(ids::kLabelIconSize, x, cy, m) + m.gap;
    Place(txtText(1), x, cy, Scale(kNumberWidth), m.row);
    PlaceLabel(ids::kLabelPt, x + Scale(kNumberWidth) + m.gap, cy, m);
    cy += m.row + m.pad;
    Place(frames_[ids::kFrameOption - ids::kFrameLanguage], x0, y, w, cy - y);

    // Editor, and the language beside it.
    const int languageWidth =
        std::max(TextWidth(optLanguage(0)), TextWidth(optLanguage(1))) + Scale(24) + 2 * m.pad;
    const int editorWidth = w - languageWidth - m.margin;
    y = cy + m.margin;
    cy = y + m.caption;
    Place(cboCombo(4), left, cy, editorWidth - 2 * m.pad - m.buttonWidth - m.gap,
          m.row + Scale(kDropDown));
    Place(cmdCommand(kReferEditor), x0 + editorWidth - m.pad - m.buttonWidth,
          cy + (m.row - m.button) / 2, m.buttonWidth, m.button);
    cy += m.row + m.gap;
    x = PlaceLabel(ids::kLabelEditorWindowState, left, cy, m) + m.gap;
    Place(cboCombo(5), x, cy, Scale(kStateWidth), m.row + Scale(kDropDown));
    cy += m.row + m.gap;
    Place(chkCheck(5), left, cy, editorWidth - 2 * m.pad, m.check);
    cy += m.check + m.pad;
    Place(frames_[ids::kFrameEditor - ids::kFrameLanguage], x0, y, editorWidth, cy - y);
    const int languageX = x0 + editorWidth + m.margin;
    Place(frames_[0], languageX, y, languageWidth, cy - y);
    for (int i = 0; i < 2; ++i) {
        Place(optLanguage(i), languageX + m.pad, y + m.caption + i * m.check,
              languageWidth - 2 * m.pad, m.check);
    }
}

void frmConfig::LayoutCompilePage(const Metrics& m, int width, int) {
    const int x0 = m.margin;
    const int w = width - 2 * m.margin;
    const int left = x0 + m.pad;
    const int right = x0 + w - m.pad;
    const int column = std::max({TextWidth(Label(ids::kLabelConsoleWindowState)),
                                 TextWidth(Label(ids::kLabelGeneratedExtension)),
                                 TextWidth(Label(ids::kLabelPlayerWindowState))}) +
                       m.gap * 2;
    const auto pathRow = [&](HWND box, int refer, int cy, bool dropDown) {
        Place(box, left, cy, right - m.buttonWidth - m.gap - left,
              m.row + (dropDown ? Scale(kDropDown) : 0));
        Place(cmdCommand(refer), right - m.buttonWidth, cy + (m.row - m.button) / 2, m.buttonWidth,
              m.button);
    };

    // Console application.
    int y = m.margin;
    int cy = y + m.caption;
    Place(chkCheck(0), left, cy, right - left, m.check);
    cy += m.check + m.gap;
    pathRow(txtText(2), kReferConsole, cy, false);
    cy += m.row + m.gap;
    PlaceLabel(ids::kLabelConsoleWindowState, left, cy, m);
    Place(cboCombo(1), left + column, cy, Scale(kStateWidth), m.row + Scale(kDropDown));
    cy += m.row + m.gap;
    PlaceLabel(ids::kLabelGeneratedExtension, left, cy, m);
    Place(txtText(3), left + column, cy, Scale(kNumberWidth), m.row);
    cy += m.row + m.gap;
    for (const int i : {2, 3, 4}) {
        Place(chkCheck(i), left, cy, right - left, m.check);
        cy += m.check;
    }
    cy += m.pad;
    Place(frames_[ids::kFrameConsoleApplication - ids::kFrameLanguage], x0, y, w, cy - y);

    // Player.
    y = cy + m.margin;
    cy = y + m.caption;
    Place(chkCheck(1), left, cy, right - left, m.check);
    cy += m.check + m.gap;
    pathRow(cboCombo(2), kReferPlayer, cy, true);
    cy += m.row + m.gap;
    PlaceLabel(ids::kLabelPlayerWindowState, left, cy, m);
    Place(cboCombo(3), left + column, cy, Scale(kStateWidth), m.row + Scale(kDropDown));
    // Beside the window state when its text fits there, else below it.
    const int associatedX = left + column + Scale(kStateWidth) + Scale(16);
    if (associatedX + TextWidth(chkCheck(7)) + Scale(24) <= right) {
        Place(chkCheck(7), associatedX, cy + (m.row - m.check) / 2, right - associatedX, m.check);
        cy += m.row;
    } else {
        cy += m.row + m.gap;
        Place(chkCheck(7), left, cy, right - left, m.check);
        cy += m.check;
    }
    cy += m.pad;
    Place(frames_[ids::kFramePlayer - ids::kFrameLanguage], x0, y, w, cy - y);
}

void frmConfig::LayoutScriptPage(const Metrics& m, int width, int height) {
    const int x0 = m.margin;
    const int w = width - 2 * m.margin;
    // The script gets the larger share: it is what is edited most.
    const int scriptHeight = (height - 3 * m.margin) * 11 / 20;
    Place(txtScript(0), x0, m.margin, w, scriptHeight);
    const int y = m.margin * 2 + scriptHeight;
    const int frameHeight = height - m.margin - y;
    Place(frames_[ids::kFrameRequiredFiles - ids::kFrameLanguage], x0, y, w, frameHeight);
    const int right = x0 + w - m.pad;
    Place(cmdCommand(kReferRequiredFile), right - m.buttonWidth, y + m.caption, m.buttonWidth,
          m.button);
    Place(txtScript(1), x0 + m.pad, y + m.caption, right - m.buttonWidth - m.gap - x0 - m.pad,
          frameHeight - m.caption - m.pad);
}

frmConfig::RecordPage frmConfig::LayoutRecordList(const Metrics& m, int width, int height,
                                                  int frameId, HWND list,
                                                  std::initializer_list<int> buttons,
                                                  int fieldsHeight) {
    const int x0 = m.margin;
    const int w = width - 2 * m.margin;
    const int left = x0 + m.pad;
    const int right = x0 + w - m.pad;
    const int top = m.margin + m.caption;
    const int listBottom = height - m.margin - m.pad - fieldsHeight;
    Place(frames_[frameId - ids::kFrameLanguage], x0, m.margin, w, height - 2 * m.margin);
    int by = top;
    for (const int index : buttons) {
        Place(cmdCommand(index), right - m.buttonWidth, by, m.buttonWidth, m.button);
        by += m.button + m.gap;
    }
    Place(list, left, top, right - m.buttonWidth - m.gap - left, listBottom - top);
    return {left, right, listBottom + m.gap};
}

void frmConfig::LayoutFrontendPage(const Metrics& m, int width, int height) {
    // The record fields at the bottom; the list and its buttons above them.
    const auto [left, right, fieldsTop] = LayoutRecordList(
        m, width, height, ids::kFrameFileFrontend, List1(1),
        {kNewFrontend, kDeleteFrontend, kUpFrontend, kDownFrontend, kExecuteFrontend},
        5 * (m.row + m.gap) + m.check + m.gap);

    int column = 0;
    for (int id = ids::kLabelFrontendName; id <= ids::kLabelFrontendWindowState; ++id) {
        column = std::max(column, TextWidth(Label(id)));
    }
    column += m.gap * 2;
    int cy = fieldsTop;
    for (int field = kFrontendName; field <= kFrontendFolder; ++field) {
        PlaceLabel(ids::kLabelFrontendName + field, left, cy, m);
        const bool refer = field == kFrontendCommand || field == kFrontendFolder;
        const int boxRight = refer ? right - m.buttonWidth - m.gap : right;
        Place(txtFrontend(static_cast<FrontendField>(field)), left + column, cy,
              boxRight - left - column, m.row);
        if (refer) {
            Place(cmdCommand(field == kFrontendCommand ? kReferFrontendCommand
                                                       : kReferFrontendFolder),
                  right - m.buttonWidth, cy + (m.row - m.button) / 2, m.buttonWidth, m.button);
        }
        cy += m.row + m.gap;
    }
    PlaceLabel(ids::kLabelFrontendWindowState, left, cy, m);
    Place(cboCombo(6), left + column, cy, Scale(kStateWidth), m.row + Scale(kDropDown));
    cy += m.row + m.gap;
    const int half = (right - left) / 2;
    Place(chkFrontendAutoRun(), left, cy, half - m.gap, m.check);
    Place(chkCheck(6), left + half, cy, right - left - half, m.check);
}

void frmConfig::LayoutFilterPage(const Metrics& m, int width, int height) {
    const auto [left, right, fieldsTop] =
        LayoutRecordList(m, width, height, ids::kFrameFileFilter, List1(0),
                         {kNewFilter, kDeleteFilter, kUpFilter, kDownFilter}, 3 * (m.row + m.gap));
    const int column = std::max({TextWidth(Label(ids::kLabelFilterName)),
                                 TextWidth(Label(ids::kLabelFilterExtension)),
                                 TextWidth(Label(ids::kSelectUsedConfigure))}) +
                       m.gap * 2;
    int cy = fieldsTop;
    PlaceLabel(ids::kLabelFilterName, left, cy, m);
    Place(txtFilter(kFilterName), left + column, cy, right - left - column, m.row);
    cy += m.row + m.gap;
    PlaceLabel(ids::kLabelFilterExtension, left, cy, m);
    Place(txtFilter(kFilterExtension), left + column, cy, right - left - column, m.row);
    cy += m.row + m.gap;
    PlaceLabel(ids::kSelectUsedConfigure, left, cy, m);
    Place(cboFilterConfiguration(), left + column, cy, right - left - column,
          m.row + Scale(kDropDown));
}

}  // namespace zorvi
