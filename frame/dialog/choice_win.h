// A question whose answers have words of their own: a message box with buttons by what they do.
#pragma once

#include <string>
#include <vector>

#include "frame/dialog/windows.h"

namespace ko::dialog {

struct Answer {
    int id;  // IDCANCEL is also what Escape and the close box give; one of the answers has it
    std::wstring label;
};

// The id of the answer given; the first one is the default.
int askChoice(HWND owner, const std::wstring& caption, const std::wstring& text,
              const std::vector<Answer>& answers);

}  // namespace ko::dialog
