// The exported functions of kolink/precise.h, thin shells over the engine.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <optional>

#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"
#include "frame/file.h"
#include "kolink/precise.h"
#include "precise/link.h"
#include "precise/link_file.h"
#include "precise/link_row.h"
#include "precise/solve.h"
#include "precise/transform.h"

using namespace ko::precise;

static_assert(sizeof(KoPreciseError) == 1016);
static_assert(sizeof(KoPreciseOptions) == 368);
static_assert(static_cast<int>(Trouble::memory) == KO_PRECISE_MEMORY);
static_assert(static_cast<int>(Black::curve) == KO_PRECISE_BLACK_CURVE);
static_assert(static_cast<int>(Preserve::triplex) == KO_PRECISE_PRESERVE_TRIPLEX);
static_assert(kLimitOfProfile == KO_PRECISE_LIMIT_PROFILE && kNoLimit == KO_PRECISE_LIMIT_NONE);

struct KoPreciseProfile {
    std::unique_ptr<Profile> profile;
};
struct KoPreciseTransform {
    Evaluator evaluator;
    bool limited;  // device results stay within 0..1
    // Of a plain link: rows of bytes need nothing but its grid.
    std::vector<uint8_t> nodes;
    std::optional<ByteGrid> grid;
};
struct KoPreciseLink {
    std::unique_ptr<Link> link;
};

