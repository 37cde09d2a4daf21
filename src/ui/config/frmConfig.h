// The configuration window: five pages that edit the main settings and the
// current configuration, the configuration selector with New and Delete,
// and OK, Apply and Cancel. Saving hands every change to the main window.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include <array>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "core/handles_win.h"
#include "settings/config_save.h"
#include "settings/config_save_win.h"
#include "ui/window_base.h"

namespace zorvi {

class frmZorvi;

class frmConfig : public BaseWindow<frmConfig> {
public:
    static const wchar_t* ClassName() { return L"ZorviConfig"; }

    static constexpr int kPages = 5;
    enum Page { kBasicPage, kCompilePage, kScriptPage, kFrontendPage, kFilterPage };
    // The size a double-click on a page gives back, in twips.
    static constexpr int kStandardWidth = 7400;
    static constexpr int kStandardHeight = 7000;
    // cmdCommand: index = caption id - 150. OK and Cancel answer Enter and Esc.
    enum Command {
        kOk,
        kApply,
        kCancel,
        kNewConfigure,
        kDeleteConfigure,
        kReferEditor,
        kReferConsole,
        kReferPlayer,
        kNewFrontend,
        kDeleteFrontend,
        kUpFrontend,
        kDownFrontend,
        kReferFrontendCommand,
        kReferFrontendFolder,
        kExecuteFrontend,
        kNewFilter,
        kDeleteFilter,
        kUpFilter,
        kDownFilter,
        kReferRequiredFile,
        kCommandCount
    };
    // The launcher record's text fields, and the filter record's.
    enum FrontendField { kFrontendName, kFrontendCommand, kFrontendOption, kFrontendFolder };
    enum FilterField { kFilterName, kFilterExtension };

    // main may be null: the window then edits the files alone.
    explicit frmConfig(frmZorvi* main);
    ~frmConfig();

    // Form_Load: the window, hidden, with every control filled from the files.
    bool Create();
    // Shows page - 1 (1 to 5; other values keep the page), follows a change
    // of the current configuration made elsewhere, and comes to the front.
    void ShowConfig(int page);
    // Every caption again, in the current language.
    void ChangeLangConfig();
    // The controls of the main settings file.
    void LoadConfigure();
    // The controls of a configuration file.
    void ViewChangeConfigure(const std::string& file);
    // Writes everything; a failure is reported under "Config-WriteIniFile".
    bool SaveConfigure(const settings::ConfigurationValues& values);
    void ViewUpdate_PlayerList();
    void ViewUpdate_EditorList();
    // The keys of the window: Ctrl (Shift, Alt) with the cursor keys move
    // and size it. True when the key was used.
    bool Form_KeyDown(int keyCode, int shift);
    // Tab, the access keys, Enter and Esc, and Ctrl+Tab between pages, for a
    // message of this window's; true when it was used.
    bool PreTranslate(MSG& message);
    // OK and Apply: false when nothing was saved.
    bool SaveFromWindow();

    int CurrentPage() const { return page_; }
    void SelectPage(int page);

    // The controls, by the names the settings are bound to.
    HWND chkOption(int i) const { return chkOption_[static_cast<std::size_t>(i)]; }
    HWND chkCheck(int i) const { return chkCheck_[static_cast<std::size_t>(i)]; }
    HWND cboCombo(int i) const { return cboCombo_[static_cast<std::size_t>(i)]; }
    HWND txtText(int i) const { return txtText_[static_cast<std::size_t>(i)]; }
    HWND txtScript(int i) const { return txtScript_[static_cast<std::size_t>(i)]; }
    // 0 English, 1 Japanese.
    HWND optLanguage(int i) const { return optLanguage_[static_cast<std::size_t>(i)]; }
    // 0 the file filters, 1 the launcher programs.
    HWND List1(int i) const { return List1_[static_cast<std::size_t>(i)]; }
    HWND cmdCommand(int i) const { return cmdCommand_[static_cast<std::size_t>(i)]; }
    HWND fraConfig(int i) const { return fraConfig_[static_cast<std::size_t>(i)]; }
    HWND TabStrip1() const { return tabStrip_; }
    HWND txtFrontend(FrontendField field) const { return txtFrontend_[field]; }
    HWND chkFrontendAutoRun() const { return chkAutoRun_; }
    HWND txtFilter(FilterField field) const { return txtFilter_[field]; }
    HWND cboFilterConfiguration() const { return cboFilterConfiguration_; }

private:
    friend class BaseWindow<frmConfig>;
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    static INT_PTR CALLBACK PageProc(HWND page, UINT message, WPARAM wParam,
                                     LPARAM lParam) noexcept;
    static LRESULT CALLBACK ListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam,
                                     UINT_PTR id, DWORD_PTR self) noexcept;

