#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "tests/support/library_folder.h"

namespace ko::test {

std::filesystem::path libraryFolder() {
    wchar_t path[MAX_PATH];
    const DWORD length = ::GetModuleFileNameW(::GetModuleHandleW(L"KoLink.dll"), path, MAX_PATH);
    return std::filesystem::path(std::wstring(path, length)).parent_path();
}

}  // namespace ko::test
