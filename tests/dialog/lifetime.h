// What the tests of a dialog's life need: what is left behind, owners that go, the clipboard.
#pragma once

#include <functional>
#include <string>

#include "tests/dialog/driver.h"

namespace ko::test {

// The highest place in the system's tables that new handles get: grows with what is left behind.
unsigned drawingObjects();
unsigned windows();

// An owner for dialogs, which does on its own thread what is posted to it.
HWND newOwner();
void postDestruction(HWND owner);
void postCall(HWND owner, std::function<void()> call);  // from within the running message loop
// Until what was posted to the owner's thread before, and what that has posted, is handled.
void waitForPosted(HWND owner);

void onClipboard(const std::wstring& text);

}  // namespace ko::test
