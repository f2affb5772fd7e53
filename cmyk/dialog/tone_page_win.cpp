// The view of the page of tone curves.
#include "cmyk/dialog/profile_dialog.h"

namespace ko::cmyk {
namespace {

class TonePage final : public dialog::ChildDialog {
public:
    ~TonePage() override { destroy(); }

private:
    void opened() override {}
    bool command(int, int) override { return false; }
};

}  // namespace

Page makeTonePage(CmykProfile&) { return std::make_unique<TonePage>(); }

}  // namespace ko::cmyk
