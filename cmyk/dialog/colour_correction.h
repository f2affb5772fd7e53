// The model of the colour-correction page: picks a colour, sets how far a correction reaches and
// carries it out on the profile's grid. No window; positions on the page's surfaces are pixels, and
// become the units of colour_place.h at once, so that every screen gives the same numbers.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cmyk/cmyk.h"
#include "cmyk/convert.h"
#include "cmyk/dialog/colour_display.h"
#include "cmyk/dialog/colour_place.h"
#include "frame/dialog/graph.h"
#include "frame/dialog/history.h"
#include "frame/problem.h"

namespace ko::cmyk {

// What the mouse and the keys act on. Scales pick a colour, bars set how far the correction reaches
// along the scale beside them.
enum class Surface {
    area,           // hue from left to right, saturation upward
    lightness,      // white at the top
    black,          // no black at the left
    hueBar,         // below the area
    saturationBar,  // left of it
    lightnessBar,
    blackBar,
};

enum class Key { left, right, up, down, clear };

// Both ends belong to it.
struct Span {
    int32_t low, high;  // percent
    bool operator==(const Span&) const = default;
};

// The picture of the area or of a scale: rows from the top, 0x00RRGGBB as bitmaps have it.
struct Cells {
    int32_t width = 0, height = 0;
    std::vector<uint32_t> pixels;
};

struct Line {
    dialog::Point from, to;
    bool operator==(const Line&) const = default;
};

// One change of the grid, as it was carried out.
struct Correction {
    Cmyk picked{}, delta{};  // the colour, and what its inks get
    Place place{};
    InfluenceRange range{};
    std::optional<Span> black;  // every black without one
};

class ColourCorrection {
public:
    // Edits the profile's grid in place and nothing else of it; history is the profile's.
    ColourCorrection(CmykProfile& profile, dialog::History& history);

    // Takes everything from the record anew: the first colour, range and spans; no button pressed.
    void reread();
    // The record has changed under it: what is picked stays.
    void profileChanged();

    // What to show.
    bool levels256() const noexcept { return levels256_; }
    const Cmyk& picked() const noexcept { return picked_; }
    const Cmyk& current() const noexcept { return current_; }  // what the profile makes of it
    const Cmyk& changed() const noexcept { return changed_; }  // what it is to make of it
    Place place() const noexcept { return place_; }            // of the picked colour
    int32_t hueReach() const noexcept { return hueReach_; }                // degrees
    int32_t saturationReach() const noexcept { return saturationReach_; }  // percent
    const std::optional<Span>& lightnessSpan() const noexcept { return lightnessSpan_; }
    const std::optional<Span>& blackSpan() const noexcept { return blackSpan_; }
    InfluenceRange range() const noexcept;
    int32_t nodesInRange() const noexcept { return nodesInRange_; }  // those that change() touches
    bool canUndo() const noexcept { return history_.canUndo(); }

    int32_t shownValue(int32_t level) const noexcept;  // as the fields show levels
    std::string shown(int32_t level) const { return std::to_string(shownValue(level)); }
    // In the user's language: the spans, or that none is specified; hue and saturation from where to where.
    std::string lightnessText() const;
    std::string blackText() const;
    std::string rangeText() const;
    std::string countText() const;
    // That what was typed last was limited, or is no number.
    const std::optional<Problem>& notice() const noexcept { return notice_; }
    static std::string changedText(int32_t count);  // after a change

    // Pictures. The area's cells are 2 degrees by 1 percent, a scale's 1 percent.
    Cells areaCells(ColourDisplay display) const;
    Cells scaleCells(Surface scale, ColourDisplay display) const;
    // What leaves the grid as it is printed: through the output curves, packed.
    uint32_t onPaper(const Cmyk& levels) const;
    uint32_t displayed(const Cmyk& levels, ColourDisplay display) const;  // R in the low byte
    dialog::Point marker(dialog::Size area) const noexcept;
    int32_t markerOn(Surface scaleOrBar, int32_t length) const noexcept;  // from the left or top
    // The outline of the range in the area, or of what gets at least half of the change.
    std::vector<Line> outline(dialog::Size area, bool half) const;
    // How much of the change a bar shows at a pixel: 0..255.
    int32_t strengthOn(Surface bar, int32_t length, int32_t at) const noexcept;

