#include "tests/dialog/drop.h"

#include <shlobj.h>

namespace ko::test {

void drop(const DialogWindow& dialog, POINT at, const std::vector<std::wstring>& files,
          bool posted) {
    std::wstring names;
    for (const std::wstring& file : files) names += file + L'\0';
    names += L'\0';
    const HGLOBAL block =
        ::GlobalAlloc(GMEM_MOVEABLE, sizeof(DROPFILES) + names.size() * sizeof(wchar_t));
    auto* const head = static_cast<DROPFILES*>(::GlobalLock(block));
    *head = {sizeof(DROPFILES), at, FALSE, TRUE};
    names.copy(reinterpret_cast<wchar_t*>(head + 1), names.size());
    ::GlobalUnlock(block);
    const auto parameter = reinterpret_cast<WPARAM>(block);
    if (posted) ::PostMessageW(dialog.handle(), WM_DROPFILES, parameter, 0);
    else ::SendMessageW(dialog.handle(), WM_DROPFILES, parameter, 0);
}

}  // namespace ko::test
