// The view of the page that corrects colours locally.
#include "cmyk/dialog/profile_dialog.h"

namespace ko::cmyk {
namespace {

class CubePage final : public dialog::ChildDialog {
public:
    ~CubePage() override { destroy(); }

private:
    void opened() override {}
    bool command(int, int) override { return false; }
};

}  // namespace

Page makeCubePage(CmykProfile&, ColourDisplay) { return std::make_unique<CubePage>(); }

}  // namespace ko::cmyk
