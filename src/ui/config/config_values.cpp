// The configuration window's controls and the settings both ways: filling
// them from the files, reading them back with the numbers and texts
// checked, saving, and handing the saved settings to the main window.
#include "ui/config/frmConfig.h"

#include "core/messages_win.h"
#include "core/strings_win.h"
#include "res/string_ids.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "ui/config/config_parts.h"
#include "ui/config/config_rules.h"
#include "ui/main/frmZorvi.h"
#include "ui/result/frmResult.h"

namespace zorvi {

using namespace config_parts;
using settings::ConfigurationValues;
namespace keys = settings::main_file;

namespace {

using Flag = bool ConfigurationValues::*;
// chkOption 0 to 8, in the order of their captions 250 to 258.
constexpr Flag kOptionFlags[] = {
    &ConfigurationValues::alwaysTop,    &ConfigurationValues::autoSetFile,
    &ConfigurationValues::autoOpen,     &ConfigurationValues::autoWatch,
    &ConfigurationValues::autoMinimize, &ConfigurationValues::taskTray,
    &ConfigurationValues::useAltPopUp,  &ConfigurationValues::autoClose,
    &ConfigurationValues::autoShutDown,
};
// chkCheck 0 to 7 of the configuration file; 5 (the editor's) and 6 (a
// launcher record's) belong elsewhere.
constexpr struct {
    int index;
    Flag flag;
} kCheckFlags[] = {
    {0, &ConfigurationValues::useCUI},         {1, &ConfigurationValues::useGUI},
    {2, &ConfigurationValues::forceShortName}, {3, &ConfigurationValues::detectError},
    {4, &ConfigurationValues::stepMode},       {7, &ConfigurationValues::useAssociated},
};

std::wstring Number(int value) { return std::to_wstring(value); }

void FillList(HWND combo, const std::vector<std::string>& entries) {
    const std::wstring kept = WideText(combo);
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    for (const std::string& entry : entries) {
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Widen(entry).c_str()));
    }
    SetWindowTextW(combo, kept.c_str());
}

// The reason the system gives for an error, in its own language.
std::wstring SystemReason(DWORD code) {
    wchar_t* buffer = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    const UniqueLocalMemory owned(buffer);
    std::wstring text = length > 0 && buffer != nullptr ? std::wstring(buffer, length) : L"";
    while (!text.empty() && (text.back() == L'\r' || text.back() == L'\n' || text.back() == L' ')) {
        text.pop_back();
    }
    return text;
}

// Whether a file can be written without changing it: an existing one is
// opened for writing, a new one is made and at once removed again.
DWORD WriteAccessError(const std::string& path) {
    const bool exists = GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
    const UniqueHandle file(CreateFileA(
        path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, exists ? OPEN_EXISTING : CREATE_NEW,
        exists ? FILE_ATTRIBUTE_NORMAL : FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE,
        nullptr));
    if (file) return ERROR_SUCCESS;
    const DWORD code = GetLastError();
    return code == ERROR_SUCCESS ? ERROR_ACCESS_DENIED : code;
}

}  // namespace

void frmConfig::LoadConfigure() {
    ConfigurationValues values;
    settings::LoadMainSettings(values, MainFile());
    ShowMainValues(values);
    // The records were read with the rest: hundreds of them take a while.
    programs_ = std::move(values.externalPrograms);
    filters_ = std::move(values.filters);
    ShowRecordLists();
}

void frmConfig::ViewChangeConfigure(const std::string& file) {
    ConfigurationValues values;
    settings::LoadConfigurationFile(values, file);
    ShowConfigurationValues(values);
}

void frmConfig::ShowMainValues(const ConfigurationValues& values) {
    filling_ = true;
    for (std::size_t i = 0; i < chkOption_.size(); ++i) {
        SetChecked(chkOption_[i], values.*kOptionFlags[i]);
    }
    SetText(cboCombo(4), values.editor);
    ViewUpdate_EditorList();
    SetComboIndex(cboCombo(5), WindowStateListIndex(values.editorWindowState));
    SetChecked(chkCheck(5), values.useAssociatedEditor);
    SetChecked(optLanguage(0), !values.japanese);
    SetChecked(optLanguage(1), values.japanese);
    SetWindowTextW(txtText(0), Number(values.timerInterval).c_str());
    SetWindowTextW(txtText(1), Number(values.iconSize).c_str());
    filling_ = false;
}

