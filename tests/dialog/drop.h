// Files dropped on a dialog.
#pragma once

#include <vector>

#include "tests/dialog/driver.h"

namespace ko::test {

// As the system hands over what was dropped at a place of the dialog. Posted, it does not wait for
// what is asked about it.
void drop(const DialogWindow& dialog, POINT at, const std::vector<std::wstring>& files,
          bool posted = false);

}  // namespace ko::test
