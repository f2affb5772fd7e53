// kolink convert: colours from the arguments or from standard input, a line each.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/conversion.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/system.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink convert --link proof.icc 0,0,0,255 255,128,0,0\n"
    "  kolink convert --source srgb.icc --destination press.icc --percent 100,50,0\n"
    "  kolink convert --source press.icc --destination srgb.icc < colours.txt > rgb.txt\n"
    "  kolink convert --builtin --grey 255,0,0\n"
    "\n"
    "Colours are numbers 0..255, or 0..100 with --percent, with blanks, tabs or commas between\n"
    "them: C M Y K or R G B. Fractions are rounded to the nearest of 256 levels. Standard input is\n"
    "read when no colour is given, a colour a line; empty lines and lines that begin with # are\n"
    "left out.\n";

constexpr size_t kBatch = 8192;  // colours that are converted at once

constexpr bool isBetween(char c) { return c == ' ' || c == '\t' || c == ','; }

// Reads one colour's numbers into levels; the number of them, or nothing for a line that is none.
class LineParser {
public:
    explicit LineParser(bool percent) : percent_(percent) {}

    // Up to four levels of a line; more numbers, words and numbers out of range are refused.
    int parse(const char* at, const char* end, uint8_t (&levels)[4]) const {
        int count = 0;
        for (;;) {
            while (at != end && isBetween(*at)) ++at;
            if (at == end) return count;
            if (count == 4) return -1;
            if (!number(at, end, levels[count++])) return -1;
            if (at != end && !isBetween(*at)) return -1;
        }
    }

private:
    bool number(const char*& at, const char* end, uint8_t& level) const {
        // Most are whole numbers of up to three digits.
        unsigned whole = 0;
        const char* digit = at;
        while (digit != end && *digit >= '0' && *digit <= '9' && digit - at < 4) whole = whole * 10 + unsigned(*digit++ - '0');
        if (!percent_ && digit != at && digit - at <= 3 && (digit == end || isBetween(*digit))) {
            if (whole > 255) return false;
            level = static_cast<uint8_t>(whole);
            at = digit;
            return true;
        }
        double value = 0;
        const auto read = std::from_chars(at, end, value);
        if (read.ec != std::errc() || !(value >= 0 && value <= (percent_ ? 100 : 255))) return false;
        level = static_cast<uint8_t>((percent_ ? value * 2.55 : value) + 0.5);
        at = read.ptr;
        if (percent_ && at != end && *at == '%') ++at;
        return true;
    }

    bool percent_;
};

// Collects colours, converts them together, prints them.
class Pipeline {
public:
    Pipeline(const ConversionOptions& options, std::optional<ColourSpace> from, bool percent)
        : options_(options), from_(from), percent_(percent), parser_(percent) {}

    // where names the line or the argument in an error.
    template <class Where>
    void add(const char* begin, const char* end, const Where& where) {
        uint8_t levels[4];
        const int count = parser_.parse(begin, end, levels);
        if (count == 0) return;
        if (!conversion_) start(count);
        if (count != inputs_)
            throw Failure(where() + ": '" + printable(std::string_view(begin, static_cast<size_t>(std::min<std::ptrdiff_t>(end - begin, 60)))) +
                          "' is not " + std::to_string(inputs_) + " numbers from 0 to " +
                          (percent_ ? "100" : "255") + " (" + nameOf(conversion_->input) + ")");
        std::memcpy(&input_[colours_++ * static_cast<size_t>(inputs_)], levels, static_cast<size_t>(inputs_));
        if (colours_ == kBatch) flush();
    }

    void flush() {
        if (colours_ == 0) return;
        conversion_->convert(input_.data(), static_cast<int32_t>(colours_), output_.data());
        const size_t outputs = static_cast<size_t>(channelsOf(conversion_->output));
        char* at = text_.data();
        for (size_t value = 0; value < colours_ * outputs; ++value) {
            at = print(at, output_[value]);
            *at++ = (value + 1) % outputs == 0 ? '\n' : ' ';
        }
        writeOut({text_.data(), static_cast<size_t>(at - text_.data())});
        colours_ = 0;
    }

private:
    void start(int count) {
        if (count < 0) count = 0;
        auto hint = from_;
        if (!hint && (count == 3 || count == 4)) hint = count == 3 ? ColourSpace::rgb : ColourSpace::cmyk;
        conversion_ = options_.make(hint);
        inputs_ = channelsOf(conversion_->input);
        if (from_ && *from_ != conversion_->input)
            throw UsageFailure(std::string("--from ") + nameOf(*from_) + " contradicts the conversion, which takes " +
                               nameOf(conversion_->input));
    }

