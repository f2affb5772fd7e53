// The version stands in one place, the headers, and the library says it without being called.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "kolink/version.h"

namespace {

std::string contentOf(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

[[maybe_unused]] std::string wide(std::string_view text) {
    std::string bytes;
    for (const char character : text) bytes.append({character, '\0'});
    return bytes;
}

TEST(Version, IsWrittenInFullFromItsThreeNumbers) {
    EXPECT_EQ(std::string(KOLINK_VERSION),
              std::to_string(KOLINK_VERSION_MAJOR) + '.' + std::to_string(KOLINK_VERSION_MINOR) + '.' +
                  std::to_string(KOLINK_VERSION_PATCH));
}

TEST(Version, CanBeReadFromTheLibraryWithoutACall) {
    const std::string library = contentOf(KO_TEST_LIBRARY);
    ASSERT_GT(library.size(), 100'000u);
#ifdef _WIN32  // the version resource holds UTF-16
    const size_t at = library.find(wide("ProductVersion"));
    ASSERT_NE(at, std::string::npos);
    EXPECT_NE(library.substr(at, 64).find(wide(KOLINK_VERSION)), std::string::npos);
#else
    EXPECT_NE(library.find("@(#)KoLink " KOLINK_VERSION), std::string::npos);
#endif
}

}  // namespace