void frmConfig::ShowConfigurationValues(const ConfigurationValues& values) {
    filling_ = true;
    for (const auto& check : kCheckFlags) SetChecked(chkCheck(check.index), values.*check.flag);
    SetText(txtText(2), values.console);
    SetComboIndex(cboCombo(1), WindowStateListIndex(values.cuiWindowState));
    SetText(txtText(3), values.extension);
    SetText(cboCombo(2), values.player);
    ViewUpdate_PlayerList();
    SetComboIndex(cboCombo(3), WindowStateListIndex(values.guiWindowState));
    SetText(txtScript(0), values.script);
    SetText(txtScript(1), values.required);
    filling_ = false;
}

void frmConfig::ViewUpdate_PlayerList() {
    FillList(cboCombo(2), settings::ReadCountedList(keys::kPlayerList, MainFile()));
}

void frmConfig::ViewUpdate_EditorList() {
    FillList(cboCombo(4), settings::ReadCountedList(keys::kEditorList, MainFile()));
}

bool frmConfig::RefuseField(int page, HWND field, const std::wstring& message) {
    SelectPage(page);
    ShowCheckMessage(Handle(), message, MB_OK | MB_ICONEXCLAMATION);
    SetFocus(field);
    SendMessageW(field, EM_SETSEL, 0, -1);
    return false;
}

std::optional<ConfigurationValues> frmConfig::ReadControls() {
    ConfigurationValues values;
    values.name = SelectorText();
    for (std::size_t i = 0; i < chkOption_.size(); ++i) {
        values.*kOptionFlags[i] = Checked(chkOption_[i]);
    }
    values.editor = Text(cboCombo(4));
    values.editorWindowState = WindowStateFromListIndex(ComboIndex(cboCombo(5)));
    values.useAssociatedEditor = Checked(chkCheck(5));
    values.japanese = Checked(optLanguage(1));

    const struct {
        HWND field;
        int labelId;
        WholeNumberRange range;
    } numbers[] = {{txtText(0), ids::kLabelTimerInterval, kTimerIntervalRange},
                   {txtText(1), ids::kLabelIconSize, kIconSizeRange}};
    int parsed[2] = {};
    for (std::size_t i = 0; i < std::size(numbers); ++i) {
        const auto number = ParseWholeNumber(Text(numbers[i].field), numbers[i].range);
        if (!number) {
            RefuseField(kBasicPage, numbers[i].field,
                        FormatText(LoadText(ids::kNumberOutOfRange),
                                   {LoadText(numbers[i].labelId), Number(numbers[i].range.lowest),
                                    Number(numbers[i].range.highest)}));
            return std::nullopt;
        }
        parsed[i] = *number;
    }
    values.timerInterval = parsed[0];
    values.iconSize = static_cast<std::uint8_t>(parsed[1]);
    values.externalPrograms = programs_;
    values.filters = filters_;

    for (const auto& check : kCheckFlags) values.*check.flag = Checked(chkCheck(check.index));
    values.console = Text(txtText(2));
    values.cuiWindowState = WindowStateFromListIndex(ComboIndex(cboCombo(1)));
    values.extension = Text(txtText(3));
    values.player = Text(cboCombo(2));
    values.guiWindowState = WindowStateFromListIndex(ComboIndex(cboCombo(3)));
    values.script = Text(txtScript(0));
    values.required = Text(txtScript(1));
    const struct {
        const std::string& text;
        HWND field;
        int nameId;
    } blocks[] = {{values.script, txtScript(0), ids::kTabBatScript},
                  {values.required, txtScript(1), ids::kFrameRequiredFiles}};
    for (const auto& block : blocks) {
        if (TextBlockFits(block.text)) continue;
        RefuseField(
            kScriptPage, block.field,
            FormatText(LoadText(ids::kTooManyLines),
                       {LoadText(block.nameId), std::to_wstring(TextBlockLineCount(block.text)),
                        Number(settings::kMaxListEntries)}));
        return std::nullopt;
    }
    return values;
}

