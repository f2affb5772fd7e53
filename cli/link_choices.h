// What a link is to do with colours, as the commands link, convert and image are asked for it.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "kolink/precise.h"

namespace ko::cli {

class Command;

struct LinkChoices {
    std::optional<std::string> source, destination, base, method, intent, black, preserve, clip,
        inkLimit, saveInk, saveInkAbove, white, paper, fade, nodes;
    std::optional<int> grid, bits;
    bool compensatesBlack = false;

    // Everything but source and destination, whose help differs; withFile: also bits, grid and
    // nodes, which matter where a file is made.
    void addTo(Command& command, bool withFile);

    std::string methodOr(const char* usual) const { return method.value_or(usual); }
    bool isClassic() const { return method == "classic"; }
    int32_t intentNumber() const;  // KO_PRECISE_..., relative unless told otherwise
    std::string whiteMode() const;
    // Percent of C, M, Y, K.
    std::array<double, 4> paperTint() const;

    // Fails for choices that contradict each other, whatever the profiles are.
    void check() const;
    // The first of the choices that only the precise way knows, as it is spelt; empty: none.
    std::string onlyPrecise() const;
    // The first of the choices that was made, for where none has a meaning; empty: none.
    std::string first() const;
    // For a curve as black, its levels; where it is not one of the words.
    bool blackIsFile() const;
    // For a link from and to these spaces; black's curve is left as it is.
    KoPreciseOptions preciseOptions() const;
};

// A number in percent; a sign % may follow.
double percent(std::string_view text, double limit, const std::string& option);

int indexOf(std::string_view word, std::initializer_list<std::string_view> words);

}  // namespace ko::cli