namespace {

constexpr uint64_t kMostBytes = uint64_t{256} << 20;
constexpr ko::FileKind kFiles = {UINT64_MAX, true, true};

template <size_t size>
void copyText(char (&field)[size], const std::string& text) noexcept {
    size_t length = std::min(text.size(), size - 1);
    // A character that is cut would be no UTF-8 any more.
    while (length > 0 && length < text.size() &&
           (static_cast<uint8_t>(text[length]) & 0xc0) == 0x80)
        --length;
    std::memcpy(field, text.data(), length);
    std::memset(field + length, 0, size - length);
}

void report(KoPreciseError* error, const Problem& problem, int32_t part) noexcept {
    if (!error) return;
    error->code = static_cast<int32_t>(problem.code);
    error->part = problem.code == Trouble::none ? 0 : part;
    copyText(error->text, problem.text);
}

// Runs work(problem, part), reports what it says, and nothing but memory can fail outside it.
template <class Result, class Work>
Result guarded(KoPreciseError* error, Result failure, Work&& work) noexcept {
    bool ended = false;
    const Result result = ko::atBoundary<Result>(failure, [&] {
        Problem problem;
        int32_t part = 0;
        const Result made = work(problem, part);
        report(error, problem, part);
        ended = true;
        return made;
    });
    if (!ended && error) {
        error->code = KO_PRECISE_MEMORY;
        error->part = 0;
        std::memset(error->text, 0, sizeof error->text);
        std::memcpy(error->text, "memory is short", 15);
    }
    return result;
}

ko::FileBytes bytesOf(const char* path, Problem& problem) {
    ko::FileReading reading = ko::readWhole(path, kFiles, kMostBytes);
    if (reading.result == ko::ReadResult::notOpened) {
        problem.set(Trouble::file, "cannot be opened");
        return {};
    }
    if (reading && reading.file.fileSize() > kMostBytes) {
        problem.set(Trouble::file, "is larger than 256 MiB");
        return {};
    }
    if (!reading) {
        problem.set(Trouble::file, "cannot be read whole");
        return {};
    }
    return std::move(reading.file);
}

KoPreciseProfile* opened(std::span<const uint8_t> bytes, Problem& problem) {
    auto profile = Profile::parse(bytes, problem);
    if (!profile) return nullptr;
    return new KoPreciseProfile{std::move(profile)};
}

template <class Enum>
bool take(Enum& to, int32_t value, Enum last, const char* name, Problem& problem) {
    if (value < 0 || value > static_cast<int32_t>(last)) {
        problem.set(Trouble::argument, std::string(name) + " has no value " + std::to_string(value));
        return false;
    }
    to = static_cast<Enum>(value);
    return true;
}

bool takeOptions(const KoPreciseOptions& from, LinkOptions& to, Problem& problem) {
    if (from.size != static_cast<int32_t>(sizeof from)) {
        problem.set(Trouble::argument, "the options are of another version of the library");
        return false;
    }
    if (!take(to.method, from.method, Method::tables, "method", problem) ||
        !take(to.intent, from.intent, Intent::absolute, "intent", problem) ||
        !take(to.black, from.black, Black::curve, "black", problem) ||
        !take(to.preserve, from.preserve, Preserve::triplex, "preserve", problem) ||
        !take(to.white, from.white, White::paper, "white", problem) ||
        !take(to.nodes, from.nodes, Nodes::library, "nodes", problem))
        return false;
    to.compensateBlack = from.blackPointCompensation != 0;
    to.bits = from.bits;
    to.gridPoints = from.gridPoints;
    to.clip = from.clip;
    to.inkLimit = from.inkLimit;
    to.saveInk = from.saveInk;
    to.saveInkAbove = from.saveInkAbove;
    for (size_t i = 0; i < 4; ++i) {
        if (!(from.paper[i] >= 0 && from.paper[i] <= 100)) {
            problem.set(Trouble::argument, "the paper's tint is not 0 to 100 percent");
            return false;
        }
        to.paper[i] = from.paper[i] / 100;
    }
    to.paperFade = from.paperFade / 100;
    std::copy(std::begin(from.blackCurve), std::end(from.blackCurve), to.blackCurve.begin());
    return true;
}

std::string orEmpty(const char* text) { return text ? text : ""; }

LinkFileParts fileOf(const KoPreciseLink* link, const KoPreciseFileOptions* file,
                            Problem& problem, int32_t& part) {
    if (!link || !file || file->size != static_cast<int32_t>(sizeof *file)) {
        problem.set(Trouble::argument, "no link, or file options of another version");
        return {};
    }
    part = 4;
    LinkFileOptions options;
    options.name = orEmpty(file->name);
    options.editName = orEmpty(file->editName);
    options.editComment = orEmpty(file->editComment);
    options.provenance = orEmpty(file->provenance);
    options.date = file->date;
    options.editable = file->editable != 0;
    return linkFileParts(*link->link, options, problem);
}

// Rows of integers, the nearest level.
template <class Level>
void linkRow(const KoPreciseLink* link, const Level* in, Level* out, size_t count) noexcept {
    if (!link || !in || !out) return;
    const ko::ArithmeticMode arithmetic;
    const Link& l = *link->link;
    constexpr double top = static_cast<Level>(~Level{0});
    for (; count > 0; --count, in += l.inputs, out += l.outputs) {
        Colour colour{};
        for (int ch = 0; ch < l.inputs; ++ch) colour[static_cast<size_t>(ch)] = in[ch] / top;
        colour = l.at(colour);
        for (int ch = 0; ch < l.outputs; ++ch)
            out[ch] = static_cast<Level>(colour[static_cast<size_t>(ch)] * top + 0.5);
    }
}

// Rows of integers through a transform, the nearest level. Other numbers than device colours have
// no levels.
template <class Level>
void transformRow(const KoPreciseTransform* transform, const Level* in, Level* out,
                  size_t count) noexcept {
    const ko::ArithmeticMode arithmetic;
    const int inputs = transform->evaluator.inputs(), outputs = transform->evaluator.outputs();
    constexpr double top = static_cast<Level>(~Level{0});
    for (; count > 0; --count, in += inputs, out += outputs) {
        Colour colour{};
        for (int ch = 0; ch < inputs; ++ch) colour[static_cast<size_t>(ch)] = in[ch] / top;
        colour = transform->evaluator.at(colour);
        for (int ch = 0; ch < outputs; ++ch)
            out[ch] = static_cast<Level>(std::clamp(colour[static_cast<size_t>(ch)], 0.0, 1.0) * top + 0.5);
    }
}

// The transform of a link with the grid that serves its rows of bytes.
KoPreciseTransform* withGrid(Evaluator evaluator, const Profile* link) {
    auto made = std::make_unique<KoPreciseTransform>(KoPreciseTransform{std::move(evaluator), true, {}, {}});
    const auto grid = link ? plainGrid(*link) : std::nullopt;
    if (grid && grid->inputs == made->evaluator.inputs() && grid->outputs == made->evaluator.outputs()) {
        size_t size = static_cast<size_t>(grid->outputs);
        for (int axis = 0; axis < grid->inputs; ++axis) size *= static_cast<size_t>(grid->points);
        made->nodes.assign(grid->nodes, grid->nodes + size);
        made->grid = ByteGrid{made->nodes.data(), grid->inputs, grid->outputs, grid->points};
    }
    return made.release();
}

}  // namespace

