#include "cli/gate_options.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "cli/arguments.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/report.h"

namespace ko::cli {
namespace {

using quality::Gates;
using quality::Pure;

constexpr const char* kPure[] = {"none", "black", "primaries", "secondaries"};

std::optional<Pure> pureNamed(std::string_view word) {
    const auto* const found = std::find(std::begin(kPure), std::end(kPure), word);
    if (found == std::end(kPure)) return std::nullopt;
    return static_cast<Pure>(found - std::begin(kPure));
}

void require(bool holds, const std::string& option, const std::string& what) {
    if (!holds) throw UsageFailure(option + ": " + what);
}

double inkFrom(std::string_view text) {
    const std::string_view whole = text;
    while (!text.empty() && (text.back() == ' ' || text.back() == '%')) text.remove_suffix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    require(error == std::errc() && end == text.data() + text.size() && value >= 0 && value <= 400, "--max-ink",
            "'" + std::string(whole) + "' is not a percentage from 0 to 400");
    return value;
}

class GateFile {
public:
    explicit GateFile(const std::string& path) : path_(path) {
        const InputFile file = openInput(path);
        json_ = Json::parse(file.text().begin(), file.text().end(), nullptr, false);
        if (!json_.is_object()) failOn(path, "is not a JSON object of gates");
    }
    Gates read() {
        Gates gates;
        for (const auto& [key, value] : json_.items()) {
            if (key == "name" || key == "comment") {
                if (!value.is_string()) wrong(key, "a text");
            } else if (key == "maxDe95") {
                gates.de95 = number(key, value, 100);
            } else if (key == "maxDeMean") {
                gates.deMean = number(key, value, 100);
            } else if (key == "maxInk") {
                gates.ink = number(key, value, 400);
            } else if (key == "maxJump") {
                gates.jump = number(key, value, 100);
            } else if (key == "requirePure") {
                const auto pure = value.is_string() ? pureNamed(value.get<std::string>()) : std::nullopt;
                if (!pure) wrong(key, "none, black, primaries or secondaries");
                gates.pure = *pure;
            } else if (key == "requireWhite") {
                if (!value.is_boolean()) wrong(key, "true or false");
                gates.white = value.get<bool>();
            } else if (key == "requireConformance") {
                if (!value.is_boolean()) wrong(key, "true or false");
                gates.conformance = value.get<bool>();
            } else {
                failOn(path_, "there is no gate " + printable(key));
            }
        }
        return gates;
    }

private:
    [[noreturn]] void wrong(const std::string& key, const std::string& wanted) const {
        failOn(path_, key + " is not " + wanted);
    }
    double number(const std::string& key, const Json& value, int most) const {
        if (!value.is_number() || !(value.get<double>() >= 0 && value.get<double>() <= most))
            wrong(key, "a number from 0 to " + std::to_string(most));
        return value.get<double>();
    }
    const std::string& path_;
    Json json_;
};

}  // namespace

void GateOptions::addTo(Command& command) {
    command.option("--max-de95", de95, "Fail where ΔE00 of reachable colours is more at 95 %").called("N");
    command.option("--max-de-mean", deMean, "Fail where ΔE00 of reachable colours is more in the mean").called("N");
    command.option("--max-ink", ink, "Fail where the total ink is more").called("PERCENT");
    command.option("--max-jump", jump, "Fail where an ink differs more between neighbouring nodes").called("PERCENT");
    command.option("--require-pure", pure, "Fail where these have foreign ink; each includes those before it")
        .oneOf({"none", "black", "primaries", "secondaries"});
    command.flag("--require-white", white, "Fail where white has ink");
    command.flag("--require-conformance", conformance, "Fail where kolink check finds an error in the file");
    addFileTo(command);
}

void GateOptions::addFileTo(Command& command) {
    command.option("--gates", file, "Read gates from a JSON file").called("FILE");
}

Gates GateOptions::gates() const {
    Gates gates = file ? GateFile(*file).read() : Gates{};
    const auto take = [](std::optional<double>& to, const std::optional<double>& from, const char* option) {
        if (!from) return;
        require(*from >= 0 && *from <= 100, option, "is not a number from 0 to 100");
        to = from;
    };
    take(gates.de95, de95, "--max-de95");
    take(gates.deMean, deMean, "--max-de-mean");
    take(gates.jump, jump, "--max-jump");
    if (ink) gates.ink = inkFrom(*ink);
    if (pure) gates.pure = *pureNamed(*pure);
    if (white) gates.white = true;
    if (conformance) gates.conformance = true;
    return gates;
}

}  // namespace ko::cli
