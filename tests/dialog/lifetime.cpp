#include "tests/dialog/lifetime.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

namespace ko::test {
namespace {

// GetGuiResources cannot be relied on; a table that has grown gives new handles higher places.
template <typename Make, typename Free>
unsigned highestIndex(int count, Make make, Free release) {
    std::vector<decltype(make())> made;
    unsigned highest = 0;
    for (int at = 0; at < count; ++at) {
        made.push_back(make());
        highest = std::max<unsigned>(highest, LOWORD(reinterpret_cast<uintptr_t>(made.back())));
    }
    for (const auto handle : made) release(handle);
    return highest;
}
}  // namespace

unsigned drawingObjects() {
    return highestIndex(300, [] { return ::CreatePen(PS_SOLID, 1, 0); }, ::DeleteObject);
}
// Many more than the largest dialog has: those that it gave back would hide what is left behind.
unsigned windows() {
    const auto make = [] {
        return ::CreateWindowExW(0, L"Static", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    };
    return highestIndex(500, make, ::DestroyWindow);
}

namespace {
LRESULT CALLBACK ownerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_APP) ::DestroyWindow(window);
    if (message == WM_APP + 1) {
        const std::unique_ptr<std::function<void()>> call(
            reinterpret_cast<std::function<void()>*>(wParam));
        (*call)();
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}
}  // namespace

HWND newOwner() {
    WNDCLASSW description{};
    description.lpfnWndProc = ownerProcedure;
    description.hInstance = ::GetModuleHandleW(nullptr);
    description.lpszClassName = L"DialogTestsOwner";
    ::RegisterClassW(&description);
    return ::CreateWindowExW(0, description.lpszClassName, L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                             0, 0, 200, 100, nullptr, nullptr, description.hInstance, nullptr);
}

void postDestruction(HWND owner) { ::PostMessageW(owner, WM_APP, 0, 0); }

void postCall(HWND owner, std::function<void()> call) {
    auto kept = std::make_unique<std::function<void()>>(std::move(call));
    if (::PostMessageW(owner, WM_APP + 1, reinterpret_cast<WPARAM>(kept.get()), 0)) (void)kept.release();
}

void waitForPosted(HWND owner) {
    for (int round = 0; round < 3; ++round) {
        const auto handled = std::make_shared<std::atomic<bool>>(false);
        postCall(owner, [handled] { *handled = true; });
        EXPECT_TRUE(eventually([&] { return handled->load(); }));
    }
}

void onClipboard(const std::wstring& text) {
    ASSERT_TRUE(eventually([] { return ::OpenClipboard(nullptr) != FALSE; }));
    ::EmptyClipboard();
    const HGLOBAL block = ::GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t));
    text.copy(static_cast<wchar_t*>(::GlobalLock(block)), text.size());
    static_cast<wchar_t*>(::GlobalLock(block))[text.size()] = L'\0';
    ::GlobalUnlock(block);
    EXPECT_NE(::SetClipboardData(CF_UNICODETEXT, block), nullptr);
    ::CloseClipboard();
}

}  // namespace ko::test