extern "C" const char* koPreciseVersion(void) { return KOLINK_VERSION; }

extern "C" KoPreciseProfile* koPreciseOpenProfile(const char* path, KoPreciseError* error) {
    return guarded<KoPreciseProfile*>(error, nullptr, [&](Problem& problem, int32_t&) {
        if (!path) problem.set(Trouble::argument, "no path");
        const ko::FileBytes file = path ? bytesOf(path, problem) : ko::FileBytes();
        return problem.code == Trouble::none ? opened(file.bytes(), problem) : nullptr;
    });
}

extern "C" KoPreciseProfile* koPreciseParseProfile(const void* bytes, size_t size,
                                                   KoPreciseError* error) {
    return guarded<KoPreciseProfile*>(error, nullptr, [&](Problem& problem, int32_t&) {
        return opened({static_cast<const uint8_t*>(bytes), bytes ? size : 0}, problem);
    });
}

extern "C" void koPreciseReleaseProfile(KoPreciseProfile* profile) { delete profile; }

extern "C" int32_t koPreciseDescribeProfile(const KoPreciseProfile* profile,
                                            KoPreciseProfileInfo* info) {
    if (!profile || !info) return 0;
    return ko::atBoundary<int32_t>(0, [&] {
        const Profile& p = *profile->profile;
        KoPreciseProfileInfo all{};  // the host's record stays as it was when memory is short
        all.version = p.header().version;
        all.deviceClass = p.header().deviceClass;
        all.space = p.header().space;
        all.connection = p.header().connection;
        all.inputs = p.channels();
        all.outputs = p.isLink() ? channelsOf(p.header().connection) : 3;
        for (uint32_t at = 0; at < 3; ++at) {
            if (p.hasTag(ko::fourcc("A2B0") + at)) all.tablesTo |= 1 << at;
            if (p.hasTag(ko::fourcc("B2A0") + at)) all.tablesFrom |= 1 << at;
        }
        all.matrix = p.isMatrixShaper();
        const auto id = profileId(p.bytes());
        std::copy(id.begin(), id.end(), all.id);
        const Triple white = p.mediaWhite();
        std::copy(white.begin(), white.end(), all.white);
        if (p.header().space == ko::fourcc("CMYK") && all.tablesFrom)
            all.totalInk = 100 * totalOfTables(p, Intent::relative);
        copyText(all.name, p.description());
        *info = all;
        return 1;
    });
}

extern "C" KoPreciseTransform* koPreciseMakeTransform(const KoPreciseProfile* source,
                                                      const KoPreciseProfile* destination,
                                                      int32_t intent,
                                                      int32_t blackPointCompensation,
                                                      KoPreciseError* error) {
    return guarded<KoPreciseTransform*>(error, nullptr, [&](Problem& problem, int32_t& part)
                                                            -> KoPreciseTransform* {
        Intent wanted;
        if (!source && !destination) problem.set(Trouble::argument, "no profile");
        if (problem.code != Trouble::none ||
            !take(wanted, intent, Intent::absolute, "intent", problem))
            return nullptr;
        std::optional<Pipeline> pipeline;
        part = source ? 1 : 2;
        bool device = destination != nullptr;
        if (source && source->profile->isLink()) {
            if (destination) problem.set(Trouble::argument, "is a device link, which needs no destination");
            else pipeline = source->profile->toConnection(wanted, problem);
            device = true;
        } else if (!destination) {
            pipeline = makeToLab(*source->profile, wanted, problem);
        } else if (!source) {
            pipeline = makeFromLab(*destination->profile, wanted, problem);
        } else {
            // Which of the two is at fault shows when the first one is tried alone.
            Problem first;
            if (source->profile->toConnection(wanted, first)) part = 2;
            pipeline = makeTransform(*source->profile, *destination->profile, wanted,
                                     blackPointCompensation != 0, problem);
            const uint32_t space = destination->profile->header().space;
            device = space != ko::fourcc("Lab ") && space != ko::fourcc("XYZ ");
        }
        if (!pipeline) return nullptr;
        if (source && source->profile->isLink())
            return withGrid(Evaluator(std::move(*pipeline)), source->profile.get());
        return new KoPreciseTransform{Evaluator(std::move(*pipeline)), device, {}, {}};
    });
}

extern "C" void koPreciseReleaseTransform(KoPreciseTransform* transform) { delete transform; }

