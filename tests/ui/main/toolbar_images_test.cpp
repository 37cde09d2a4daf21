// The toolbar's image lists against a list filled icon by icon: every image,
// the watch's on and off included, at sizes the window's pictures never show.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <cstdint>
#include <vector>

#include "res/resource.h"
#include "ui/main/frmZorvi.h"
#include "ui/main/main_parts.h"
#include "ui/window_helpers.h"

namespace zorvi {
namespace {

// One image as the toolbar draws it, over black.
std::vector<std::uint32_t> Drawn(HIMAGELIST list, int image, int side) {
    BITMAPINFO format{{sizeof(BITMAPINFOHEADER), side, -side, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
    void* bits = nullptr;
    const UniqueBitmap canvas(
        CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0));
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ previous = SelectObject(dc, canvas.get());
    ImageList_Draw(list, image, dc, 0, 0, ILD_NORMAL);
    SelectObject(dc, previous);
    DeleteDC(dc);
    GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    return {pixels, pixels + side * side};
}

TEST(MainWindow, ToolbarImagesDrawAsTheIconsAddedOneByOne) {
    const testing::Session session;
    frmZorvi window;
    ASSERT_TRUE(window.Create(nullptr));
    for (const int size : {16, 24, 1, 20, 33, 64}) {
        window.ViewChange_IconSize(size);
        const auto list =
            reinterpret_cast<HIMAGELIST>(SendMessageW(window.Toolbar(), TB_GETIMAGELIST, 0, 0));
        int side = 0;
        ImageList_GetIconSize(list, &side, &side);
        const UniqueImageList reference(
            ImageList_Create(side, side, ILC_COLOR32 | ILC_MASK, main_parts::kIconCount, 0));
        for (int image = 0; image < main_parts::kIconCount; ++image) {
            const UniqueIcon icon(static_cast<HICON>(LoadImageW(GetModuleHandleW(nullptr),
                MAKEINTRESOURCEW(IDI_APP + image), IMAGE_ICON, side, side, LR_DEFAULTCOLOR)));
            ImageList_AddIcon(reference.get(), icon.get());
            EXPECT_TRUE(Drawn(list, image, side) == Drawn(reference.get(), image, side))
                << "size " << size << ", image " << image;
        }
    }
}

}  // namespace
}  // namespace zorvi
