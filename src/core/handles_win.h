// Move-only owners for every Win32 resource the program holds: each one
// closes its resource once, in its destructor, and never hands out a value
// it has already closed.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <utility>

namespace zorvi {

// Traits name the resource's type, its empty value, and how it is released.
template <typename Traits>
class UniqueResource {
public:
    using Type = typename Traits::Type;

    UniqueResource() noexcept = default;
    explicit UniqueResource(Type value) noexcept : value_(value) {}
    ~UniqueResource() { reset(); }
    UniqueResource(UniqueResource&& other) noexcept : value_(other.release()) {}
    UniqueResource& operator=(UniqueResource&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }
    UniqueResource(const UniqueResource&) = delete;
    UniqueResource& operator=(const UniqueResource&) = delete;

    Type get() const noexcept { return value_; }
    explicit operator bool() const noexcept { return Traits::IsValid(value_); }
    // Gives up ownership; the owner is empty afterwards.
    [[nodiscard]] Type release() noexcept { return std::exchange(value_, Traits::Empty()); }
    void reset(Type value = Traits::Empty()) noexcept {
        const Type old = std::exchange(value_, value);
        if (Traits::IsValid(old)) Traits::Close(old);
    }

private:
    Type value_ = Traits::Empty();
};

namespace handle_traits {

// Kernel handles: both null and INVALID_HANDLE_VALUE mean "none", as the
// creating calls differ in which one they return.
struct Kernel {
    using Type = HANDLE;
    static Type Empty() noexcept { return nullptr; }
    static bool IsValid(Type value) noexcept {
        return value != nullptr && value != INVALID_HANDLE_VALUE;
    }
    static void Close(Type value) noexcept { CloseHandle(value); }
};

// Handles whose "none" is INVALID_HANDLE_VALUE, released by Release.
template <auto Release>
struct Invalidated {
    using Type = HANDLE;
    static Type Empty() noexcept { return INVALID_HANDLE_VALUE; }
    static bool IsValid(Type value) noexcept {
        return value != nullptr && value != INVALID_HANDLE_VALUE;
    }
    static void Close(Type value) noexcept { Release(value); }
};

// Handles released by one call taking the handle alone.
template <typename T, auto Release>
struct Simple {
    using Type = T;
    static Type Empty() noexcept { return nullptr; }
    static bool IsValid(Type value) noexcept { return value != nullptr; }
    static void Close(Type value) noexcept { Release(value); }
};

inline void DeleteGdiObject(HGDIOBJ object) noexcept { DeleteObject(object); }
inline void ReleaseScreenDC(HDC dc) noexcept { ReleaseDC(nullptr, dc); }

}  // namespace handle_traits

using UniqueHandle = UniqueResource<handle_traits::Kernel>;
using UniqueFindHandle = UniqueResource<handle_traits::Invalidated<&FindClose>>;
using UniqueChangeNotification =
    UniqueResource<handle_traits::Invalidated<&FindCloseChangeNotification>>;
using UniqueMenu = UniqueResource<handle_traits::Simple<HMENU, &DestroyMenu>>;
using UniqueImageList = UniqueResource<handle_traits::Simple<HIMAGELIST, &ImageList_Destroy>>;
using UniqueIcon = UniqueResource<handle_traits::Simple<HICON, &DestroyIcon>>;
using UniqueFont = UniqueResource<handle_traits::Simple<HFONT, &handle_traits::DeleteGdiObject>>;
using UniqueBitmap =
    UniqueResource<handle_traits::Simple<HBITMAP, &handle_traits::DeleteGdiObject>>;
using UniqueBrush = UniqueResource<handle_traits::Simple<HBRUSH, &handle_traits::DeleteGdiObject>>;
using UniqueLocalMemory = UniqueResource<handle_traits::Simple<HLOCAL, &LocalFree>>;
// The screen's device context, from GetDC(nullptr).
using UniqueScreenDC = UniqueResource<handle_traits::Simple<HDC, &handle_traits::ReleaseScreenDC>>;

}  // namespace zorvi
