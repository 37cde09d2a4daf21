// A small modal box that asks for one line of text.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>

namespace zorvi {

// The prompt above a text box, OK and Cancel, titled with the application
// title. The text typed, or nullopt when the user cancels.
std::optional<std::wstring> InputBox(HWND owner, const std::wstring& prompt);

// Tests answer the box through their own function; an empty one restores the box.
using InputBoxFunction =
    std::function<std::optional<std::wstring>(HWND owner, const std::wstring& prompt)>;
InputBoxFunction SetInputBoxFunction(InputBoxFunction function);

}  // namespace zorvi
