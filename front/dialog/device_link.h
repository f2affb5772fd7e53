// The model behind the device-link dialog: a copy of the link settings, what a person does to it,
// and the making of the link. It has no window.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cmyk/link_check.h"
#include "cmyk/link_result.h"
#include "frame/dialog/graph_picture.h"
#include "frame/problem.h"
#include "kolink/link_settings.h"

namespace ko::front {

using LinkPath = cmyk::LinkField;
constexpr LinkPath kLinkPaths[] = {LinkPath::base, LinkPath::source, LinkPath::destination,
                                   LinkPath::black, LinkPath::output};

// Nothing when the system's code page has no name for what was typed or chosen.
using TypedPath = std::optional<std::string>;

// What the model asks of the person in front of it. Texts are Shift-JIS, paths are in the system's
// code page.
class DeviceLinkHost {
public:
    enum class Choice { fileToOpen, fileToSave };
    enum class Icon { exclamation, information };
    // A file chosen from initial on, or nothing after Cancel. filter: "description|pattern|" pairs.
    virtual std::optional<TypedPath> choosePath(LinkPath which, Choice choice,
                                                std::string_view initial,
                                                std::string_view filter) = 0;
    virtual uint32_t pickColour(uint32_t cmyk) = 0;  // packed; the given one after Cancel
    virtual void tell(std::string_view text, Icon icon) = 0;
    // What the link that was just made does; before that is told.
    virtual void showResult(const cmyk::LinkResult& result) = 0;
    // What is wrong with a field, after the text.
    virtual void tellProblem(std::string_view text, const cmyk::LinkProblem& problem) = 0;
    // A Yes/No question; its %s, if any, is the path.
    virtual bool ask(std::string_view question, std::string_view path) = 0;

protected:
    ~DeviceLinkHost() = default;
};

// The same in words: sentences to be translated, with their details.
struct LinkResultText {
    std::array<Problem, 6> colours;  // white, solid C, M, Y, K, all four
    std::array<Problem, 2> totals;   // most ink, ink that does not belong
};
LinkResultText wordsOf(const cmyk::LinkResult& result);

class DeviceLinkModel {
public:
    explicit DeviceLinkModel(const CmsLinkSettings& settings);

    const CmsLinkSettings& settings() const noexcept { return settings_; }
    std::string_view path(LinkPath which) const noexcept;
    // Numbers outside of what the dialog offers stay as they are until one of these is chosen.
    bool intentIs(int32_t intent) const noexcept { return settings_.intent == intent; }
    bool preservationIs(int32_t mode) const noexcept { return settings_.preservation == mode; }
    bool whiteModeIs(int32_t mode) const noexcept { return settings_.whiteMode == mode; }
    bool hasPaperColour() const noexcept { return whiteModeIs(2); }  // swatch and amount count
    const std::string& amountText() const noexcept { return amountText_; }
    // That the amount typed last was limited, or is no number.
    const std::optional<Problem>& amountNotice() const noexcept { return amountNotice_; }
    std::optional<dialog::Colour> swatch() const noexcept;  // nothing: no colour is given

    // A field whose path the system's code page cannot name, or that is too long: its setting is the
    // one from before, and nothing is made until the field is put right.
    bool isRefused(LinkPath which) const noexcept { return refusal(which).has_value(); }
    const std::optional<Problem>& refusal(LinkPath which) const noexcept {
        return refused_[static_cast<size_t>(which)];
    }
    std::optional<LinkPath> firstRefused() const noexcept;
    // What the file of a field is, in green, or why it cannot be used there, in red.
    const std::optional<cmyk::FileFact>& fact(LinkPath which) const noexcept {
        return facts_[static_cast<size_t>(which)];
    }
    // The field that kept the last link from being made.
    std::optional<LinkPath> failedField() const noexcept { return failed_; }

    void leavePath(LinkPath which, const TypedPath& typed);
    void leaveAmount(std::string_view percent);
    bool browse(LinkPath which, DeviceLinkHost& host);
    void chooseIntent(int32_t intent) {
        settings_.intent = intent;
        readFacts();
    }
    void choosePreservation(int32_t mode) { settings_.preservation = mode; }
    void chooseWhiteMode(int32_t mode) { settings_.whiteMode = mode; }
    bool pickPaperColour(DeviceLinkHost& host);

    // Makes the link and writes it; says how that went. True: the link is in its file.
    bool create(DeviceLinkHost& host);

private:
    CmsLinkSettings settings_;
    std::string amountText_;
    std::optional<Problem> amountNotice_;
    bool fail(DeviceLinkHost& host, const cmyk::LinkProblem& problem);
    bool mayWrite(DeviceLinkHost& host);
    void readFacts();

    std::array<std::optional<Problem>, 5> refused_{};
    std::array<std::optional<cmyk::FileFact>, 5> facts_{};
    std::optional<LinkPath> failed_;
    std::string agreed_;  // an output that the person has chosen in the file dialog
};

}  // namespace ko::front
