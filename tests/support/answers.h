// Answers what an editor model asks, as a test wants it to.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/dialog/host.h"

namespace ko::test {

struct Answers : dialog::EditorHost {
    bool ask(std::string_view title, std::string_view question) override {
        caption = title;
        asked = question;
        return ++questions, yes;
    }
    std::optional<std::string> chooseSavePath(std::string_view initial,
                                              std::string_view pattern) override {
        ++saves;
        startedFrom = initial;
        filter = pattern;
        return path;
    }
    bool yes = true;
    std::optional<std::string> path;
    int questions = 0, saves = 0;
    std::string caption, asked, startedFrom, filter;
};

}  // namespace ko::test
