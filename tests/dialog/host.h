// The example host, driven as a program of its own: through its menu, by the ids of host_ids.h.
#pragma once

#include <string>
#include <string_view>

#include "examples/host-win32/host_ids.h"
#include "tests/dialog/driver.h"

namespace ko::test {

class HostProgram {
public:
    HostProgram();   // throws when it does not start
    ~HostProgram();  // ends it, whatever is open
    HostProgram(const HostProgram&) = delete;

    const DialogWindow& window() const { return window_; }
    void order(int command) const;         // from the menu; what opens nothing is done by then
    DialogWindow open(int command) const;  // from the menu; the window that it opens
    // The same where a file is asked for first.
    DialogWindow open(int command, const std::string& file) const;
    void waitUntilClosed() const;  // until what it opened is closed, and its result is shown
    std::wstring lastCall() const;  // the last line of what came back
    int close();                    // from its close button; its exit code

private:
    PROCESS_INFORMATION process_{};
    DialogWindow window_{nullptr};
};

}  // namespace ko::test
