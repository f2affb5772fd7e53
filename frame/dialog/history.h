// The steps of an editing, back and forth, and whether it differs from what its file holds.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <utility>

namespace ko::dialog {

class History {
public:
    // Takes an edit back; called again, it carries the edit out anew.
    using Step = std::function<void()>;
    static constexpr size_t kSteps = 100;  // the oldest ones beyond are forgotten

    void add(Step step) {
        steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(done_), steps_.end());
        if (saved_ && *saved_ > done_) saved_.reset();
        steps_.push_back(std::move(step));
        ++done_;
        if (steps_.size() <= kSteps) return;
        steps_.pop_front();
        --done_;
        if (saved_) saved_ = *saved_ > 0 ? std::optional(*saved_ - 1) : std::nullopt;
    }
    bool canUndo() const noexcept { return done_ > 0; }
    bool canRedo() const noexcept { return done_ < steps_.size(); }
    bool undo() {
        if (!canUndo()) return false;
        steps_[--done_]();
        return true;
    }
    bool redo() {
        if (!canRedo()) return false;
        steps_[done_++]();
        return true;
    }

    bool isChanged() const noexcept { return saved_ != done_; }
    void markSaved() noexcept { saved_ = done_; }

private:
    std::deque<Step> steps_;
    size_t done_ = 0;                  // steps before this one are carried out
    std::optional<size_t> saved_ = 0;  // how many were when the file was saved; none: no way back
};

// Adds the way back from what a model is now to what it was; nothing when that is the same. The
// model's capture gives all that a person edits, its restore takes it.
template <class Model, class State>
bool addStep(History& history, Model& model, State before) {
    if (before == model.capture()) return false;
    history.add([&model, other = std::move(before)]() mutable {
        State now = model.capture();
        model.restore(other);
        other = std::move(now);
    });
    return true;
}

}  // namespace ko::dialog