extern "C" int32_t koPreciseTransformInputs(const KoPreciseTransform* transform) {
    return transform ? transform->evaluator.inputs() : 0;
}
extern "C" int32_t koPreciseTransformOutputs(const KoPreciseTransform* transform) {
    return transform ? transform->evaluator.outputs() : 0;
}

extern "C" void koPreciseTransformFloats(const KoPreciseTransform* transform, const float* in,
                                         float* out, size_t count) {
    if (!transform || !in || !out) return;
    const ko::ArithmeticMode arithmetic;
    const int inputs = transform->evaluator.inputs(), outputs = transform->evaluator.outputs();
    for (; count > 0; --count, in += inputs, out += outputs) {
        Colour colour{};
        for (int ch = 0; ch < inputs; ++ch) colour[static_cast<size_t>(ch)] = in[ch];
        colour = transform->evaluator.at(colour);
        for (int ch = 0; ch < outputs; ++ch) {
            const double value = colour[static_cast<size_t>(ch)];
            out[ch] = static_cast<float>(transform->limited ? std::clamp(value, 0.0, 1.0) : value);
        }
    }
}

extern "C" void koPreciseTransformRow16(const KoPreciseTransform* transform, const uint16_t* in,
                                        uint16_t* out, size_t count) {
    if (!transform || !in || !out) return;
    transformRow(transform, in, out, count);
}

extern "C" void koPreciseTransformRow8(const KoPreciseTransform* transform, const uint8_t* in,
                                       uint8_t* out, size_t count) {
    if (!transform || !in || !out) return;
    if (!transform->grid) return transformRow(transform, in, out, count);
    const ko::ArithmeticMode arithmetic;
    convertRow8(*transform->grid, in, out, count);
}

extern "C" double koPreciseInvert(const KoPreciseProfile* profile, const double lab[3],
                                  double black, double total, double inks[4],
                                  KoPreciseError* error) {
    return guarded<double>(error, -1, [&](Problem& problem, int32_t& part) -> double {
        if (!profile || !lab || !inks || !(black <= 1) || !(total >= 0 && total <= 4)) {
            problem.set(Trouble::argument, "no profile or colour, or black or total out of range");
            return -1;
        }
        part = 2;
        const Profile& p = *profile->profile;
        if (p.header().space != ko::fourcc("CMYK")) {
            problem.set(Trouble::unsupported, "is not a profile for CMYK");
            return -1;
        }
        auto to = makeToLab(p, Intent::relative, problem);
        auto from = makeFromLab(p, Intent::relative, problem);
        if (!to || !from) return -1;
        const Evaluator forward(std::move(*to));
        Wish wish;
        wish.lab = {lab[0], lab[1], lab[2]};
        wish.start = from->at({lab[0], lab[1], lab[2], 0});
        if (black >= 0) wish.start[3] = wish.low[3] = wish.high[3] = black;
        wish.low[3] = wish.high[3] = wish.start[3] = std::clamp(wish.start[3], 0.0, 1.0);
        wish.reference = wish.start;
        wish.black = wish.start[3];
        wish.total = total;
        const Answer answer = solve(forward, wish);
        std::copy(answer.inks.begin(), answer.inks.end(), inks);
        return answer.distance;
    });
}

extern "C" int32_t koPreciseInitOptions(KoPreciseOptions* options) {
    if (!options) return 0;
    std::memset(options, 0, sizeof *options);
    options->size = static_cast<int32_t>(sizeof *options);
    options->intent = KO_PRECISE_RELATIVE;
    options->bits = 8;
    options->inkLimit = KO_PRECISE_LIMIT_PROFILE;
    options->saveInkAbove = 70;
    options->paperFade = 20000.0 / 255;
    for (int level = 0; level < 256; ++level)
        options->blackCurve[level] = static_cast<uint8_t>(level);
    return 1;
}

extern "C" KoPreciseLink* koPreciseMakeLink(const KoPreciseProfile* source,
                                            const KoPreciseProfile* destination,
                                            const KoPreciseProfile* base,
                                            const KoPreciseOptions* options,
                                            KoPreciseError* error) {
    return guarded<KoPreciseLink*>(error, nullptr, [&](Problem& problem, int32_t& part)
                                                       -> KoPreciseLink* {
        if (!source || !destination || !options) {
            problem.set(Trouble::argument, "a link needs a source, a destination and options");
            return nullptr;
        }
        LinkOptions taken;
        if (!takeOptions(*options, taken, problem)) return nullptr;
        auto link = makeLink(*source->profile, *destination->profile,
                             base ? base->profile.get() : nullptr, taken, problem, part);
        return link ? new KoPreciseLink{std::move(link)} : nullptr;
    });
}

