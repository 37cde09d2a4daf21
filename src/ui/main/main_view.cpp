// The main window's view: toolbar images and enabled states, the status
// bar's panels, the language of its texts.
#include "ui/main/frmZorvi.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "core/strings_win.h"
#include "core/text.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "res/resource.h"
#include "res/string_ids.h"
#include "run/clsExecute.h"
#include "run/play.h"
#include "run/required_tools.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "ui/main/keymap.h"
#include "ui/main/layout.h"
#include "ui/main/main_parts.h"
#include "ui/main/mdlHotKey.h"
#include "ui/main/mdlView.h"
#include "ui/main/watch.h"
#include "ui/result/frmResult.h"

namespace zorvi {

using namespace main_parts;

namespace {

// How a disabled button shows a pixel of its icon: grey and half
// transparent, drawn from the same crisp drawing.
std::uint32_t Greyed(std::uint32_t pixel) {
    const std::uint32_t alpha = pixel >> 24;
    const std::uint32_t red = (pixel >> 16) & 0xFF, green = (pixel >> 8) & 0xFF,
                        blue = pixel & 0xFF;
    const std::uint32_t luminance = (red * 299 + green * 587 + blue * 114) / 1000;
    const std::uint32_t grey = 112 + luminance * 96 / 255;
    return ((alpha * 3 / 5) << 24) | (grey << 16) | (grey << 8) | grey;
}

// The header of a top-down DIB, 32-bit or monochrome.
BITMAPINFOHEADER DibHeader(int width, int height, WORD bitCount) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = -height;
    header.biPlanes = 1;
    header.biBitCount = bitCount;
    header.biCompression = BI_RGB;
    return header;
}

// The id of the drawing in an icon group that is exactly `pixels` square in
// 32 bits, or 0. Where there is one, it is the drawing that
// LookupIconIdFromDirectoryEx would choose; that call asks the display for
// its colour depth every time, under Wine three round trips to the server.
int ExactIconId(const BYTE* group, DWORD size, int pixels) {
    constexpr std::size_t kHeader = 6, kEntry = 14;  // GRPICONDIR, GRPICONDIRENTRY
    const auto word = [group](std::size_t at) { return group[at] | group[at + 1] << 8; };
    if (size < kHeader) return 0;
    const auto count = static_cast<std::size_t>(word(4));
    for (std::size_t entry = kHeader; entry + kEntry <= size && entry < kHeader + count * kEntry;
         entry += kEntry) {
        const int width = group[entry] == 0 ? 256 : group[entry];
        const int height = group[entry + 1] == 0 ? 256 : group[entry + 1];
        if (width == pixels && height == pixels && word(entry + 6) == 32) return word(entry + 12);
    }
    return 0;
}

// The 32-bit drawing of icon `id` that is exactly `pixels` square, read
// straight from the resources into `icon` and `iconMask` (top-down rows, the
// mask's rows whole DWORDs), as LoadImage would choose it; false when the
// nearest drawing is of another size or kind, which only LoadImage can make.
// Reading it costs no icon and no bitmaps.
bool StoredIconBits(HINSTANCE instance, int id, int pixels, std::vector<std::uint32_t>& icon,
                    std::vector<BYTE>& iconMask) {
    const auto resource = [instance](int name, LPCWSTR type) -> std::pair<const BYTE*, DWORD> {
        const HRSRC found = FindResourceW(instance, MAKEINTRESOURCEW(name), type);
        const HGLOBAL loaded = found != nullptr ? LoadResource(instance, found) : nullptr;
        if (loaded == nullptr) return {nullptr, 0};
        return {static_cast<const BYTE*>(LockResource(loaded)), SizeofResource(instance, found)};
    };
    // The resource types are numbers, the same in either character set.
    const auto [group, groupSize] = resource(id, reinterpret_cast<LPCWSTR>(RT_GROUP_ICON));
    if (group == nullptr) return false;
    int chosen = ExactIconId(group, groupSize, pixels);
    if (chosen == 0) {
        chosen = LookupIconIdFromDirectoryEx(const_cast<BYTE*>(group), TRUE, pixels, pixels,
                                             LR_DEFAULTCOLOR);
    }
    const auto [bits, size] = resource(chosen, reinterpret_cast<LPCWSTR>(RT_ICON));
    BITMAPINFOHEADER header{};
    if (bits == nullptr || size < sizeof header) return false;
    std::memcpy(&header, bits, sizeof header);
    const auto side = static_cast<std::size_t>(pixels);
    const std::size_t maskStride = (side + 31) / 32 * 4;
    if (header.biSize != sizeof header || header.biWidth != pixels ||
        header.biHeight != 2 * pixels || header.biBitCount != 32 ||
        header.biCompression != BI_RGB || header.biClrUsed != 0 ||
        size < sizeof header + side * side * 4 + side * maskStride) {
        return false;
    }
    // Stored bottom-up: the colours, then the mask.
    const BYTE* colorRows = bits + sizeof header;
    const BYTE* maskRows = colorRows + side * side * 4;
    for (std::size_t y = 0; y < side; ++y) {
        const std::size_t stored = side - 1 - y;
        std::memcpy(&icon[y * side], colorRows + stored * side * 4, side * 4);
        std::memcpy(&iconMask[y * maskStride], maskRows + stored * maskStride, maskStride);
    }
    return true;
}

// The same through LoadImage, which also shrinks or widens a drawing of
// another size or kind.
bool LoadedIconBits(HINSTANCE instance, int id, int pixels, std::vector<std::uint32_t>& icon,
                    std::vector<BYTE>& iconMask) {
    const UniqueIcon loaded(static_cast<HICON>(
        LoadImageW(instance, MAKEINTRESOURCEW(id), IMAGE_ICON, pixels, pixels, LR_DEFAULTCOLOR)));
    ICONINFO info{};
    if (!loaded || !GetIconInfo(loaded.get(), &info)) return false;
    const UniqueBitmap iconColor(info.hbmColor), iconMaskBitmap(info.hbmMask);
    const UniqueScreenDC screen(GetDC(nullptr));
    BITMAPINFO iconFormat{};
    iconFormat.bmiHeader = DibHeader(pixels, pixels, 32);
    struct {
        BITMAPINFOHEADER bmiHeader;
        RGBQUAD bmiColors[2];
    } maskFormat{DibHeader(pixels, pixels, 1), {}};
    return iconColor &&
           GetDIBits(screen.get(), iconColor.get(), 0, static_cast<UINT>(pixels), icon.data(),
                     &iconFormat, DIB_RGB_COLORS) == pixels &&
           GetDIBits(screen.get(), iconMaskBitmap.get(), 0, static_cast<UINT>(pixels),
                     iconMask.data(), reinterpret_cast<BITMAPINFO*>(&maskFormat),
                     DIB_RGB_COLORS) == pixels;
}

// All toolbar images side by side, as each image list takes them in one add:
// the icons' own colours with their alpha as drawn (not premultiplied: the
// list does that as it draws), their masks, and their greyed look. Added icon
// by icon, every image costs the list a reload of its icon from the
// resources and a round of copies; in one pass the lists fill several times
// faster under Wine.
struct ImageStrips {
    UniqueBitmap color, mask, greyed;
};

// The strips of `count` images from image `first` on; null strips when any
// of their icons cannot be read at that size.
ImageStrips MakeImageStrips(HINSTANCE instance, int pixels, int first, int count) {
    const int width = pixels * count;
    // DIB sections in RGB colours need no device context: the screen's
    // costs a round trip to the server.
    BITMAPINFO stripFormat{};
    stripFormat.bmiHeader = DibHeader(width, pixels, 32);
    void* colorBits = nullptr;
    void* greyedBits = nullptr;
    ImageStrips strips;
    strips.color.reset(
        CreateDIBSection(nullptr, &stripFormat, DIB_RGB_COLORS, &colorBits, nullptr, 0));
    strips.greyed.reset(
        CreateDIBSection(nullptr, &stripFormat, DIB_RGB_COLORS, &greyedBits, nullptr, 0));
    if (!strips.color || !strips.greyed) return {};
    auto* const color = static_cast<std::uint32_t*>(colorBits);
    auto* const greyed = static_cast<std::uint32_t*>(greyedBits);

    const auto side = static_cast<std::size_t>(pixels);
    const std::size_t iconMaskStride = (side + 31) / 32 * 4;  // DIB rows: whole DWORDs
    const std::size_t row = side * static_cast<std::size_t>(count);
    const std::size_t maskStride = (row + 15) / 16 * 2;  // bitmap rows: whole WORDs
    std::vector<std::uint32_t> icon(side * side);
    std::vector<BYTE> iconMask(iconMaskStride * side);
    std::vector<BYTE> mask(maskStride * side, 0xFF);  // set bits: transparent
    for (int image = 0; image < count; ++image) {
        // Each icon file holds drawings for several sizes: the nearest one is
        // taken rather than a 32-pixel drawing shrunk.
        const int id = IDI_APP + first + image;
        if (!StoredIconBits(instance, id, pixels, icon, iconMask) &&
            !LoadedIconBits(instance, id, pixels, icon, iconMask)) {
            return {};
        }
        for (std::size_t y = 0; y < side; ++y) {
            for (std::size_t x = 0; x < side; ++x) {
                const std::uint32_t pixel = icon[y * side + x];
                const std::size_t at = static_cast<std::size_t>(image) * side + x;
                color[y * row + at] = pixel;
                greyed[y * row + at] = Greyed(pixel);
                if ((iconMask[y * iconMaskStride + x / 8] & (0x80 >> (x % 8))) == 0) {
                    mask[y * maskStride + at / 8] &= static_cast<BYTE>(~(0x80 >> (at % 8)));
                }
            }
        }
    }
    strips.mask.reset(CreateBitmap(width, pixels, 1, 1, mask.data()));
    if (!strips.mask) return {};
    return strips;
}

}  // namespace

