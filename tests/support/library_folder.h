// Where the library that the tests call was loaded from.
#pragma once

#include <filesystem>

namespace ko::test {

std::filesystem::path libraryFolder();  // empty when the system does not say

}  // namespace ko::test
