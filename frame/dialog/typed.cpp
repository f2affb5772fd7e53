#include "frame/dialog/typed.h"

#include "frame/scan.h"
#include "resources/texts.h"

namespace ko::dialog {

std::optional<Problem> numberNotice(std::string_view typed, double least, double most,
                                    std::string_view leastText, std::string_view mostText) {
    if (typed.find_first_not_of(' ') == typed.npos) return std::nullopt;
    if (!isTypedNumber(typed)) return Problem{texts::kNoNumber};
    const double number = typedRealIn(typed);
    if (number >= least && number <= most) return std::nullopt;
    return Problem{texts::kLimited, {std::string(leastText), std::string(mostText)}};
}

}  // namespace ko::dialog
