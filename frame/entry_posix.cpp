// Loading and unloading of the shared object.
#include "frame/state.h"
#include "kolink/version.h"

namespace {

// Tells which library a process has loaded, without a call: what `strings` and `what` look for.
[[gnu::used, gnu::retain]] const char identity[] = "@(#)KoLink " KOLINK_VERSION;

const struct Attachment {
    Attachment() noexcept { ko::attach(); }
    ~Attachment() { ko::detach(); }
} attachment;

}  // namespace
