#include "resources/texts.h"

namespace ko::texts {

const char kUntitled[] = "無題";
const char kChannelNumber[] = "チャンネル %d";

}  // namespace ko::texts
