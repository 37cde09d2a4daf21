// The list of recently set target files: its 32 slots, their keys and the
// captions of the history menus. Platform-free.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace zorvi {

inline constexpr int kHistorySize = 32;
using HistorySlots = std::array<std::string, kHistorySize>;

// The new slots after a target was set: the target's long form first, then the
// old slots; exact (case-sensitive) duplicates and empty texts are dropped and
// the oldest entry falls off the end. An empty target only compacts the list.
HistorySlots HistoryInsert(const std::string& targetLongForm, const HistorySlots& old);

// "&<index> : <display>", the display form's own "&" doubled so that it shows.
std::string HistoryCaption(int index, std::string_view display);

}  // namespace zorvi
