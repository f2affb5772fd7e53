// What the tests of the CMYK profile dialog share.
#pragma once

#include <memory>
#include <string>

#include "kolink/profile_dialog.h"
#include "tests/dialog/driver.h"
#include "tests/support/owned.h"

namespace ko::test {

using Profile = OwnedCmykProfile;

// A link on the disk that the library has written: curves and grid with something in them.
void writeLink(const std::string& path, const char* name = "press", const char* comment = "");
Profile loadedLink(const std::string& path);

enum { kTonePage, kCorrectionPage };
void choosePage(const DialogWindow& dialog, int page);
DialogWindow pageOf(const DialogWindow& dialog);  // the one that is shown
std::wstring profileCaption(const std::string& path);

}  // namespace ko::test
