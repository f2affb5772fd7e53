// The harness's own child processes.
#pragma once

#include <string>
#include <vector>

namespace ko::fault {

enum class ChildEnd { normal, crashed, outOfTime };

// The program and the folder that it was given, for the children.
void rememberProgram(const char* program, const char* folder);
// This program once more, in that folder, with more arguments; waits for its end.
ChildEnd runAgain(const std::vector<std::string>& arguments);
// Ends this process when it has not been called again after so many seconds; 0: no longer.
void limitTime(unsigned seconds);

}  // namespace ko::fault
