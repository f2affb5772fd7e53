#include "tests/dialog/driver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <stdexcept>
#include <thread>

#include "kolink/tone_dialog.h"
#include "tests/tone/curves.h"

namespace ko::test {
namespace {

constexpr DWORD kPatience = 20000;  // milliseconds; a machine may be busy

LRESULT send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    DWORD_PTR result = 0;
    if (!::SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kPatience, &result))
        throw std::runtime_error("a window did not answer message " + std::to_string(message));
    return static_cast<LRESULT>(result);
}

struct Search {
    HWND owner;
    bool anyOwner;
    HWND found;
};

BOOL CALLBACK consider(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<Search*>(parameter);
    wchar_t name[16] = {};
    ::GetClassNameW(window, name, 16);
    const bool fits = std::wstring_view(name) == L"#32770" && ::IsWindowVisible(window) &&
                      (search.anyOwner || ::GetWindow(window, GW_OWNER) == search.owner);
    if (!fits) return TRUE;
    search.found = window;
    return FALSE;
}

HWND dialogOf(DWORD thread, HWND owner, bool anyOwner) {
    Search search{owner, anyOwner, nullptr};
    ::EnumThreadWindows(thread, consider, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

// Keeps what the pointer says on its own, at any time, from the windows of this thread: only what a
// test sends arrives.
class PointerAway {
public:
    PointerAway()
        : hook_(::SetWindowsHookExW(WH_MOUSE, discard, nullptr, ::GetCurrentThreadId())) {}
    ~PointerAway() { ::UnhookWindowsHookEx(hook_); }
    PointerAway(const PointerAway&) = delete;

private:
    static LRESULT CALLBACK discard(int code, WPARAM wParam, LPARAM lParam) {
        return code < 0 ? ::CallNextHookEx(nullptr, code, wParam, lParam) : 1;
    }
    HHOOK hook_;
};

DWORD threadOf(HWND window) { return ::GetWindowThreadProcessId(window, nullptr); }

}  // namespace

const ToneDialogKind kBkc = {"bkc", jKoToneBkcCurveDlg, 1, 64, ".bkc", L"K補正ﾃｰﾌﾞﾙの編集 - [",
                             L"BKCﾌｧｲﾙ (*.BKC)|*.bkc|", L"ﾄｰﾝｶｰﾌﾞﾌｧｲﾙが見つかりません。\n["};
const ToneDialogKind kTnc = {"tnc", jKoToneCmykToneCurveDlg, 4, 16, ".tnc", L"ﾌｧｲﾙ編集 - [",
                             L"ﾄｰﾝｶｰﾌﾞﾌｧｲﾙ (*.tnc)|*.tnc|", L"ﾄｰﾝｶｰﾌﾞﾌｧｲﾙが見つかりません。\n["};
const ToneDialogKind kDcc = {"dcc", jKoToneDccDlg, 6, 16, ".dcc", L"DCCﾌｧｲﾙ編集 - [",
                             L"DCCﾌｧｲﾙ (*.dcc)|*.dcc|", L"DCCﾌｧｲﾙが見つかりません。\n["};

bool eventually(const std::function<bool()>& holds) {
    const ULONGLONG end = ::GetTickCount64() + kPatience;
    while (!holds()) {
        if (::GetTickCount64() > end) return false;
        ::Sleep(2);
    }
    return true;
}

std::wstring wide(std::string_view text) {
    std::wstring result(text.size() + 1, L'\0');
    result.resize(static_cast<size_t>(
        ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), result.data(),
                              static_cast<int>(result.size()))));
    return result;
}

