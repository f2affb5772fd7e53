// What both platforms' replaced functions share: which calls are counted, and which of them fail.
#pragma once

#include <cstring>

#include "tests/fault/faults.h"

namespace ko::fault {

enum class Fate { normal, failure, part, interruption };

class Planned {
public:
    void begin(const Plan& plan) noexcept {
        std::memset(calls_.of, 0, sizeof calls_.of);
        calls_.struck = false;
        plan_ = plan;
        counting_ = true;
    }
    Calls end() noexcept {
        counting_ = false;
        return calls_;
    }
    bool counting() const noexcept { return counting_; }
    const Plan& plan() const noexcept { return plan_; }
    const Calls& calls() const noexcept { return calls_; }
    void strike() noexcept { calls_.struck = true; }

    // The number of a call that is made now; 0 when none is counted.
    uint64_t number(Kind kind) noexcept {
        return counting_ ? __atomic_add_fetch(&calls_.of[static_cast<int>(kind)], 1, __ATOMIC_RELAXED)
                         : 0;
    }
    // What becomes of it. Not everybody goes on after a signal.
    Fate fate(Kind kind, uint64_t number, bool interruptible = true) noexcept {
        if (number == 0 || plan_.at == 0 || plan_.kind != kind || number < plan_.at)
            return Fate::normal;
        const bool lasting = plan_.way == Way::onwards || plan_.way == Way::full;
        if (number > plan_.at && !lasting) return Fate::normal;
        if (plan_.way == Way::interrupted && !interruptible) return Fate::normal;
        strike();
        if (plan_.way == Way::part || (plan_.way == Way::full && number == plan_.at))
            return Fate::part;
        return plan_.way == Way::interrupted ? Fate::interruption : Fate::failure;
    }

private:
    bool counting_ = false;
    Plan plan_;
    Calls calls_;
};

}  // namespace ko::fault