    // What the person does. Each says whether anything shown has changed.
    bool press(Surface surface, dialog::Size size, dialog::Point at);
    bool move(dialog::Size size, dialog::Point at);  // while what was pressed is held
    bool step(Surface surface, Key key, bool shift);
    void setLevels256(bool on) noexcept { levels256_ = on; }
    void pick(int32_t ink, std::string_view number);      // as it is shown: percent or level
    void stepPicked(int32_t ink, int32_t by);             // by what the field shows
    void setChanged(int32_t ink, std::string_view number);
    void stepChanged(int32_t ink, int32_t by);
    void setHueReach(std::string_view degrees);
    void setSaturationReach(std::string_view percent);

    int32_t change();  // the number of nodes changed

    // The changes made that are in the grid, the first one first.
    const std::vector<Correction>& made() const noexcept { return made_.list; }
    std::string madeText(size_t which) const;
    // The grid as if that one had never been made, and those after it had.
    void takeOut(size_t which);
    void forgetMade() noexcept { made_ = {}; }  // the profile is another one

    // Pictures of the file, as it was read, in place of the profile that is edited; null ends that.
    void showInstead(std::shared_ptr<const CmykProfile> file) noexcept {
        instead_ = std::move(file);
    }
    bool showsFile() const noexcept { return instead_ != nullptr; }

private:
    using Grid = std::vector<uint32_t>;
    // Corrections, and the grid that the first of them was made on.
    struct Made {
        std::shared_ptr<const Grid> base;
        std::vector<Correction> list;
    };
    // Nodes in runs, what they hold on the step's other side, and what was made on either side.
    struct Run {
        int32_t first, count;
    };
    struct GridStep {
        std::vector<Run> runs;
        std::vector<uint32_t> words;
        Made before, after;
        bool isDone = false;
        void add(int32_t node, uint32_t word);  // nodes in their order
    };
    void exchange(GridStep& step);
    template <class Visit>
    void visitTouched(const Correction& correction, Visit visit) const;
    static uint32_t corrected(const Correction& correction, const Fade& fade,
                              uint32_t old) noexcept;
    const CmykProfile& pictured() const noexcept { return instead_ ? *instead_ : profile_; }

    void apply(Surface surface, dialog::Size size, dialog::Point at);
    void setAim(const Place& aim);
    void setPicked(const Cmyk& levels);
    void pickedHasMoved();
    void rangeHasMoved();
    void readCurrent();
    int32_t positionOn(Surface scaleOrBar) const noexcept;
    int32_t levelOf(int32_t value, std::initializer_list<int32_t> there) const noexcept;
    int32_t stepped(int32_t level, int32_t by) const noexcept;
    int32_t typedValue(std::string_view number, int32_t most);
    void pickLevel(int32_t ink, int32_t value);
    void changeLevel(int32_t ink, int32_t value);
    int32_t blackPercent() const noexcept;
    void setSpanEnd(std::optional<Span>& span, int32_t picked, int32_t percent, bool high);

    CmykProfile& profile_;
    std::vector<Place> places_;  // of the 33^3 nodes of C, M, Y in grid order
    bool levels256_ = false;
    std::optional<Problem> notice_;
    Place aim_{};   // as it was pointed at: whole levels come near it, and a grey keeps its hue
    Cmyk picked_{}, current_{}, changed_{};
    Place place_{};
    int32_t hueReach_ = 0, saturationReach_ = 0;
    std::optional<Span> lightnessSpan_, blackSpan_;
    int32_t nodesInRange_ = 0;
    std::optional<Surface> held_;
    bool holdsHigh_ = false;  // which end of a span
    Made made_;
    std::shared_ptr<const CmykProfile> instead_;
    dialog::History& history_;
};

}  // namespace ko::cmyk
