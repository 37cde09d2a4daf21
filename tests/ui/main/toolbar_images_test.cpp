// The toolbar's image lists against a list filled icon by icon: every image,
// the watch's on and off included, at sizes the window's pictures never show.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/handles_win.h"
#include "res/resource.h"
#include "ui/main/frmZorvi.h"
#include "ui/main/main_parts.h"
#include "ui/window_helpers.h"

namespace zorvi {
namespace {

using main_parts::kIconCount;

// One image as the toolbar draws it, over black.
std::vector<std::uint32_t> Drawn(HIMAGELIST list, int image) {
    int width = 0, height = 0;
    ImageList_GetIconSize(list, &width, &height);
    BITMAPINFO format{};
    format.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const UniqueBitmap canvas(
        CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0));
    const std::unique_ptr<HDC__, decltype(&DeleteDC)> dc(CreateCompatibleDC(nullptr), &DeleteDC);
    if (!canvas || !dc) return {};
    const HGDIOBJ previous = SelectObject(dc.get(), canvas.get());
    ImageList_Draw(list, image, dc.get(), 0, 0, ILD_NORMAL);
    SelectObject(dc.get(), previous);
    GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    return {pixels, pixels + static_cast<std::size_t>(width) * static_cast<std::size_t>(height)};
}

TEST(MainWindow, ToolbarImagesDrawAsTheIconsAddedOneByOne) {
    testing::Session session;
    frmZorvi window;
    ASSERT_TRUE(window.Create(nullptr));
    for (const int size : {16, 24, 1, 20, 33, 64}) {
        SCOPED_TRACE(size);
        window.ViewChange_IconSize(size);
        const auto list = reinterpret_cast<HIMAGELIST>(
            SendMessageW(window.Toolbar(), TB_GETIMAGELIST, 0, 0));
        const auto greyed = reinterpret_cast<HIMAGELIST>(
            SendMessageW(window.Toolbar(), TB_GETDISABLEDIMAGELIST, 0, 0));
        int pixels = 0, height = 0;
        ImageList_GetIconSize(list, &pixels, &height);
        const UniqueImageList reference(
            ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, kIconCount, 0));
        for (int image = 0; image < kIconCount; ++image) {
            const UniqueIcon icon(static_cast<HICON>(
                LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_APP + image),
                           IMAGE_ICON, pixels, pixels, LR_DEFAULTCOLOR)));
            ImageList_AddIcon(reference.get(), icon.get());
        }
        ASSERT_EQ(ImageList_GetImageCount(list), kIconCount);
        ASSERT_EQ(ImageList_GetImageCount(greyed), kIconCount);
        for (int image = 0; image < kIconCount; ++image) {
            EXPECT_TRUE(Drawn(list, image) == Drawn(reference.get(), image)) << "image " << image;
            // The greyed look: something drawn, and nothing but grey.
            const auto grey = Drawn(greyed, image);
            const auto neutral = [](std::uint32_t pixel) {
                return (pixel & 0xFF) == ((pixel >> 8) & 0xFF) &&
                       (pixel & 0xFF) == ((pixel >> 16) & 0xFF);
            };
            EXPECT_TRUE(std::ranges::any_of(grey, [](std::uint32_t pixel) {
                return (pixel & 0xFFFFFF) != 0;
            }) && std::ranges::all_of(grey, neutral)) << "greyed image " << image;
        }
    }
}

}  // namespace
}  // namespace zorvi
