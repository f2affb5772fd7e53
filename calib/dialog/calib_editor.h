// The model behind the calibration editor: edits a set in place, says what to show and carries out
// what the person does; it has no window. Sets come from files and hosts as they are: sizes may be
// 0 or negative, tones out of order, counts beyond what a record holds.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calib/calib.h"
#include "frame/dialog/document.h"
#include "frame/dialog/graph_picture.h"
#include "frame/path.h"
#include "frame/text.h"

namespace ko::calib {

class CalibEditor final : public dialog::Document {
public:
    static constexpr int32_t kAllChannels = -1;
    static constexpr size_t kFieldLength = 10;  // characters typed into a value's field

    // The set must outlive the editor. A path that is empty or ends in a separator names no file.
    explicit CalibEditor(CalibCurveSet& set);

    // What to show.
    std::string_view title() const noexcept { return textIn(set_.title); }
    std::string_view description() const noexcept { return textIn(set_.desc); }
    std::string_view fileName() const noexcept;  // of the caption; empty without a file
    std::string dateText(bool yearLast) const;   // of the file's last change; empty without a file
    int32_t channelCount() const noexcept { return static_cast<int32_t>(channels().size()); }
    std::string_view channelName(int32_t channel) const noexcept;
    dialog::Colour colour(int32_t channel) const noexcept;
    int32_t selectedChannel() const noexcept { return selected_; }
    bool covers(int32_t channel) const noexcept {
        return selected_ == kAllChannels || selected_ == channel;
    }
    bool isDragging() const noexcept { return dragging_; }
    bool isRelative() const noexcept { return relative_; }
    CalibTone point() const noexcept { return point_; }  // taken hold of last
    const std::string& xText() const noexcept { return xText_; }
    const std::string& yText() const noexcept { return yText_; }
    // That what was typed last was limited, or is no number.
    const std::optional<Problem>& notice() const noexcept { return notice_; }
    int32_t lastSample() const noexcept { return set_.range == 100 ? 20 : 16; }
    CalibTone sample(int32_t channel, int32_t index) const noexcept;  // 0..lastSample()
    dialog::Point place(dialog::Size graph, const CalibTone& tone) const noexcept;
    dialog::GraphPicture picture(dialog::Size graph) const;
    // Whether a tone can be taken hold of there; and what stands there, of a tone its own values.
    bool isOnTone(dialog::Size graph, dialog::Point at) const noexcept;
    std::optional<dialog::GraphReading> readingAt(dialog::Size graph, dialog::Point at) const;
    bool falls() const noexcept;  // a curve that is edited goes down anywhere

    // What the person does. Each says whether anything shown has changed.
    bool press(dialog::Size graph, dialog::Point at);
    bool move(dialog::Size graph, dialog::Point at);
    void release();
    bool pressRight(dialog::Size graph, dialog::Point at);
    bool stepTone(int32_t by);  // keyboard: the next or the previous tone, by its sign
    bool stepValue(int32_t by);  // keyboard: the tone up or down
    bool removeTone();           // keyboard: the tone goes, unless it is an end
    bool chooseEnd(bool last);   // keyboard: the first tone or the last

    void selectChannel(int32_t channel);  // kAllChannels, or an index
    void setRelative(bool on) noexcept { relative_ = on; }
    void setResolution(int32_t dpi) noexcept { dpi_ = dpi; }  // how near a hit has to be
    void leaveX(std::string_view text);
    void leaveY(std::string_view text);
    bool add();  // what the two fields hold
    void leaveTitle(std::string_view title, Encoding encoding = Encoding::shiftJis);

    void initialise();
    bool startNew(dialog::EditorHost& host);
    // Edits are in the host's record at once: cancelling offers to take them back. Whether the
    // dialog may close.
    bool mayCancel(dialog::EditorHost& host);

    // All that a person edits.
    struct State {
        std::string title;
        std::vector<CalibChannel> channels;
        bool operator==(const State& other) const noexcept;
    };
    State capture() const;
    void restore(const State& state);

private:
    template <class Edit>
    auto edit(Edit&& change) {
        State before = capture();
        const auto result = change();
        dialog::addStep(history(), *this, std::move(before));
        return result;
    }
    bool isBusy() const noexcept override { return dragging_; }
    std::string_view questionCaption() const noexcept override { return description(); }
    std::string currentPath() const override { return std::string(textIn(set_.path)); }
    const char* fileFilter() const noexcept override;
    const char* fileExtension() const noexcept override;
    std::string startOfSave() const override { return startOfSaveAs(); }
    std::string startOfSaveAs() const override { return joinPath(folder_, ""); }
    std::optional<Problem> write(const std::string& path) override;
    std::span<const CalibChannel> channels() const noexcept {
        return channelsOf(static_cast<const CalibCurveSet&>(set_));
    }
    std::span<const CalibTone> tones(int32_t channel) const noexcept {
        return tonesOf(channels()[static_cast<size_t>(channel)]);
    }
    std::vector<int32_t> covered() const;  // the channels that are edited together
    const CalibTone* findNear(dialog::Size graph, dialog::Point at, int32_t channel) const noexcept;
    bool pickTone(dialog::Size graph, dialog::Point at);
    bool pickSample(dialog::Size graph, dialog::Point at);
    bool store(const CalibTone& tone);
    void setValue(float y);
    void scale(int32_t channel, int32_t end);
    void choose(const CalibTone& tone);
    void chooseNearest(float x);
    std::vector<dialog::Point> line(dialog::Size graph, int32_t channel) const;

    CalibCurveSet& set_;
    std::string folder_;  // where a new file is to be saved
    int32_t selected_ = kAllChannels;
    CalibTone point_{};
    State opened_, kept_;  // when the dialog was opened, and when a drag began
    bool dragging_ = false;
    bool relative_ = false;
    int32_t dpi_ = 96;
    std::vector<std::vector<dialog::Point>> openedLines_;  // on a graph of dialog::kKeptGraph
    std::string xText_, yText_;
    std::optional<Problem> notice_;
    // Curves as they were before relative editing took them down to 0.
    std::array<std::optional<CalibChannel>, KOLINK_CALIB_MAX_CHANNELS> beforeZero_;
};

}  // namespace ko::calib
