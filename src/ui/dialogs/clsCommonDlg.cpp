// The open-file and save-file dialogs behind a handful of properties.
#include "ui/dialogs/clsCommonDlg.h"

#include <cderr.h>
#include <commdlg.h>

#include <cstdlib>
#include <exception>

#include "files/path_text.h"

namespace zorvi {
namespace {

std::string TrimBlanks(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The chosen path; with multiple selection the folder and the names stay
// NUL-separated up to the closing pair of NULs. A single path is cut at its
// own NUL so that the tail of a longer proposed name cannot follow it.
std::string ChosenFileName(const std::string& buffer, bool multipleSelection) {
    if (!multipleSelection) return mdlFile::TrimNull(buffer);
    const auto end = buffer.find(std::string_view("\0\0", 2));
    if (end != std::string::npos) return buffer.substr(0, end);
    return buffer.substr(0, buffer.find_last_not_of('\0') + 1);
}

}  // namespace

clsCommonDlg::clsCommonDlg() : filter_(mdlFile::NulSeparatedFilter("All Files (*.*)|*.*|")) {
    std::string folder(mdlFile::kPathBuffer, '\0');
    const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(folder.size()), folder.data());
    if (length > 0 && length < folder.size()) InitDir = mdlFile::TrimNull(folder);
}

void clsCommonDlg::SetFilter(std::string_view filter) {
    filter_ = mdlFile::NulSeparatedFilter(filter);
}

void clsCommonDlg::SetOwner(HWND owner) {
    owner_ = owner;
    // A window that never got a font draws with the system font. The owner may
    // belong to another thread: do not wait on it for long.
    DWORD_PTR answer = 0;
    HFONT font = nullptr;
    if (owner != nullptr &&
        SendMessageTimeoutW(owner, WM_GETFONT, 0, 0, SMTO_ABORTIFHUNG, 1000, &answer) != 0) {
        font = reinterpret_cast<HFONT>(answer);
    }
    if (font == nullptr) font = static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
    LOGFONTA attributes{};
    if (GetObjectA(font, sizeof attributes, &attributes) != sizeof attributes) return;
    const HDC screen = GetDC(nullptr);
    const int dotsPerInch = screen != nullptr ? GetDeviceCaps(screen, LOGPIXELSY) : 96;
    if (screen != nullptr) ReleaseDC(nullptr, screen);
    FontBold = attributes.lfWeight >= FW_BOLD;
    FontItalic = attributes.lfItalic != 0;
    FontUnderline = attributes.lfUnderline != 0;
    FontStrikethru = attributes.lfStrikeOut != 0;
    FontSize = dotsPerInch > 0 ? std::abs(attributes.lfHeight) * 72.0 / dotsPerInch : 0;
}

void clsCommonDlg::ShowOpen() {
    Action = 1;
    Show();
}

void clsCommonDlg::ShowSave() {
    Action = 2;
    Show();
}

void clsCommonDlg::Show() {
    if (Action != 1 && Action != 2) return;
    try {
        CancelButton = false;
        ErrNumber = 0;

        // The proposed name, cut to leave room for its NUL, in a NUL-filled
        // buffer of MaxFileSize characters (at least one).
        const std::size_t fileSize = MaxFileSize > 1 ? static_cast<std::size_t>(MaxFileSize) : 1;
        std::string fileBuffer = FileName.substr(0, fileSize - 1);
        fileBuffer.resize(fileSize, '\0');
        std::string titleBuffer = FileTitle + '\0';
        const std::string defaultExtension = mdlFile::TrimNull(DefaultExt);

        OPENFILENAMEA record{};
        // The record without the Windows 2000 tail, as the program has always passed it.
        record.lStructSize = OPENFILENAME_SIZE_VERSION_400A;
        record.hwndOwner = owner_;
        record.hInstance = nullptr;
        record.lpstrFilter = filter_.c_str();
        record.lpstrCustomFilter = nullptr;
        record.nFilterIndex = FilterIndex;
        record.lpstrFile = fileBuffer.data();
        record.nMaxFile = static_cast<DWORD>(fileBuffer.size());
        record.lpstrFileTitle = titleBuffer.data();
        record.nMaxFileTitle = static_cast<DWORD>(titleBuffer.size());
        record.lpstrInitialDir = InitDir.c_str();
        record.lpstrTitle = DialogTitle.c_str();
        record.Flags = Flags;
        // A lone NUL means no default: the dialog must not guess one.
        record.lpstrDefExt = defaultExtension.empty() ? nullptr : defaultExtension.c_str();

        const BOOL result = Action == 1 ? GetOpenFileNameA(&record) : GetSaveFileNameA(&record);
        if (result == 1) {
            FileName = ChosenFileName(fileBuffer, (Flags & OFN_ALLOWMULTISELECT) != 0);
            FileTitle = TrimBlanks(mdlFile::TrimNull(titleBuffer));
        } else if (result == 0) {
            // Cancelled, or failed without saying why: the same to the caller.
            if (CancelError) {
                CancelButton = true;
                FileName.clear();
            }
        } else {
            ErrNumber = CommDlgExtendedError();
        }
    } catch (const std::exception&) {
        // Out of memory for the buffers: the dialog simply did not happen.
    }
}

std::wstring clsCommonDlg::ErrDescription() const { return ErrorText(ErrorNumberOf(ErrNumber)); }

long clsCommonDlg::ErrorNumberOf(DWORD extendedError) {
    // The table counts down from 32767 by the platform's code; the general
    // dialog failure (0xFFFF) sits just above it.
    if (extendedError == CDERR_DIALOGFAILURE) return 32768;
    return 0x7FFF - static_cast<long>(extendedError);
}

std::wstring clsCommonDlg::ErrorText(long number) {
    switch (number) {
        case 20476: return L"メンバ lpstrFile が指すバッファが小さすぎます。";
        case 20477: return L"ファイル名が無効です。";
        case 20478: return L"メモリ不足のために、リスト ボックスをサブクラス化できません。";
        case 24574: return L"フォントが存在しません。";
        case 28660:
            return L"WIN.INI ファイル内の [devices] セクションに、必要なプリンタについてのエントリがありません。";
        case 28661: return L"PrintDlg 関数が情報コンテキストを作成できません。";
        case 28662:
            return L"DevMode データ構造と DevNames データ構造のデータが異なるプリンタを指しています。";
        case 28663: return L"通常使うプリンタが設定されていません。";
        case 28664: return L"プリンタ ドライバが見つかりません。";
        case 28665: return L"PrintDlg 関数を初期化できません。";
        case 28666: return L"プリンタ ドライバが DevMode データ構造を初期化できません。";
        case 28667: return L"PrintDlg 関数が、指定したプリンタ ドライバをロードできません。";
        case 28668:
        case 28671:
            return L"PDReturnDefault フラグが設定されていますが、hDevMode フィールドまたは hDevNames "
                   L"フィールドが 0 ではありません。";
        case 28669: return L"CommonDialog 関数が WIN.INI の [devices] セクションの文字列を解析できません。";
        case 28670: return L"必要なリソースを読み込めません。";
        case 32751: return L"Microsoft Windows のヘルプを呼び出せません。";
        case 32752: return L"FileName プロパティまたは Filter プロパティにメモリを割り当てられません。";
        case 32755: return L"[キャンセル] ボタンが選択されました。";
        case 32757: return L"関数が、ハンドルに関連付けられたメモリをロックできません。";
        case 32758: return L"関数が、内部のデータ構造にメモリを割り当てられません。";
        case 32759: return L"関数が指定したリソースをロックできません。";
        case 32760:
        case 32761: return L"関数が指定したリソースをロードできません。";
        case 32765: return L"関数を初期化できません。";
        case 32768: return L"関数がダイアログ ボックスをロードできません。";
        default: return L"未知のｴﾗｰです。";
    }
}

}  // namespace zorvi
