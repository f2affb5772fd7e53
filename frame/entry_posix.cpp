// Loading and unloading of the shared object.
#include "frame/state.h"

namespace {

const struct Attachment {
    Attachment() noexcept { ko::attach(); }
    ~Attachment() { ko::detach(); }
} attachment;

}  // namespace