    // config_pages.cpp: the controls, their fonts and captions, the layout.
    void CreateControls();
    HWND CreatePage(int index);
    HWND AddControl(HWND parent, const wchar_t* windowClass, DWORD style, int id,
                    DWORD exStyle = 0);
    HWND AddLabel(HWND parent, int captionId);
    void ApplyFont();
    void FillWindowStateList(HWND combo);
    int TextWidth(HWND control) const;
    int Scale(int pixelsAt96) const;
    void Layout();
    // config_layout.cpp: where each page's controls go. Sizes are measured
    // on the font, so that longer Japanese texts and a 144-DPI screen get room.
    struct Metrics {
        int margin, gap, pad, row, text, check, button, buttonWidth, caption;
    };
    Metrics Measure() const;
    HWND Label(int captionId) const;
    int PlaceLabel(int captionId, int x, int rowY, const Metrics& m) const;
    void LayoutBasicPage(const Metrics& m, int width, int height);
    void LayoutCompilePage(const Metrics& m, int width, int height);
    void LayoutScriptPage(const Metrics& m, int width, int height);
    // A page of records: its frame, the list at the top with a column of
    // buttons beside it, and fieldsHeight kept below the list for the
    // fields. Gives the inner edges and the top of the fields.
    struct RecordPage {
        int left;
        int right;
        int fieldsTop;
    };
    RecordPage LayoutRecordList(const Metrics& m, int width, int height, int frameId, HWND list,
                                std::initializer_list<int> buttons, int fieldsHeight);
    void LayoutFrontendPage(const Metrics& m, int width, int height);
    void LayoutFilterPage(const Metrics& m, int width, int height);

    // frmConfig.cpp: commands, the selector, closing.
    void OnCommand(HWND control, int id, int code);
    void OnCommandButton(int index);
    void Unload();
    void SavePlacement();
    void RestoreStandardSize();
    void MoveFocus(HWND control);
    void OnDpiChanged(int dpi, const RECT& suggested);
    void RefreshConfigurationList();
    // Follows Setting/Default when it changed; reloadRecords also reads the
    // launcher and filter records again.
    void SynchronizeSelector(bool reloadRecords);
    void ChooseConfiguration();
    void NewConfiguration();
    void DeleteConfiguration();
    std::string SelectorText() const;
    bool ReportNameProblem(const std::string& typed);

    // config_values.cpp: controls and values both ways, and the main window's part of a save.
    void ShowMainValues(const settings::ConfigurationValues& values);
    void ShowConfigurationValues(const settings::ConfigurationValues& values);
    std::optional<settings::ConfigurationValues> ReadControls();
    bool RefuseField(int page, HWND field, const std::wstring& message);
    bool CheckFilesWritable(const std::string& name);
    void HandOverToMainWindow(const settings::ConfigurationSaveResult& result,
                              const settings::ConfigurationValues& values);

    // config_lists.cpp: the launcher and file-filter records.
    void LoadRecords();
    void ShowRecordLists();
    void ShowProgramList(std::optional<std::size_t> select);
    void ShowFilterList(std::optional<std::size_t> select);
    void ShowProgramFields();
    void ShowFilterFields();
    void OnProgramFieldChanged(HWND control);
    void OnFilterFieldChanged(HWND control);
    void OnListCommand(int index);
    void FillFilterConfigurations(const std::string& chosen);
    std::optional<std::size_t> Selected(int list) const;
    void ReferFile(int index);
    void ReferFolder();
    void ExecuteProgramRecord();
    void OnDropFiles(HDROP drop);
    void AddDroppedFiles(const std::vector<std::string>& paths);

    frmZorvi* main_ = nullptr;
    std::string appFolder_;
    int page_ = kBasicPage;
    int dpi_ = 96;
    bool filling_ = false;  // controls being filled by the window, not typed into
    bool saving_ = false;   // a save is being written
    UniqueFont font_;
    UniqueIcon bigIcon_, smallIcon_;
    // Where the window was put at load: an unmoved window writes nothing back.
    POINT placedPixels_{};

    HWND tabStrip_ = nullptr;
    HWND lblSelector_ = nullptr;
    std::array<HWND, kPages> fraConfig_{};
    std::array<HWND, 9> chkOption_{};
    std::array<HWND, 8> chkCheck_{};
    std::array<HWND, 7> cboCombo_{};
    std::array<HWND, 4> txtText_{};
    std::array<HWND, 2> txtScript_{};
    std::array<HWND, 2> optLanguage_{};
    std::array<HWND, 2> List1_{};
    std::array<HWND, kCommandCount> cmdCommand_{};
    std::array<HWND, 4> txtFrontend_{};
    HWND chkAutoRun_ = nullptr;
    std::array<HWND, 2> txtFilter_{};
    HWND cboFilterConfiguration_ = nullptr;
    // Every control with a caption: its text id, its page (-1: the window's
    // own controls) and whether it takes an access key.
    struct Captioned {
        HWND control;
        int captionId;
        int group;
        bool mnemonic = true;
    };
    std::vector<Captioned> captions_;
    std::array<HWND, 8> frames_{};  // fraConfig's frames, captions 280 to 287

    std::vector<settings::ExternalProgramRecord> programs_;
    std::vector<settings::FilterRecord> filters_;
    std::vector<std::string> configurationNames_;  // cfg\*.ini, as the selector lists them
    HWND focus_ = nullptr;  // the control to give the focus back to on activation
};

// The one configuration window. Created (loaded) on the first call and again
// after it was closed (unloaded); main is the window it hands changes to.
void ShowConfigWindow(frmZorvi* main, int page);
// The open configuration window, or null.
frmConfig* ConfigWindow();
// Unloads it, if open: the main window's shut-down.
void ReleaseConfigWindow();
// For the message loop: the configuration window's Tab, access keys, Enter and Esc.
bool PreTranslateConfigMessage(MSG& message);

}  // namespace zorvi
