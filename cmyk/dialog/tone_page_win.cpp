// The view of the page of tone curves.
#include "cmyk/dialog/profile_dialog.h"
#include "cmyk/dialog/tone_page.h"
#include "resources/dialog_ids.h"
#include "tone/dialog/curve_controls.h"

namespace ko::cmyk {
namespace {

using namespace tone;

CurveSet rememberedSet = CurveSet::input;

class TonePageView final : public ProfilePage {
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
        add({
            {.id = IDC_CURVES_INPUT, .press = [this] { page_.chooseSet(CurveSet::input); }},
            {.id = IDC_CURVES_OUTPUT, .press = [this] { page_.chooseSet(CurveSet::output); }},
            {.id = IDC_RESET, .press = [this] { page_.reset(); }},
        });
        add(curves_.controls());
    }

    void startAgain() override {
        page_.reset();
        show();
    }

    bool drawItem(const DRAWITEMSTRUCT& drawing) override { return CurveControls::draw(drawing); }

    TonePage page_;
    CurveControls curves_;
};

}  // namespace

Page makeTonePage(CmykProfile& profile) { return std::make_unique<TonePageView>(profile); }

}  // namespace ko::cmyk
