// The view of the page of tone curves.
#include "cmyk/dialog/profile_dialog.h"
#include "cmyk/dialog/tone_page.h"
#include "resources/dialog_ids.h"
#include "tone/dialog/curve_controls.h"

namespace ko::cmyk {
namespace {

using namespace tone;

CurveSet rememberedSet = CurveSet::input;

class TonePageView final : public dialog::ChildDialog {
public:
    explicit TonePageView(CmykProfile& profile)
        : page_(profile, rememberedSet),
          curves_(page_, channelControls().first<4>(), FieldRule::whenTyped) {}
    ~TonePageView() override { destroy(); }

private:
    void opened() override {
        curves_.attach(*this);
        const bool output = page_.curveSet() == CurveSet::output;
        ::CheckRadioButton(window(), IDC_CURVES_INPUT, IDC_CURVES_OUTPUT,
                           output ? IDC_CURVES_OUTPUT : IDC_CURVES_INPUT);
        curves_.show();
    }

    bool command(int control, int notification) override {
        if (notification == EN_KILLFOCUS) return curves_.leave(control);
        if (notification != BN_CLICKED) return false;
        leaveFocusedField();
        switch (control) {
            case IDC_CURVES_INPUT: page_.chooseSet(CurveSet::input); break;
            case IDC_CURVES_OUTPUT: page_.chooseSet(CurveSet::output); break;
            case IDC_RESET: page_.reset(); break;
            default: return curves_.press(control);
        }
        curves_.show();
        return true;
    }

    bool drawItem(const DRAWITEMSTRUCT& drawing) override { return curves_.draw(drawing); }

    TonePage page_;
    CurveControls curves_;
};

}  // namespace

Page makeTonePage(CmykProfile& profile) { return std::make_unique<TonePageView>(profile); }

}  // namespace ko::cmyk
