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
    bool askReplace(std::string_view which) override {
        replaced = which;
        return yes;
    }
    dialog::Unsaved askUnsaved(std::string_view) override { return ++unsavedAsked, unsaved; }
    dialog::NotSaved tellNotSaved(std::string_view, std::string_view which, const Problem& why,
                                  bool) override {
        notSavedPath = which;
        reason = why;
        const dialog::NotSaved answer = notSaved;
        notSaved = dialog::NotSaved::stay;  // once
        return answer;
    }
    dialog::Unsaved askTakeBack(std::string_view) override { return ++unsavedAsked, unsaved; }

    bool yes = true;
    dialog::Unsaved unsaved = dialog::Unsaved::discard;
    dialog::NotSaved notSaved = dialog::NotSaved::stay;
    int unsavedAsked = 0;
    std::string notSavedPath, replaced;
    std::optional<Problem> reason;
    std::optional<std::string> path;
    int questions = 0, saves = 0;
    std::string caption, asked, startedFrom, filter;
};

}  // namespace ko::test
