// The history's slot arithmetic: insertion at the top, duplicates, captions.
#include "ui/main/history.h"

#include <vector>

#include "files/path_text.h"

namespace zorvi {

HistorySlots HistoryInsert(const std::string& targetLongForm, const HistorySlots& old) {
    std::vector<std::string> working;
    working.reserve(kHistorySize + 1);
    working.push_back(targetLongForm);
    working.insert(working.end(), old.begin(), old.end());
    mdlFile::RemoveDuplicates(working, false, false);
    HistorySlots slots;
    for (std::size_t i = 0; i < slots.size() && i < working.size(); ++i) slots[i] = working[i];
    return slots;
}

std::string HistoryCaption(int index, std::string_view display) {
    std::string caption(1, '&');
    caption.append(std::to_string(index)).append(" : ");
    for (const char c : display) {
        caption += c;
        if (c == '&') caption += '&';
    }
    return caption;
}

}  // namespace zorvi
