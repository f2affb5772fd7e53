// What a command found out, kept as JSON and shown either as that or in lines for people.
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <vector>

namespace ko::cli {

// The JSON library destroys a value whose memory it could not have, and reads through its null
// pointer. A report that is short of memory ends the program instead, in the words for that.
template <class T>
struct ReportAllocator {
    using value_type = T;
    ReportAllocator() = default;
    template <class Other>
    ReportAllocator(const ReportAllocator<Other>&) noexcept {}
    T* allocate(size_t count) noexcept {
        void* const memory = ::operator new(count * sizeof(T), std::nothrow);
        if (!memory) std::terminate();
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, size_t) noexcept { ::operator delete(memory); }
    bool operator==(const ReportAllocator&) const = default;
};
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, int64_t,
                                  uint64_t, double, ReportAllocator>;

// JSON with an end of line; control characters that JSON would let through are escaped.
std::string toJson(const Json& report);

// One line a value, indented sections, lists of like objects as tables.
std::string toLines(const Json& report);

}  // namespace ko::cli