    // A whole level, or percent with two decimals at most; rounded half up.
    char* print(char* at, uint32_t value16) const {
        if (!percent_) return std::to_chars(at, at + 8, std::min(255u, (value16 + 8) / 16)).ptr;
        const uint32_t hundredths = (std::min(value16, 4080u) * 20000 + 4080) / 8160;
        at = std::to_chars(at, at + 8, hundredths / 100).ptr;
        if (const uint32_t rest = hundredths % 100) {
            *at++ = '.';
            *at++ = static_cast<char>('0' + rest / 10);
            if (rest % 10) *at++ = static_cast<char>('0' + rest % 10);
        }
        return at;
    }

    const ConversionOptions& options_;
    std::optional<ColourSpace> from_;
    bool percent_;
    LineParser parser_;
    std::unique_ptr<Conversion> conversion_;
    int inputs_ = 0;
    size_t colours_ = 0;
    std::array<uint8_t, kBatch * 4> input_{};
    std::array<uint16_t, kBatch * 4> output_{};
    std::array<char, kBatch * 4 * 8> text_{};
};

void convertInput(Pipeline& pipeline) {
    constexpr size_t kMostOfALine = 1000;
    std::vector<char> buffer(size_t{1} << 16);
    size_t filled = 0, line = 0;
    const auto where = [&line] { return "standard input, line " + std::to_string(line); };
    const auto take = [&](const char* begin, const char* end) {
        ++line;
        if (end != begin && end[-1] == '\r') --end;
        if (begin != end && *begin == '#') return;
        pipeline.add(begin, end, where);
    };
    for (;;) {
        const size_t got = std::fread(buffer.data() + filled, 1, buffer.size() - filled, stdin);
        filled += got;
        const char* begin = buffer.data();
        const char* const end = begin + filled;
        while (const void* found = std::memchr(begin, '\n', static_cast<size_t>(end - begin))) {
            take(begin, static_cast<const char*>(found));
            begin = static_cast<const char*>(found) + 1;
        }
        filled = static_cast<size_t>(end - begin);
        if (got == 0) {
            if (filled > 0) take(begin, end);
            break;
        }
        if (filled > kMostOfALine) {
            ++line;
            throw Failure(where() + ": is longer than " + std::to_string(kMostOfALine) + " bytes");
        }
        std::memmove(buffer.data(), begin, filled);
    }
    if (std::ferror(stdin)) throw Failure("standard input cannot be read");
}

}  // namespace

void addConvertCommand(Command& app) {
    struct Options {
        ConversionOptions conversion;
        std::vector<std::string> colours;
        std::string from;
        bool percent = false;
    };
    const auto options = std::make_shared<Options>();
    Command command = app.command("convert", "Convert colours, from arguments or standard input");
    command.examples(kExamples);
    command.option("colours", options->colours, "Colours, such as 0,0,0,255").called("COLOUR");
    options->conversion.addTo(command);
    command.option("--from", options->from, "With --builtin or --grey alone: what the colours are")
        .oneOf({"rgb", "cmyk"});
    command.flag("--percent", options->percent, "Numbers are percent, in and out");
    command.does([options] {
        std::optional<ColourSpace> from;
        if (!options->from.empty()) from = options->from == "rgb" ? ColourSpace::rgb : ColourSpace::cmyk;
        const auto pipeline = std::make_unique<Pipeline>(options->conversion, from, options->percent);
        if (options->colours.empty()) convertInput(*pipeline);
        for (const std::string& colour : options->colours)
            pipeline->add(colour.data(), colour.data() + colour.size(), [] { return std::string("argument"); });
        pipeline->flush();
    });
}

}  // namespace ko::cli