extern "C" void koPreciseReleaseLink(KoPreciseLink* link) { delete link; }

extern "C" int32_t koPreciseDescribeLink(const KoPreciseLink* link, KoPreciseLinkInfo* info) {
    if (!link || !info) return 0;
    const Link& l = *link->link;
    std::memset(info, 0, sizeof *info);
    info->inputs = l.inputs;
    info->outputs = l.outputs;
    info->gridPoints = l.gridPoints;
    info->bits = l.bits;
    info->nodes = static_cast<int32_t>(l.nodes);
    info->intent = static_cast<int32_t>(l.intent);
    info->black = static_cast<int32_t>(l.report.black);
    info->inverted = l.report.inverted;
    info->sourceSpace = l.sourceSpace;
    info->destinationSpace = l.destinationSpace;
    info->inkLimit = 100 * l.report.inkLimit;
    info->meanInk = 100 * l.report.meanInk;
    info->tablesInk = 100 * l.report.tablesInk;
    info->savedInk = 100 * l.report.savedInk;
    const double share = l.report.nodes ? 100.0 / static_cast<double>(l.report.nodes) : 0;
    info->reached = share * static_cast<double>(l.report.reached);
    info->movedBlack = share * static_cast<double>(l.report.movedBlack);
    info->limited = share * static_cast<double>(l.report.limited);
    return 1;
}

extern "C" void koPreciseLinkFloats(const KoPreciseLink* link, const float* in, float* out,
                                    size_t count) {
    if (!link || !in || !out) return;
    const ko::ArithmeticMode arithmetic;
    const Link& l = *link->link;
    for (; count > 0; --count, in += l.inputs, out += l.outputs) {
        Colour colour{};
        for (int ch = 0; ch < l.inputs; ++ch) colour[static_cast<size_t>(ch)] = in[ch];
        colour = l.at(colour);
        for (int ch = 0; ch < l.outputs; ++ch)
            out[ch] = static_cast<float>(colour[static_cast<size_t>(ch)]);
    }
}

extern "C" void koPreciseLinkRow16(const KoPreciseLink* link, const uint16_t* in, uint16_t* out,
                                   size_t count) {
    linkRow(link, in, out, count);
}

extern "C" void koPreciseLinkRow8(const KoPreciseLink* link, const uint8_t* in, uint8_t* out,
                                  size_t count) {
    if (!link || !in || !out) return;
    const Link& l = *link->link;
    const ByteGrid grid = {l.table.data(), l.inputs, l.outputs, l.gridPoints};
    if (l.bits != 8 || !hasRows(grid)) return linkRow(link, in, out, count);
    const ko::ArithmeticMode arithmetic;
    convertRow8(grid, in, out, count);
}

extern "C" uint8_t* koPreciseLinkBytes(const KoPreciseLink* link, const KoPreciseFileOptions* file,
                                       size_t* size, KoPreciseError* error) {
    return guarded<uint8_t*>(error, nullptr, [&](Problem& problem, int32_t& part) -> uint8_t* {
        const LinkFileParts made = fileOf(link, file, problem, part);
        if (made.size() == 0) return nullptr;
        auto* const bytes = new uint8_t[made.size()];
        uint8_t* to = bytes;
        for (const auto one : made.inOrder()) to = std::copy(one.begin(), one.end(), to);
        if (size) *size = made.size();
        return bytes;
    });
}

extern "C" void koPreciseReleaseBytes(uint8_t* bytes) { delete[] bytes; }

extern "C" int32_t koPreciseSaveLink(const KoPreciseLink* link, const char* path,
                                     const KoPreciseFileOptions* file, KoPreciseError* error) {
    return guarded<int32_t>(error, 0, [&](Problem& problem, int32_t& part) {
        if (!path) problem.set(Trouble::argument, "no path");
        if (!path) return 0;
        const LinkFileParts made = fileOf(link, file, problem, part);
        if (made.size() == 0) return 0;
        if (ko::replaceWhole(path, kFiles, made.inOrder()) != ko::SaveResult::written) {
            problem.set(Trouble::file, "cannot be written");
            return 0;
        }
        return 1;
    });
}