int frmZorvi::ViewChange_IconSize(int size) {
    size = NormalizeIconSize(size);
    iconSize_ = size;
    const int pixels = ScaleForDpi(size, static_cast<int>(Dpi()));
    UniqueImageList list(ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, kIconCount, 0));
    UniqueImageList greyed(ImageList_Create(pixels, pixels, ILC_COLOR32, kIconCount, 0));
    if (!list || !greyed) return size;
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    const ImageStrips strips = MakeImageStrips(instance, pixels, 0, kIconCount);
    // Each add answers the index of the strip's first image, or -1.
    const bool whole = strips.mask &&
                       ImageList_Add(list.get(), strips.color.get(), strips.mask.get()) == 0 &&
                       ImageList_Add(greyed.get(), strips.greyed.get(), nullptr) == 0;
    if (!whole) {
        // Should the strip not come together, the images go in one by one as
        // before: each from a strip of its own, or else as the list makes it
        // of the icon.
        ImageList_Remove(list.get(), -1);
        ImageList_Remove(greyed.get(), -1);
        for (int image = 0; image < kIconCount; ++image) {
            if (const ImageStrips one = MakeImageStrips(instance, pixels, image, 1); one.mask) {
                ImageList_Add(list.get(), one.color.get(), one.mask.get());
                ImageList_Add(greyed.get(), one.greyed.get(), nullptr);
                continue;
            }
            const UniqueIcon icon(static_cast<HICON>(
                LoadImageW(instance, MAKEINTRESOURCEW(IDI_APP + image), IMAGE_ICON, pixels,
                           pixels, LR_DEFAULTCOLOR)));
            ImageList_AddIcon(list.get(), icon.get());
            ImageList_AddIcon(greyed.get(), icon.get());
        }
    }
    SendMessageW(toolbar_, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(list.get()));
    SendMessageW(toolbar_, TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(greyed.get()));
    // The old lists go only now that the toolbar has let go of them.
    images_ = std::move(list);
    disabledImages_ = std::move(greyed);
    const int dpi = static_cast<int>(Dpi());
    SendMessageW(toolbar_, TB_SETBITMAPSIZE, 0, MAKELPARAM(pixels, pixels));
    SendMessageW(toolbar_, TB_SETPADDING, 0, MAKELPARAM(ScaleForDpi(7, dpi), ScaleForDpi(6, dpi)));
    SendMessageW(toolbar_, TB_SETBUTTONSIZE, 0,
                 MAKELPARAM(pixels + ScaleForDpi(7, dpi), pixels + ScaleForDpi(6, dpi)));
    // The buttons keep their images' places in the new lists (the switch
    // shows its state's), and the layout sizes the toolbar to them.
    LayOutAndFit();
    return size;
}