bool frmConfig::CheckFilesWritable(const std::string& name) {
    // Found before anything is written, so that a save either happens or
    // leaves both files as they were.
    const std::string configuration = settings::ConfigurationFile(appFolder_, name);
    std::vector<std::string> files = {MainFile(), configuration};
    if (GetFileAttributesA(configuration.c_str()) != INVALID_FILE_ATTRIBUTES) {
        files.push_back(settings::ConfigurationBackupFile(appFolder_, name));
    }
    for (const std::string& file : files) {
        const DWORD code = WriteAccessError(file);
        if (code == ERROR_SUCCESS) continue;
        std::wstring description = FormatText(LoadText(ids::kCannotWriteFile), {Widen(file)});
        if (const std::wstring reason = SystemReason(code); !reason.empty()) {
            description += L" " + reason;
        }
        ReportError(Handle(), static_cast<long>(code), description,
                    Widen(settings::kSaveProcedureName));
        return false;
    }
    return true;
}

bool frmConfig::SaveConfigure(const ConfigurationValues& values) {
    const std::string name = settings::SafeConfigurationName(values.name);
    if (!CheckFilesWritable(name)) return false;
    // Hundreds of records take seconds to write: the windows keep being
    // painted meanwhile, and the window takes no command until it is done.
    saving_ = true;
    const HCURSOR cursor = SetCursor(LoadCursor(nullptr, IDC_WAIT));
    DWORD lastPaint = GetTickCount();
    const settings::ConfigurationSaveResult result =
        settings::SaveConfiguration(values, appFolder_, MainFile(), [&lastPaint] {
            if (GetTickCount() - lastPaint < 50) return;
            lastPaint = GetTickCount();
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_PAINT)) {
                DispatchMessageW(&message);
            }
        });
    SetCursor(cursor);
    saving_ = false;
    using Status = settings::ConfigurationSaveResult::Status;
    if (result.status == Status::EmptyName) {
        ShowCheckMessage(Handle(), LoadText(ids::kEnterNewConfigureName),
                         MB_OK | MB_ICONINFORMATION);
        return false;
    }
    if (result.status == Status::Failed) {
        ReportError(Handle(), result.errorNumber, Widen(result.errorDescription),
                    Widen(settings::kSaveProcedureName));
        // What was written before the failure is shown as it now stands.
        HandOverToMainWindow(result, values);
        return false;
    }
    filling_ = true;
    SetText(txtScript(0), result.script);
    SetText(txtScript(1), result.required);
    filling_ = false;
    RefreshConfigurationList();
    SetText(cboCombo(0), result.name);
    // The players and editors just saved are offered in the lists at once.
    settings::RebuildPlayerList(MainFile(), appFolder_);
    settings::RebuildEditorList(MainFile());
    ViewUpdate_PlayerList();
    ViewUpdate_EditorList();
    HandOverToMainWindow(result, values);
    return true;
}

void frmConfig::HandOverToMainWindow(const settings::ConfigurationSaveResult& result,
                                     const ConfigurationValues& values) {
    mdlMain::SetUseAltPopUp(ReadIniFlag(keys::kUseAltPopUp, MainFile()));
    if (result.languageChanged) {
        mdlMain::SetLanguageOffset(LanguageOffsetFor(ReadIni(keys::kLanguage, MainFile())));
        ChangeLangConfig();
        RelabelResultWindow();
        if (main_ != nullptr) main_->ChangeLangZorvi();
    }
    if (main_ == nullptr) return;
    main_->ChangeTimerIntarval(ReadIniInt(keys::kTimerInterval, MainFile()));
    if (result.iconSizeChanged) main_->ViewChange_IconSize(values.iconSize);
    if (result.alwaysTopChanged) main_->ApplyAlwaysOnTop();
    main_->AddExternalProgram();
    main_->ViewChange_DefinedScript();
    main_->ViewChange_Player();
    main_->ViewUpdate();
}

}  // namespace zorvi