namespace {
std::wstring textIn(HWND window) {
    std::wstring text(static_cast<size_t>(send(window, WM_GETTEXTLENGTH)) + 1, L'\0');
    text.resize(static_cast<size_t>(
        send(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}
}  // namespace

std::wstring DialogWindow::caption() const { return textIn(window_); }
std::wstring DialogWindow::text(int id) const { return textIn(item(id)); }
bool DialogWindow::isChecked(int id) const { return send(item(id), BM_GETCHECK) == BST_CHECKED; }

void DialogWindow::focus(int id) const {
    send(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(item(id)), TRUE);
}

HWND DialogWindow::focusedWindow() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    ::GetGUIThreadInfo(threadOf(window_), &info);
    return info.hwndFocus;
}

void DialogWindow::type(int id, std::wstring_view text) const {
    focus(id);
    send(item(id), EM_SETSEL, 0, -1);
    if (text.empty()) send(item(id), WM_KEYDOWN, VK_DELETE);
    for (const wchar_t character : text) send(item(id), WM_CHAR, character);
}

void DialogWindow::enter(int id, std::wstring_view text, int leaveFor) const {
    type(id, text);
    focus(leaveFor);
}

void DialogWindow::key(int id, WPARAM key) const {
    focus(id);
    send(item(id), WM_KEYDOWN, key);
    send(item(id), WM_KEYUP, key);
}

void DialogWindow::pressKey(int id, WPARAM key) const {
    focus(id);
    ::PostMessageW(item(id), WM_KEYDOWN, key, 0);
}

void DialogWindow::pressControlAnd(int id, BYTE key) const {
    focus(id);
    ::keybd_event(VK_CONTROL, 0, 0, 0);
    ::keybd_event(key, 0, 0, 0);
    ::keybd_event(key, 0, KEYEVENTF_KEYUP, 0);
    ::keybd_event(VK_CONTROL, 0, KEYEVENTF_KEYUP, 0);
}

void DialogWindow::click(int id) const { send(item(id), BM_CLICK); }
void DialogWindow::press(int id) const { ::PostMessageW(item(id), BM_CLICK, 0, 0); }

void DialogWindow::leave(int id) const {
    press(id);
    HWND question = nullptr;
    const auto left = [&] {
        return !isOpen() || (question = dialogOf(threadOf(window_), window_, false)) != nullptr;
    };
    if (!eventually(left)) throw std::runtime_error("the dialog stays open");
    if (!question) return;
    ::PostMessageW(::GetDlgItem(question, IDNO), BM_CLICK, 0, 0);
    if (!eventually([&] { return !isOpen(); })) throw std::runtime_error("the dialog stays open");
}

DialogWindow DialogWindow::asked() const {
    HWND opened = nullptr;
    if (!eventually([&] { return (opened = dialogOf(threadOf(window_), window_, false)); }))
        throw std::runtime_error("no window was opened");
    send(opened, WM_NULL);
    return DialogWindow(opened);
}

void DialogWindow::waitForQuiet() const {
    if (!eventually([&] {
            return !dialogOf(threadOf(window_), window_, false) && ::IsWindowEnabled(window_);
        }))
        throw std::runtime_error("a window stays open");
    send(window_, WM_NULL);
    send(window_, WM_NULL);
}

void DialogWindow::chooseFile(std::string_view name) const {
    constexpr int kNameEdit = 0x480, kNameCombo = 0x47c;  // which one depends on the system
    const HWND edit = item(kNameEdit) ? item(kNameEdit) : item(kNameCombo);
    if (!edit) throw std::runtime_error("the file dialog has no field for the name");
    const std::wstring text = wide(name);
    send(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    press(IDOK);
}

POINT DialogWindow::point(int32_t index, int32_t last, int32_t level) const {
    RECT area;
    ::GetClientRect(item(IDC_GRAPH), &area);
    const int width = area.right - 23, height = area.bottom - 23;
    return {10 + width * index / last, 10 + height - level * height / 255};
}

int32_t DialogWindow::levelAt(int y) const {
    RECT area;
    ::GetClientRect(item(IDC_GRAPH), &area);
    const int height = area.bottom - 23;
    const int level = (height - y + 10) * 255 / height;
    return level < 0 ? 0 : level > 255 ? 255 : level;
}

void DialogWindow::mouse(UINT message, POINT at, int control) const {
    send(item(control), message, 0, MAKELPARAM(at.x, at.y));
}

void DialogWindow::drag(POINT from, POINT to, int control) const {
    mouse(WM_LBUTTONDOWN, from, control);
    mouse(WM_MOUSEMOVE, to, control);
}

void openDialog(const std::function<void()>& call,
                const std::function<void(const DialogWindow&)>& drive) {
    const PointerAway away;
    const DWORD thread = ::GetCurrentThreadId();
    std::atomic<bool> closed = false;
    std::thread driver([&] {
        HWND dialog = nullptr;
        const auto opened = [&] { return closed || (dialog = dialogOf(thread, nullptr, true)); };
        try {
            if (!eventually(opened) || !dialog) throw std::runtime_error("no dialog was opened");
            drive(DialogWindow(dialog));
        } catch (const std::exception& problem) {
            ADD_FAILURE() << problem.what();
        }
        if (eventually([&] {
                const HWND open = closed ? nullptr : dialogOf(thread, nullptr, true);
                const int answer = open && ::GetDlgItem(open, IDNO) ? IDNO : IDCANCEL;
                if (open) ::PostMessageW(open, WM_COMMAND, static_cast<WPARAM>(answer), 0);
                return closed.load();
            }))
            return;
        std::puts("[  FAILED  ] a dialog cannot be closed (0 ms)");
        std::fflush(stdout);
        ::TerminateProcess(::GetCurrentProcess(), 3);
    });
    call();
    closed = true;
    driver.join();
}

Outcome openDialog(int32_t (*edit)(HWND, char*), std::string_view path,
                   const std::function<void(const DialogWindow&)>& drive, HWND owner) {
    char buffer[260] = {};
    path.copy(buffer, sizeof buffer - 1);
    int32_t result = 0;
    openDialog([&] { result = edit(owner, buffer); }, drive);
    return {result, buffer};
}

std::string freshFile(const ToneDialogKind& kind, const TempFolder& folder, std::string_view name) {
    const std::string path = folder.path(name);
    const Curve curve = newCurve(kind.channels);
    DccSettings settings{0, 0, 0, 0, curve.get()};
    const int32_t saved = kind.channels == 1   ? jKoToneSaveBkcCurve(curve.get(), path.c_str())
                          : kind.channels == 4 ? jKoToneSaveCmykToneCurve(curve.get(), path.c_str())
                                               : jKoToneSaveDcc(&settings, path.c_str());
    EXPECT_EQ(saved, 1);
    return path;
}

CurveFile loaded(const ToneDialogKind& kind, const std::string& path) {
    const Curve curve = newCurve(kind.channels);
    DccSettings settings{0, 0, 0, 0, curve.get()};
    const int32_t read = kind.channels == 1   ? jKoToneLoadBkcCurve(curve.get(), path.c_str())
                         : kind.channels == 4 ? jKoToneLoadCmykToneCurve(curve.get(), path.c_str())
                                              : jKoToneLoadDcc(&settings, path.c_str());
    EXPECT_EQ(read, 1) << path;
    CurveFile file;
    file.title = curve->title;
    file.table = tableOf(curve);
    file.dpiX = settings.DPIX;
    file.dpiY = settings.DPIY;
    file.totalInk = settings.WINK;
    file.lightInk = settings.LCLM;
    return file;
}

}  // namespace ko::test
