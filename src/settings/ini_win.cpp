// Reading and writing settings keys through the ANSI private-profile
// functions. A key read goes to the file each time; sections read whole are
// kept by the IniSection, IniFile or IniUpdater that read them.
#include "settings/ini_win.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

#include "core/mdlMain.h"
#include "core/text.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "settings/preset.h"

namespace zorvi {
namespace {

thread_local IniReadScope* activeScope = nullptr;

// What the platform answers for a missing key: the fallback without its
// trailing blanks (all but the first), cut to what the buffer holds.
std::string ProfileFallback(const std::string& fallback) {
    std::size_t end = fallback.size();
    while (end > 1 && fallback[end - 1] == ' ') --end;
    return fallback.substr(0, std::min(end, mdlFile::kPathBuffer - 1));
}

}  // namespace

std::string ReadIni(const std::string& section, const std::string& key,
                    const std::string& fallback, const std::string& file) {
    if (IniReadScope* scope = IniReadScope::Active()) {
        return scope->Section(file, section).Read(key, ProfileFallback(fallback));
    }
    std::string buffer(mdlFile::kPathBuffer, '\0');
    const DWORD length = GetPrivateProfileStringA(section.c_str(), key.c_str(), fallback.c_str(),
                                                  buffer.data(), mdlFile::kPathBuffer,
                                                  file.c_str());
    buffer.resize(std::min<std::size_t>(length, mdlFile::kPathBuffer - 1));
    return mdlFile::TrimNull(buffer);
}

int ReadIniInt(const std::string& section, const std::string& key, int fallback,
               const std::string& file) {
    if (IniReadScope* scope = IniReadScope::Active()) {
        return scope->Section(file, section).ReadInt(key, fallback);
    }
    return static_cast<int>(
        GetPrivateProfileIntA(section.c_str(), key.c_str(), fallback, file.c_str()));
}

bool WriteIni(const std::string& section, const std::string& key, const std::string& value,
              const std::string& file) {
    // The same file may go by other names: nothing read before stays.
    if (IniReadScope* scope = IniReadScope::Active()) scope->Forget();
    return WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(),
                                      file.c_str()) != FALSE;
}

bool WriteIni(const std::string& section, const std::string& key, int value,
              const std::string& file) {
    return WriteIni(section, key, std::to_string(value), file);
}

namespace {

// What the profile functions do to a stored value: surrounding blanks are
// gone already; one pair of matching quotes around it goes too.
std::string StoredValue(std::string_view value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front()) {
        value = value.substr(1, value.size() - 2);
    }
    return std::string(value.substr(0, std::min(value.size(), mdlFile::kPathBuffer - 1)));
}

std::string_view TrimBlanks(std::string_view text) {
    while (!text.empty() && static_cast<unsigned char>(text.front()) <= ' ') text.remove_prefix(1);
    while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ') text.remove_suffix(1);
    return text;
}

// The platform's number reading: blanks, a sign, a 0x / 0o / 0b base, then
// digits until the first that does not belong, wrapping like an unsigned
// 32-bit number; at most 29 characters of the value count.
int ProfileNumber(std::string_view text) {
    text = text.substr(0, std::min<std::size_t>(text.size(), 29));
    while (!text.empty() && static_cast<unsigned char>(text.front()) <= ' ') text.remove_prefix(1);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    std::uint32_t base = 10;
    if (text.size() >= 2 && text[0] == '0') {
        const char mark = text[1];
        base = mark == 'x' ? 16 : mark == 'o' ? 8 : mark == 'b' ? 2 : 10;
        if (base != 10) text.remove_prefix(2);
    }
    std::uint32_t total = 0;
    for (const char c : text) {
        std::uint32_t digit = 0;
        if (c >= '0' && c <= '9') {
            digit = static_cast<std::uint32_t>(c - '0');
        } else if (c >= 'a' && c <= 'z') {
            digit = static_cast<std::uint32_t>(c - 'a' + 10);
        } else if (c >= 'A' && c <= 'Z') {
            digit = static_cast<std::uint32_t>(c - 'A' + 10);
        } else {
            break;
        }
        if (digit >= base) break;
        total = total * base + digit;
    }
    return static_cast<int>(negative ? 0u - total : total);
}

}  // namespace

IniSection::IniSection(const std::string& section, const std::string& file) {
    if (IniReadScope* scope = IniReadScope::Active()) {
        values_ = scope->Section(file, section).values_;
        return;
    }
    Load(section, file);
}

