#include "resources/texts.h"

namespace ko::texts {

const char kUntitled[] = "無題";

}  // namespace ko::texts
