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
    TonePageView(CmykProfile& profile, dialog::History& history, PageFrame& frame)
        : frame_(frame), page_(profile, history, rememberedSet),
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

    void startAgain() override { show(); }
    void profileChanged() override { show(); }
    void shown() override { frame_.pageHasEdited(); }

    bool drawItem(const DRAWITEMSTRUCT& drawing) override { return CurveControls::draw(drawing); }

    PageFrame& frame_;
    TonePage page_;
    CurveControls curves_;
};

}  // namespace

Page makeTonePage(CmykProfile& profile, dialog::History& history, PageFrame& frame) {
    return std::make_unique<TonePageView>(profile, history, frame);
}

}  // namespace ko::cmyk
