// The main window's key map with every modifier combination.
#include <gtest/gtest.h>

#include "ui/main/keymap.h"

namespace zorvi {
namespace {

constexpr int F(int n) { return 111 + n; }

TEST(KeyMap, FunctionKeysAndModifiers) {
    using C = MainCommand;
    const struct {
        int key, shift;
        bool altPopup;
        MainCommand command;
    } cases[] = {
        {F(1), 0, false, C::Help},        {F(2), 0, false, C::SetFile},
        {F(3), 0, false, C::WatchToggle}, {F(4), 0, false, C::None},
        {F(5), 0, false, C::Compile},     {F(6), 0, false, C::Play},
        {F(7), 0, false, C::ShowLog},     {F(8), 0, false, C::Configure},
        {F(9), 0, false, C::PopupMenu},   {F(10), 0, false, C::None},
        {F(11), 0, false, C::Minimize},   {F(12), 0, false, C::Exit},
        {'A', 0, false, C::None},         {13, 0, false, C::None},
        {F(1), 2, false, C::About},       {F(2), 2, false, C::NextLayout},
        {F(5), 2, false, C::NextLayout},  {F(12), 2, false, C::NextLayout},
        {'A', 2, false, C::None},         {37, 2, false, C::None},
        {F(5), 1, false, C::None},        {F(5), 3, false, C::None},
        {F(5), 5, false, C::None},        {F(5), 6, false, C::None},
        {F(5), 7, true, C::None},         {F(5), 4, false, C::None},
        {F(5), 4, true, C::PopupMenu},    {18, 4, true, C::PopupMenu},
        {'X', 4, true, C::PopupMenu},     {F(12), 8, false, C::None},
        // Alt with the system's keys is left to the system, popup or not.
        {F(4), 4, true, C::None},         {F(4), 4, false, C::None},
        {' ', 4, true, C::None},          {9, 4, true, C::None},
        {27, 4, true, C::None},           {F(3), 4, true, C::PopupMenu},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.key) + "/" + std::to_string(c.shift));
        EXPECT_EQ(MainKeyCommand(c.key, c.shift, c.altPopup), c.command);
    }
}

}  // namespace
}  // namespace zorvi
