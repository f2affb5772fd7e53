// Japanese user texts of the engine, Shift-JIS at run time. They stand here alone, so that no
// other source depends on the execution character set.
#pragma once

namespace ko::texts {

extern const char kUntitled[];  // the title of a new curve, profile or link

}  // namespace ko::texts