void frmZorvi::SetButtonImage(int button, int image) {
    SendMessageW(toolbar_, TB_CHANGEBITMAP, CommandOf(button), MAKELPARAM(image - 1, 0));
}

void frmZorvi::SetButtonEnabled(int button, bool enabled) {
    SendMessageW(toolbar_, TB_ENABLEBUTTON, CommandOf(button),
                 MAKELPARAM(enabled ? TRUE : FALSE, 0));
}

void frmZorvi::SetMenuEnabled(int index, bool enabled) {
    menuEnabled_[static_cast<std::size_t>(index) % menuEnabled_.size()] = enabled;
}

void frmZorvi::ViewChange_FileOpen(bool enabled) {
    SetButtonEnabled(kSetFile, enabled);
    SetMenuEnabled(2, enabled);
    SetMenuEnabled(3, enabled);
}

void frmZorvi::ViewChange_OnOffButton(bool enabled) {
    SetButtonEnabled(kOnOff, enabled);
    SetMenuEnabled(5, enabled);
}

void frmZorvi::ViewChange_Compile(bool enabled) {
    SetButtonEnabled(kCompile, enabled);
    SetMenuEnabled(7, enabled);
}

void frmZorvi::ViewChange_Play(bool enabled) {
    SetButtonEnabled(kPlay, enabled);
    SetMenuEnabled(8, enabled);
}

