// Resource string ids of the user interface. Each names the English text;
// the Japanese text is at the same id + 1000 (the language offset).
#pragma once

namespace zorvi::ids {

// Shortcut help of the about window: id 1 followed directly by id 2
// First half; the about window shows text 1 and text 2 joined as they stand.
inline constexpr int kShortcutHelpMain       = 1;
// Second half; empty in Japanese, where the first text holds both halves.
inline constexpr int kShortcutHelpWindowKeys = 2;

// Common words and prompts
inline constexpr int kError                 = 6;
// Appended to a name, with its leading blank.
inline constexpr int kFileSuffix            = 7;
inline constexpr int kSelectUsedConfigure   = 8;
inline constexpr int kEnterNewConfigureName = 9;
// Name of a freshly added external program.
inline constexpr int kNewEntryName          = 10;

// Main window toolbar tooltips and buttons
// Also the title of the target-file dialog.
inline constexpr int kToolbarSetTargetFile  = 101;
inline constexpr int kToolbarConfigure      = 102;
// Shown with "=ON" or "=OFF" appended.
inline constexpr int kToolbarWatchMode      = 103;
inline constexpr int kToolbarExecuteCompile = 104;
inline constexpr int kToolbarPlay           = 105;
inline constexpr int kToolbarLogView        = 106;
inline constexpr int kToolbarAboutHelp      = 107;
inline constexpr int kButtonExit            = 109;
inline constexpr int kButtonOk              = 110;
// The about window's button that shows and hides the shortcut keys.
inline constexpr int kButtonShortcutKeys    = 111;

// Main window popup menu
// Popup entries are loaded in order: menu index = id - kMenuAbout.
inline constexpr int kMenuAbout            = 130;
inline constexpr int kMenuSeparator1       = 131;
inline constexpr int kMenuSetTargetFile    = 132;
inline constexpr int kMenuRecentUsed       = 133;
inline constexpr int kMenuSeparator2       = 134;
inline constexpr int kMenuWatchOnOff       = 135;
inline constexpr int kMenuSeparator3       = 136;
inline constexpr int kMenuExecuteCompiling = 137;
inline constexpr int kMenuPlay             = 138;
inline constexpr int kMenuLogWindow        = 139;
inline constexpr int kMenuSeparator4       = 140;
inline constexpr int kMenuConfigure        = 141;
inline constexpr int kMenuScriptSetting    = 142;
inline constexpr int kMenuPlayerSetting    = 143;
inline constexpr int kMenuSeparator5       = 144;
inline constexpr int kMenuShow             = 145;
inline constexpr int kMenuExit             = 146;
// Shown only while a compile runs, after "Log Window".
inline constexpr int kMenuStopCompiling    = 148;

// Configuration window buttons (cmdCommand 0 to 19)
// Button captions are loaded in order: cmdCommand index = id - kConfigOk.
inline constexpr int kConfigOk                   = 150;
inline constexpr int kConfigApply                = 151;
inline constexpr int kConfigCancel               = 152;
inline constexpr int kConfigNewConfigure         = 153;
inline constexpr int kConfigDeleteConfigure      = 154;
inline constexpr int kConfigReferEditor          = 155;
inline constexpr int kConfigReferConsole         = 156;
inline constexpr int kConfigReferPlayer          = 157;
inline constexpr int kConfigNewFrontend          = 158;
inline constexpr int kConfigDeleteFrontend       = 159;
inline constexpr int kConfigUpFrontend           = 160;
inline constexpr int kConfigDownFrontend         = 161;
inline constexpr int kConfigReferFrontendCommand = 162;
inline constexpr int kConfigReferFrontendFolder  = 163;
inline constexpr int kConfigExecuteFrontend      = 164;
inline constexpr int kConfigNewFilter            = 165;
inline constexpr int kConfigDeleteFilter         = 166;
inline constexpr int kConfigUpFilter             = 167;
inline constexpr int kConfigDownFilter           = 168;
inline constexpr int kConfigReferRequiredFile    = 169;

// Configuration window tabs
// Tab n (1-based) = kTabBasicConfigure + n - 1.
inline constexpr int kTabBasicConfigure   = 180;
inline constexpr int kTabCompileConfigure = 181;
inline constexpr int kTabBatScript        = 182;
inline constexpr int kTabFrontend         = 183;
inline constexpr int kTabFileFilter       = 184;

// Configuration window notices, history menu and field labels
inline constexpr int kWshNotInstalled          = 197;
inline constexpr int kCannotDragAndDrop        = 198;
inline constexpr int kHistoryClear             = 199;
inline constexpr int kLabelTimerInterval       = 201;
inline constexpr int kLabelMsec                = 202;
inline constexpr int kLabelIconSize            = 203;
inline constexpr int kLabelPt                  = 204;
inline constexpr int kLabelGeneratedExtension  = 205;
inline constexpr int kLabelEditorWindowState   = 206;
inline constexpr int kLabelConsoleWindowState  = 207;
inline constexpr int kLabelPlayerWindowState   = 208;
inline constexpr int kLabelFrontendName        = 209;
inline constexpr int kLabelFrontendCommand     = 210;
inline constexpr int kLabelFrontendOption      = 211;
inline constexpr int kLabelFrontendWorkFolder  = 212;
inline constexpr int kLabelFrontendWindowState = 213;
inline constexpr int kLabelFilterName          = 214;
inline constexpr int kLabelFilterExtension     = 215;

// Configuration window check boxes
// The chkCheck index = id - kCheckUseConsole.
inline constexpr int kCheckUseConsole           = 230;
inline constexpr int kCheckUsePlayer            = 231;
inline constexpr int kCheckUseShortName         = 232;
inline constexpr int kCheckDetectError          = 233;
inline constexpr int kCheckStepMode             = 234;
inline constexpr int kCheckUseAssociatedEditor  = 235;
// Caption of chkCheck 6; its state is not saved.
inline constexpr int kCheckShutdownOnExit       = 236;
inline constexpr int kCheckUseAssociatedPlayer  = 237;
inline constexpr int kCheckFrontendAutoRun      = 240;
inline constexpr int kCheckFrontendAutoShutDown = 241;
// The chkOption index = id - kOptionAlwaysTop.
inline constexpr int kOptionAlwaysTop           = 250;
inline constexpr int kOptionAutoSetFile         = 251;
inline constexpr int kOptionAutoOpen            = 252;
inline constexpr int kOptionAutoWatch           = 253;
inline constexpr int kOptionAutoMinimize        = 254;
inline constexpr int kOptionTaskTray            = 255;
inline constexpr int kOptionUseAltPopUp         = 256;
inline constexpr int kOptionAutoClose           = 257;
inline constexpr int kOptionAutoShutDown        = 258;

// Window-state choices (index 0 to 3)
// Window-state lists offer Normal..Maximized; stored value = position + 1.
inline constexpr int kWindowStateHide      = 270;
inline constexpr int kWindowStateNormal    = 271;
inline constexpr int kWindowStateMinimized = 272;
inline constexpr int kWindowStateMaximized = 273;

// Configuration window frames
inline constexpr int kFrameLanguage           = 280;
inline constexpr int kFrameEditor             = 281;
inline constexpr int kFrameOption             = 282;
inline constexpr int kFrameConsoleApplication = 283;
inline constexpr int kFramePlayer             = 284;
inline constexpr int kFrameFileFrontend       = 285;
inline constexpr int kFrameRequiredFiles      = 286;
inline constexpr int kFrameFileFilter         = 287;
inline constexpr int kFrameRequiredFile       = 290;
inline constexpr int kFrameFileFrontendAlt    = 291;

// Messages
// Target confirmation: path, CR, this, CR, kAskOk.
inline constexpr int kConfirmSetTarget          = 300;
inline constexpr int kAskOk                     = 301;
// Appended to a name, with its leading blank.
inline constexpr int kNotFoundSuffix            = 302;
// Delete prompt: this + " " + kAskOk.
inline constexpr int kDeletePrompt              = 303;
inline constexpr int kCompileErrorDetected      = 304;
inline constexpr int kLogFileNotFound           = 305;
inline constexpr int kDosProgramFolderNotFound  = 306;
inline constexpr int kWindowsProgramNotFound    = 307;
inline constexpr int kZeroByteFileGenerated     = 308;
inline constexpr int kConfigurationFileNotFound = 309;
inline constexpr int kCompileStopped            = 310;
inline constexpr int kAskStopCompileAndExit     = 311;

// Launch errors
inline constexpr int kFileNotFound = 400;
inline constexpr int kPathNotFound = 401;
inline constexpr int kOutOfMemory  = 403;
inline constexpr int kDllNotFound  = 404;
inline constexpr int kUnknownError = 412;

// Required tools and single instance
inline constexpr int kNoRequiredToolsInfo       = 500;
inline constexpr int kRequiredToolsInstalled    = 501;
// Missing list + " " + this.
inline constexpr int kNotInstalled              = 502;
inline constexpr int kAlreadyStartedCommandMode = 505;
// Appended to the missing preset's file name, with its leading blank.
inline constexpr int kConfigNotFoundUseDefault  = 506;

// Configuration window: refusals and the language choices
// "{0} must be a whole number from {1} to {2}."
inline constexpr int kNumberOutOfRange      = 601;
// "{0}" is a configuration name that cannot be a file name.
inline constexpr int kBadConfigurationName  = 602;
// Shortcut {0} leads to {1}, which does not exist.
inline constexpr int kShortcutTargetMissing = 603;
// {0} (a field) has {1} lines; at most {2} are kept.
inline constexpr int kTooManyLines          = 604;
// The two language choices, each in its own language.
inline constexpr int kLanguageEnglish       = 605;
inline constexpr int kLanguageJapanese      = 606;
// {0} (a file) cannot be written.
inline constexpr int kCannotWriteFile       = 607;

}  // namespace zorvi::ids
