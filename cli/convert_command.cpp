// kolink convert: colours from the arguments or from standard input, a line each.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

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
    "  kolink convert --source press.icc --destination srgb.icc < in.txt > out.txt\n"
    "  kolink convert --builtin --grey 255,0,0\n"
    "\n"
    "Colours are numbers 0..255, or 0..100 with --percent, with blanks, tabs or commas between\n"
    "them: C M Y K or R G B; of L*a*b* and XYZ they are their own numbers. Standard input is read\n"
    "when no colour is given, a colour a line; empty lines and lines that begin with # are left\n"
    "out. To CMYK the result is that of the link that kolink link would make; with --percent or\n"
    "--precision, of one of 16 bits.\n";

constexpr size_t kBatch = 8192;  // colours that are converted at once

constexpr bool isBetween(char c) { return c == ' ' || c == '\t' || c == ','; }

// Reads one colour's numbers; the number of them, or nothing for a line that is none.
class LineParser {
public:
    explicit LineParser(bool percent) : percent_(percent) {}

    // Up to four numbers of a line; more and words are refused.
    int parse(const char* at, const char* end, double (&values)[4]) const {
        int count = 0;
        for (;;) {
            while (at != end && isBetween(*at)) ++at;
            if (at == end) return count;
            if (count == 4) return -1;
            if (!number(at, end, values[count++])) return -1;
            if (at != end && !isBetween(*at)) return -1;
        }
    }

private:
    bool number(const char*& at, const char* end, double& value) const {
        // Most are whole numbers of up to three digits.
        unsigned whole = 0;
        const char* digit = at;
        while (digit != end && *digit >= '0' && *digit <= '9' && digit - at < 4) whole = whole * 10 + unsigned(*digit++ - '0');
        if (digit != at && digit - at <= 3 && (digit == end || isBetween(*digit))) {
            value = whole;
            at = digit;
            return true;
        }
        const auto read = std::from_chars(at, end, value);
        if (read.ec != std::errc() || !(value >= -1e9 && value <= 1e9)) return false;
        at = read.ptr;
        if (percent_ && at != end && *at == '%') ++at;
        return true;
    }

    bool percent_;
};

// What numbers of a colour mean.
struct Scale {
    double low[4] = {0, 0, 0, 0}, high[4] = {255, 255, 255, 255};
    double unit = 255;  // of a level; 1 for the spaces with numbers of their own
    int decimals = 0;
    std::string range = "from 0 to 255";

    Scale(ColourSpace space, bool percent, std::optional<int> precision) {
        if (space == ColourSpace::lab) {
            *this = {{0, -128, -128, 0}, {100, 128, 128, 0}, 1, 2, "L* 0 to 100, a* and b* -128 to 128"};
        } else if (space == ColourSpace::xyz) {
            *this = {{0, 0, 0, 0}, {2, 2, 2, 0}, 1, 4, "from 0 to 2"};
        } else if (percent) {
            *this = {{0, 0, 0, 0}, {100, 100, 100, 100}, 100, 2, "from 0 to 100"};
        }
        if (precision) decimals = *precision;
    }

private:
    Scale(std::initializer_list<double> from, std::initializer_list<double> to, double one, int digits, const char* words)
        : unit(one), decimals(digits), range(words) {
        std::copy(from.begin(), from.end(), low);
        std::copy(to.begin(), to.end(), high);
    }
};

// How numbers are read and written.
struct Numbers {
    bool percent = false;
    std::optional<int> precision;
    bool isFine() const { return percent || precision; }
};

// Collects colours, converts them together, prints them.
class Pipeline {
public:
    Pipeline(const ConversionOptions& options, std::optional<ColourSpace> from, const Numbers& numbers)
        : options_(options), from_(from), numbers_(numbers), parser_(numbers.percent) {}

    // A line or an argument; where says which, for what goes wrong.
    template <class Where>
    void add(const char* begin, const char* end, const Where& where) {
        double values[4];
        const int count = parser_.parse(begin, end, values);
        if (count == 0) return;
        if (!conversion_) start(count, where);
        bool fits = count == inputs_;
        for (int at = 0; fits && at < count; ++at)
            fits = values[at] >= in_->low[at] && values[at] <= in_->high[at];
        if (!fits)
            where.fail("'" + printable(std::string_view(begin, static_cast<size_t>(std::min<std::ptrdiff_t>(end - begin, 60)))) +
                          "' is not " + std::to_string(inputs_) + " numbers " + in_->range + " (" +
                          nameOf(conversion_->input) + ")", count == 1 && inputs_ > 1);
        const size_t at = colours_++ * static_cast<size_t>(inputs_);
        for (size_t i = 0; i < static_cast<size_t>(inputs_); ++i) {
            isWhole_ = isWhole_ && values[i] == static_cast<double>(static_cast<uint8_t>(values[i] > 0 ? values[i] : 0));
            input_[at + i] = static_cast<float>(values[i] / in_->unit);
        }
        if (colours_ == kBatch) flush();
    }

