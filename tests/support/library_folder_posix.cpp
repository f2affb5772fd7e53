#include <dlfcn.h>

#include "kolink.h"
#include "tests/support/library_folder.h"

namespace ko::test {

std::filesystem::path libraryFolder() {
    Dl_info library;
    if (::dladdr(reinterpret_cast<const void*>(&jMemAlloc), &library) == 0) return {};
    return std::filesystem::path(library.dli_fname).parent_path();
}

}  // namespace ko::test