void frmZorvi::ViewChange_LogView(bool enabled) {
    SetButtonEnabled(kLog, enabled);
    SetMenuEnabled(9, enabled);
}

void frmZorvi::ViewUpdate() {
    const std::string& target = mdlMain::TargetFile();
    if (!target.empty()) {
        ViewChange_OnOffButton(true);
        ViewChange_Compile(true);
        ViewChange_Play(true);
    } else {
        // Compile and play stay as they were: the pipeline reports the missing file itself.
        ViewChange_OnOffButton(false);
    }
    ViewChange_LogView(!target.empty() &&
                       mdlFile::FileExists(mdlFile::ChangeExtension(target, "log")));
}

// The bar paints a new text at once; a compile sets its text just before it
// starts the tools, and must not wait for the drawing. With the bar's redraw
// off the text is only stored, and it is painted with the next messages,
// which the wait for the compile serves right after the start.
void frmZorvi::SetStatusTextLater(const std::wstring& text) {
    SendMessageW(statusBar_, WM_SETREDRAW, FALSE, 0);
    SendMessageW(statusBar_, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageW(statusBar_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(statusBar_, nullptr, FALSE);
}

void frmZorvi::ViewChange_StatusBar(const std::string& text) { ViewChange_StatusBar(1, text, {}); }

void frmZorvi::ViewChange_StatusBar(int panel, const std::string& text, const std::string& path) {
    switch (panel) {
    case 1:
        panelText_[0] = Widen(text);
        SetStatusTextLater(panelText_[0]);
        break;
    case 2: SetPlayerPanel(text, zorvi::PlayerPanelEnabled(text, mdlFile::FileExists(path))); break;
    case 3: {
        // path: the configuration whose required tools are counted.
        const IniFile configuration(path);
        const std::string console =
            mdlFile::ExpandSystemVariables(configuration.Read(config_keys::kConsole));
        std::string missing;
        const int count =
            RequiredToolsCheck(configuration, mdlFile::GetFolderOf(console), missing);
        panelText_[2] = Widen(StatusPanel3Text(text, count));
        SendMessageW(statusBar_, SB_SETTEXTW, 2, reinterpret_cast<LPARAM>(panelText_[2].c_str()));
        break;
    }
    default: break;
    }
}

void frmZorvi::DrawPlayerPanel(const DRAWITEMSTRUCT& item) {
    const int saved = SaveDC(item.hDC);
    if (font_) SelectObject(item.hDC, font_.get());
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(playerPanelEnabled_ ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    RECT rect = item.rcItem;
    rect.left += ScaleForDpi(4, static_cast<int>(Dpi()));
    DrawTextW(item.hDC, panelText_[1].c_str(), static_cast<int>(panelText_[1].size()), &rect,
              DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    RestoreDC(item.hDC, saved);
}

void frmZorvi::ViewChange_PlayerPanel() {
    // Panel 2: "-" when the configuration plays nothing, "*" for the program
    // associated with the output, else the player's file name; only a player
    // ending in ".exe" is tested for existence.
    const std::string configuration = GetDefaultPreset(PresetForm::Path);
    if (!ReadIniFlag(config_keys::kUseGUI, configuration)) {
        SetPlayerPanel("-", true);
    } else if (ReadIniFlag(config_keys::kUseAssociated, configuration)) {
        SetPlayerPanel("*", true);
    } else {
        const std::string player =
            mdlFile::ExpandSystemVariables(ReadIni(config_keys::kPlayer, configuration));
        SetPlayerPanel(mdlFile::GetFileName(player),
                       !player.empty() && (!EndsWithExe(player) || mdlFile::FileExists(player)));
    }
}

void frmZorvi::SetPlayerPanel(const std::string& text, bool enabled) {
    panelText_[1] = Widen(text);
    playerPanelEnabled_ = enabled;
    // Drawn by the window so that a missing player can be greyed out.
    SendMessageW(statusBar_, SB_SETTEXTW, 1 | SBT_OWNERDRAW, 0);
    InvalidateRect(statusBar_, nullptr, TRUE);
}

void frmZorvi::ChangeLangZorvi() {
    for (int button = 1; button <= kButtonCount; ++button) {
        toolTips_[button - 1] = LoadText(ids::kToolbarSetTargetFile + button - 1);
    }
    toolTips_[kOnOff - 1] += tmrTimer1.Enabled() ? L"=ON" : L"=OFF";
    RebuildHistoryMenu();
    // The player menu's first entry is a text of the string table.
    if (UniqueMenu menu(BuildPlayerMenu()); menu) playerMenu_ = std::move(menu);
}

}  // namespace zorvi