void IniSection::Load(const std::string& section, const std::string& file) {
    // The call answers with as much as fits and says so by a length of the
    // buffer less two; the buffer grows until the section fits, up to a bound
    // no settings file reaches.
    std::string buffer(32 * 1024, '\0');
    DWORD length = 0;
    for (;;) {
        length = GetPrivateProfileSectionA(section.c_str(), buffer.data(),
                                           static_cast<DWORD>(buffer.size()), file.c_str());
        if (length + 2 < buffer.size() || buffer.size() >= 64u * 1024 * 1024) break;
        buffer.assign(buffer.size() * 4, '\0');
    }
    std::string_view rest(buffer.data(), std::min<std::size_t>(length, buffer.size()));
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\0'), rest.size());
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) continue;  // a key without a value reads as missing
        // The first of two equal keys is the one a key read finds.
        values_.emplace(AsciiLower(std::string(TrimBlanks(line.substr(0, equals)))),
                        StoredValue(TrimBlanks(line.substr(equals + 1))));
    }
}

const std::string* IniSection::Find(const std::string& key) const {
    const auto found = values_.find(AsciiLower(key));
    return found == values_.end() ? nullptr : &found->second;
}

std::string IniSection::Read(const std::string& key, const std::string& fallback) const {
    const std::string* value = Find(key);
    return value != nullptr ? *value : fallback;
}

int IniSection::ReadInt(const std::string& key, int fallback) const {
    const std::string* value = Find(key);
    return value == nullptr || value->empty() ? fallback : ProfileNumber(*value);
}

bool IniSection::Holds(const std::string& key, const std::string& value) const {
    const std::string* stored = Find(key);
    return stored != nullptr && *stored == value;
}

void IniSection::Remember(const std::string& key, const std::string& value) {
    values_.insert_or_assign(AsciiLower(key), StoredValue(TrimBlanks(value)));
}

const IniSection& IniFile::Section(const std::string& name) const {
    const std::string folded = AsciiLower(name);
    auto place = sections_.find(folded);
    if (place == sections_.end()) place = sections_.try_emplace(folded, name, path_).first;
    return place->second;
}

std::string IniFile::Read(const std::string& section, const std::string& key,
                          const std::string& fallback) const {
    return Section(section).Read(key, fallback);
}

int IniFile::ReadInt(const std::string& section, const std::string& key, int fallback) const {
    return Section(section).ReadInt(key, fallback);
}

std::string IniFile::Read(const settings::TextKey& key) const {
    return Read(key.section, key.name, key.fallback);
}

int IniFile::ReadInt(const settings::IntKey& key) const {
    return ReadInt(key.section, key.name, key.fallback);
}

bool IniFile::ReadFlag(const settings::IntKey& key) const {
    return settings::FlagHolds(key, ReadInt(key));
}

IniReadScope::IniReadScope() : outer_(activeScope) { activeScope = this; }

IniReadScope::~IniReadScope() { activeScope = outer_; }

IniReadScope* IniReadScope::Active() { return activeScope; }

const IniSection& IniReadScope::Section(const std::string& file, const std::string& section) {
    const std::pair<std::string, std::string> name{file, AsciiLower(section)};
    auto place = sections_.find(name);
    if (place == sections_.end()) {
        place = sections_.emplace(name, IniSection()).first;
        place->second.Load(section, file);
    }
    return place->second;
}

bool IniUpdater::Write(const std::string& section, const std::string& key,
                       const std::string& value, const std::string& file) {
    auto place = sections_.find({file, AsciiLower(section)});
    if (place == sections_.end()) {
        place = sections_.try_emplace({file, AsciiLower(section)}, section, file).first;
    }
    if (place->second.Holds(key, value)) return true;
    if (!WriteIni(section, key, value, file)) return false;
    place->second.Remember(key, value);
    return true;
}

std::string ReadIni(const settings::TextKey& key, const std::string& file) {
    return ReadIni(key.section, key.name, key.fallback, file);
}

int ReadIniInt(const settings::IntKey& key, const std::string& file) {
    return ReadIniInt(key.section, key.name, key.fallback, file);
}

bool ReadIniFlag(const settings::IntKey& key, const std::string& file) {
    return settings::FlagHolds(key, ReadIniInt(key, file));
}

std::string GetDefaultPreset(PresetForm form) {
    const std::string appFolder = mdlFile::GetAppFolder();
    const std::string name = ActivePresetName(
        ReadIni(settings::main_file::kDefault, mdlMain::MainSettingsPath()),
        [&appFolder](const std::string& preset) {
            return mdlFile::FileExists(PresetPath(appFolder, preset));
        });
    if (form == PresetForm::Name) return name;
    return PresetPath(appFolder, name);
}

}  // namespace zorvi
