// The launcher list's programs: an editor, a sequencer, a converter the user
// registered, started on request or at start-up and ended with Zorvi if asked.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "settings/list_layouts.h"

namespace zorvi {

class ExternalPrograms {
public:
    // Reads the records as written: command, option and start-up folder are
    // expanded at each start, so "$fn$" always names the current target.
    void Load(const std::string& mainFile);
    std::size_t Count() const { return entries_.size(); }
    const settings::ExternalProgramRecord& Record(std::size_t index) const {
        return entries_[index].record;
    }

    // Starts record index (0-based). A failure is reported to the user with
    // the reason and the command line; false then.
    bool Start(std::size_t index, HWND owner);
    // Text typed into the list instead of a choice: run as a command from
    // the program's folder.
    bool StartTyped(const std::string& text, HWND owner);
    // A record that is not (yet) in the list, started as Start would, to
    // try it out: the configuration window's Execute.
    static bool StartRecord(const settings::ExternalProgramRecord& record, HWND owner);
    // Every record with AutoRun on, once, at the main window's creation.
    void StartAutoRun(HWND owner);
    // Ends the last started instance of every record with AutoShutDown on.
    void EndAutoShutDown();
    // The launch record of a record's last start; nullopt before any.
    std::optional<std::size_t> LastLaunch(std::size_t index) const {
        return index < entries_.size() ? entries_[index].lastLaunch : std::nullopt;
    }

private:
    struct Entry {
        settings::ExternalProgramRecord record;
        std::optional<std::size_t> lastLaunch;
    };
    static bool Launch(const std::string& command, const std::string& option,
                       const std::string& folder, int windowState, HWND owner,
                       std::optional<std::size_t>& launch);

    std::vector<Entry> entries_;
};

}  // namespace zorvi