    void flush() {
        if (colours_ == 0) return;
        const size_t inputs = static_cast<size_t>(inputs_), outputs = static_cast<size_t>(channelsOf(conversion_->output));
        // Whole levels are a picture's: what comes out is what a picture gets.
        if (isWhole_ && !numbers_.isFine() && hasLevels(conversion_->input) && hasLevels(conversion_->output)) {
            for (size_t at = 0; at < colours_ * inputs; ++at) levels_[at] = static_cast<uint8_t>(input_[at] * 255 + 0.5f);
            conversion_->convert8(levels_.data(), colours_, levelsOut_.data());
            for (size_t at = 0; at < colours_ * outputs; ++at) {
                char text[4];
                text_.append(text, std::to_chars(text, text + sizeof text, levelsOut_[at]).ptr);
                text_ += (at + 1) % outputs == 0 ? '\n' : ' ';
            }
        } else {
            conversion_->convertFloats(input_.data(), colours_, output_.data());
            for (size_t at = 0; at < colours_ * outputs; ++at) {
                text_ += number(static_cast<double>(output_[at]) * out_->unit, out_->decimals);
                text_ += (at + 1) % outputs == 0 ? '\n' : ' ';
            }
        }
        writeOut(text_);
        text_.clear();
        colours_ = 0;
        isWhole_ = true;
    }

private:
    template <class Where>
    void start(int count, const Where& where) {
        if (count == 1 && !from_ && options_.takesLevelsOfThreeOrFour())
            where.fail("'" + printable(where.text()) + "' is one number, of three (RGB) or four (CMYK)", true);
        ConversionNeeds needs;
        needs.isFine = numbers_.isFine();
        needs.input = from_;
        if (!needs.input && (count == 3 || count == 4)) needs.input = count == 3 ? ColourSpace::rgb : ColourSpace::cmyk;
        conversion_ = options_.make(needs);
        inputs_ = channelsOf(conversion_->input);
        if (from_ && *from_ != conversion_->input)
            throw UsageFailure(std::string("--from ") + nameOf(*from_) + " contradicts the conversion, which takes " +
                               nameOf(conversion_->input));
        in_.emplace(conversion_->input, numbers_.percent, numbers_.precision);
        out_.emplace(conversion_->output, numbers_.percent, numbers_.precision);
    }

    const ConversionOptions& options_;
    std::optional<ColourSpace> from_;
    Numbers numbers_;
    LineParser parser_;
    std::unique_ptr<Conversion> conversion_;
    std::optional<Scale> in_, out_;
    int inputs_ = 0;
    size_t colours_ = 0;
    bool isWhole_ = true;
    std::array<float, kBatch * 4> input_{}, output_{};
    std::array<uint8_t, kBatch * 4> levels_{}, levelsOut_{};
    std::string text_;
};

// Where a colour stands, for what is wrong with it.
struct InLine {
    size_t number = 0;
    std::string_view line{};
    std::string_view text() const { return line.substr(0, 60); }
    [[noreturn]] void fail(const std::string& what, bool) const {
        throw Failure("standard input, line " + std::to_string(number) + ": " + what);
    }
};
struct InArgument {
    const std::string& argument;
    bool alone;  // no other colour is given
    std::string_view text() const { return std::string_view(argument).substr(0, 60); }
    [[noreturn]] void fail(const std::string& what, bool isOneNumber) const {
        throw UsageFailure("argument: " + what +
                           (isOneNumber && !alone ? "; the numbers of one colour are one argument, with commas or "
                                                    "in quotes: 0,0,0,255 or \"0 0 0 255\"" : ""));
    }
};

void convertInput(Pipeline& pipeline) {
    constexpr size_t kMostOfALine = 1000;
    constexpr size_t kMuch = 4096;  // more stands waiting behind it
    std::vector<char> buffer(size_t{1} << 16);
    size_t filled = 0;
    InLine where;
    const auto take = [&](const char* begin, const char* end) {
        ++where.number;
        where.line = {begin, static_cast<size_t>(end - begin)};
        if (end != begin && end[-1] == '\r') --end;
        if (begin != end && *begin == '#') return;
        pipeline.add(begin, end, where);
    };
    for (;;) {
        const size_t got = system::readSome(std::span(buffer).subspan(filled));
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
            ++where.number;
            where.fail("is longer than " + std::to_string(kMostOfALine) + " bytes", false);
        }
        std::memmove(buffer.data(), begin, filled);
        // Whoever waits for each answer before the next question gets it now.
        if (got < kMuch) {
            pipeline.flush();
            finishOut();
        }
    }
}

}  // namespace

void addConvertCommand(Command& app) {
    struct Options {
        ConversionOptions conversion;
        std::vector<std::string> colours;
        std::string from;
        Numbers numbers;
    };
    const auto options = std::make_shared<Options>();
    Command command = app.command("convert", "Convert colours, from arguments or standard input");
    command.examples(kExamples);
    command.option("colours", options->colours, "Colours, such as 0,0,0,255").called("COLOUR");
    options->conversion.addTo(command);
    command.option("--from", options->from, "With --builtin or --grey alone: what the colours are")
        .oneOf({"rgb", "cmyk"});
    command.flag("--percent", options->numbers.percent, "Numbers are percent, in and out");
    command.option("--precision", options->numbers.precision, "Decimals of the results, 0 to 6; colours are not rounded before")
        .called("DIGITS")
        .between(0, 6);
    command.does([options] {
        std::optional<ColourSpace> from;
        if (!options->from.empty()) from = options->from == "rgb" ? ColourSpace::rgb : ColourSpace::cmyk;
        options->conversion.requireWay();
        const auto pipeline = std::make_unique<Pipeline>(options->conversion, from, options->numbers);
        if (options->colours.empty()) convertInput(*pipeline);
        for (const std::string& colour : options->colours)
            pipeline->add(colour.data(), colour.data() + colour.size(),
                          InArgument{colour, options->colours.size() == 1});
        pipeline->flush();
    });
}

}  // namespace ko::cli
