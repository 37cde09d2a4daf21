// Reading and writing settings keys through the ANSI private-profile functions.
#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <utility>

#include "settings/schema.h"

namespace zorvi {

// Values longer than 299 characters come back cut; a value is cut at its first NUL.
std::string ReadIni(const std::string& section, const std::string& key,
                    const std::string& fallback, const std::string& file);
int ReadIniInt(const std::string& section, const std::string& key, int fallback,
               const std::string& file);
// The platform creates the file and the section on the first write.
bool WriteIni(const std::string& section, const std::string& key, const std::string& value,
              const std::string& file);
bool WriteIni(const std::string& section, const std::string& key, int value,
              const std::string& file);

// One section read in a single call. Every key read through the
// private-profile functions opens and searches the file again, so a list of
// hundreds of records read key by key takes seconds; read from here it is
// one call. The answers are the ones ReadIni and ReadIniInt give. Within an
// IniReadScope it is a copy of the scope's.
class IniSection {
public:
    IniSection(const std::string& section, const std::string& file);

    std::string Read(const std::string& key, const std::string& fallback) const;
    int ReadInt(const std::string& key, int fallback) const;
    bool Holds(const std::string& key, const std::string& value) const;
    // Keeps the snapshot in step with a write made through WriteIni.
    void Remember(const std::string& key, const std::string& value);

private:
    friend class IniReadScope;
    IniSection() = default;
    void Load(const std::string& section, const std::string& file);
    const std::string* Find(const std::string& key) const;

    std::unordered_map<std::string, std::string> values_;  // keys in lower case
};

// A settings file read a section at a time: the first key asked of a
// section reads the whole section in one call, later keys come from there.
// A compile reads a dozen keys of its configuration, and Wine opens the file
// anew for each key read. The answers are the ones ReadIni, ReadIniInt and
// ReadIniFlag give; a change made to the file after a section was read is
// not seen.
class IniFile {
public:
    explicit IniFile(std::string path) : path_(std::move(path)) {}

    const std::string& Path() const { return path_; }
    std::string Read(const std::string& section, const std::string& key,
                     const std::string& fallback) const;
    int ReadInt(const std::string& section, const std::string& key, int fallback) const;
    std::string Read(const settings::TextKey& key) const;
    int ReadInt(const settings::IntKey& key) const;
    bool ReadFlag(const settings::IntKey& key) const;

private:
    const IniSection& Section(const std::string& name) const;

    std::string path_;
    mutable std::map<std::string, IniSection> sections_;  // by name in lower case
};

// While one lives, the key reads of its thread (ReadIni, ReadIniInt and
// ReadIniFlag) are answered as an IniFile answers, each section of each file
// read once: the start asks the settings for some thirty keys, and every one
// would open the file again (about a millisecond each under Wine). A write
// through WriteIni drops everything read so far. Meant for a short stretch of
// work that nobody else writes the files during, such as the start.
class IniReadScope {
public:
    IniReadScope();
    ~IniReadScope();
    IniReadScope(const IniReadScope&) = delete;
    IniReadScope& operator=(const IniReadScope&) = delete;

    // The scope that answers this thread's key reads, if any.
    static IniReadScope* Active();
    const IniSection& Section(const std::string& file, const std::string& section);
    void Forget() { sections_.clear(); }

private:
    std::map<std::pair<std::string, std::string>, IniSection> sections_;  // (file, section)
    IniReadScope* outer_;
};

// Writes a key only when it does not hold the value yet: every write
// rewrites the whole file, so saving a long list key by key would cost the
// square of its length. Each section is read once, when first written to;
// an empty value is still written where there is no key.
class IniUpdater {
public:
    bool Write(const std::string& section, const std::string& key, const std::string& value,
               const std::string& file);

private:
    std::map<std::pair<std::string, std::string>, IniSection> sections_;  // (file, section)
};

std::string ReadIni(const settings::TextKey& key, const std::string& file);
int ReadIniInt(const settings::IntKey& key, const std::string& file);
// A flag read with the test its key prescribes.
bool ReadIniFlag(const settings::IntKey& key, const std::string& file);

enum class PresetForm { Path, Name };

// The active configuration (Setting/Default, or the example configuration
// when that names none): program folder + "cfg\" + name + ".ini", or only
// the name (for the status bar).
std::string GetDefaultPreset(PresetForm form = PresetForm::Path);

}  // namespace zorvi
