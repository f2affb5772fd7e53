// What the harness does while calls fail: one entry for every exported function that allocates,
// reads or writes, with what it is given.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/fault/faults.h"

namespace ko::fault {

class Digest {
public:
    Digest& bytes(const void* data, size_t size) {
        const auto* at = static_cast<const uint8_t*>(data);
        for (; size >= 8; size -= 8, at += 8) {
            uint64_t word;
            std::memcpy(&word, at, sizeof word);
            mix(word);
        }
        for (; size > 0; --size, ++at) mix(*at);
        return *this;
    }
    Digest& text(const char* text) { return bytes(text, std::strlen(text)).mix(0x100); }
    Digest& number(int64_t value) { return mix(static_cast<uint64_t>(value)); }
    template <class Record>
    Digest& record(const Record& value) {
        static_assert(std::is_trivially_copyable_v<Record>);
        return bytes(&value, sizeof value);
    }
    operator uint64_t() const { return value_; }

private:
    Digest& mix(uint64_t word) {
        value_ = (value_ ^ word) * 0x9e3779b97f4a7c15;
        value_ ^= value_ >> 29;
        return *this;
    }
    uint64_t value_ = 14695981039346656037u;
};

// One run of a scenario under a plan.
class Run {
public:
    explicit Run(const Plan& plan) : plan_(plan) {}

    // The part of the run in which calls fail: the exported function and nothing else. With a type
    // that stands for failure (null, 0) when it threw, which it never may.
    template <class Call>
    auto underFaults(Call&& call) -> std::invoke_result_t<Call> {
        using Result = std::invoke_result_t<Call>;
        forgetReason();
        begin(plan_);
        if constexpr (std::is_void_v<Result>) {
            try {
                call();
            } catch (...) {
                threw = true;
            }
            finish();
        } else {
            Result result{};
            try {
                result = call();
            } catch (...) {
                threw = true;
            }
            finish();
            return result;
        }
    }

    Calls calls;
    int reasonGiven = 0;
    bool threw = false;

private:
    void finish() {
        reasonGiven = reason();
        calls = end();
    }
    Plan plan_;
};

struct Result {
    bool done = false;     // what the function says
    uint64_t results = 0;  // all that it gave back, when it is done
    uint64_t record = 0;   // the host's record when it is not; 0: there is none
    bool stated = false;   // done, and what it gave back is what is stated for a file that fails
};

struct Scenario {
    std::string name;       // the exported function, and behind a blank what it is given
    std::string output;     // the file that it writes; empty: none
    bool overOld = false;   // there is one already
    // What it says when its first allocation fails: done, with the file as it was.
    bool doneWithoutMemory = false;
    bool loadsPlugin = false;
    bool takesLong = false;  // a tenth of a second and more
    std::function<Result(Run&)> run;
    // What it leaves of the record for a file that is not there, which is what a failure may leave
    // too, besides the record as it was; 0: nothing of the kind.
    std::function<Result(Run&)> missing = nullptr;

    std::string function() const { return name.substr(0, name.find(' ')); }
};

// Writes the files that the scenarios read, below the current folder: in/ and out/.
void makeInputs();
std::vector<Scenario> makeScenarios();

}  // namespace ko::fault
