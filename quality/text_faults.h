// Faults of a text file as its lines are read, with their numbers and places.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/lines.h"
#include "quality/file_check.h"

namespace ko::quality {

class TextFaults {
public:
    explicit TextFaults(std::string_view text) noexcept : text_(text), lines_(text) {}

    bool next(std::string_view& line) noexcept {
        if (!lines_.next(line)) return false;
        ++number_;
        place_ = static_cast<uint64_t>(line.data() - text_.data());
        return true;
    }
    uint64_t number() const noexcept { return number_; }
    size_t count() const noexcept { return faults_.size() + more_; }

    // Of the line that was read last.
    void add(Level level, const char* rule, std::string text, const char* remedy) {
        put({level, rule, 0, place_, std::move(text), remedy, number_});
    }
    // Of the whole file.
    void addWhole(Level level, const char* rule, std::string text, const char* remedy) {
        put({level, rule, 0, 0, std::move(text), remedy, 0});
    }
    // A file that is wrong throughout is told so once.
    std::vector<Fault> take() {
        if (more_ > 0)
            faults_.push_back({Level::note, "more", 0, 0, "and " + std::to_string(more_) + " more like these",
                               "mend these first", 0});
        return std::move(faults_);
    }

private:
    static constexpr size_t kMost = 200;

    void put(Fault fault) {
        // What is wrong with the whole comes last, and an error counts whatever came before.
        if (faults_.size() < kMost || fault.line == 0) faults_.push_back(std::move(fault));
        else if (fault.level == Level::error && !hasLateError_) {
            hasLateError_ = true;
            faults_.push_back(std::move(fault));
        } else ++more_;
    }

    std::string_view text_;
    LineReader lines_;
    uint64_t number_ = 0, place_ = 0;
    std::vector<Fault> faults_;
    size_t more_ = 0;
    bool hasLateError_ = false;
};

// Texts of files as a fault quotes them.
std::string quoted(std::string_view text);

// Whether all of a text, blanks around it aside, is a number as people write one.
bool isWholeNumber(std::string_view text) noexcept;
bool isNumber(std::string_view text) noexcept;

}  // namespace ko::quality
