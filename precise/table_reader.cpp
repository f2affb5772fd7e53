// Reads curves and tables: curv, para, mft1, mft2, mAB, mBA. Everything stays on the scale 0..1;
// what the numbers mean is the profile's affair.
#include <algorithm>
#include <limits>

#include "precise/profile.h"

namespace ko::precise {
namespace {

constexpr size_t kMostNodes = size_t{1} << 24;

double s15Fixed16(ByteReader& in) noexcept { return in.s32() / 65536.0; }

// The nodes of a grid, integers of one or two bytes; false when the element holds fewer.
bool readNodes(ByteReader& in, Grid& grid, int width) {
    uint64_t count = 1;
    for (int axis = 0; axis < grid.inputs; ++axis) {
        const int points = grid.points[static_cast<size_t>(axis)];
        if (points < 1) return false;
        count *= static_cast<uint64_t>(points);
        if (count > kMostNodes) return false;
    }
    const uint64_t size = count * static_cast<uint64_t>(grid.outputs * width);
    if (size > in.remaining()) return false;
    const auto bytes = in.take(static_cast<size_t>(size));
    grid.nodes.assign(static_cast<size_t>(count) * 4, 0.0f);
    const uint8_t* from = bytes.data();
    for (size_t node = 0; node < count; ++node)
        for (int ch = 0; ch < grid.outputs; ++ch, from += width)
            grid.nodes[node * 4 + static_cast<size_t>(ch)] =
                static_cast<float>(width == 2 ? from[0] << 8 | from[1] : from[0]);
    grid.scale = width == 2 ? 1.0 / 65535 : 1.0 / 255;
    grid.setStrides();
    return true;
}

std::optional<std::vector<Curve>> readTables(ByteReader& in, int channels, int entries, int width) {
    std::vector<Curve> curves;
    for (int ch = 0; ch < channels; ++ch) {
        const auto bytes = in.take(static_cast<size_t>(entries * width));
        if (!in.ok()) return std::nullopt;
        std::vector<double> values(static_cast<size_t>(entries));
        for (size_t at = 0; at < values.size(); ++at)
            values[at] = width == 2 ? (bytes[2 * at] << 8 | bytes[2 * at + 1]) / 65535.0
                                    : bytes[at] / 255.0;
        curves.push_back(Curve::sampled(std::move(values)));
    }
    return curves;
}

bool isIdentity(const Matrix& matrix) noexcept {
    for (size_t row = 0; row < 3; ++row)
        for (size_t column = 0; column < 3; ++column) {
            const double off = matrix.rows[row][column] - (row == column ? 1 : 0);
            if (off > 1e-5 || off < -1e-5) return false;
        }
    return matrix.offsets == std::array<double, 3>{};
}

std::optional<Pipeline> parseOldTable(std::span<const uint8_t> element, int width, int inputs,
                                      int outputs) {
    ByteReader in(element);
    in.skip(8);
    const int ins = in.u8(), outs = in.u8(), points = in.u8();
    in.skip(1);
    Matrix matrix;
    for (auto& row : matrix.rows)
        for (double& value : row) value = s15Fixed16(in);
    int inputEntries = 256, outputEntries = 256;
    if (width == 2) {
        inputEntries = in.u16();
        outputEntries = in.u16();
    }
    if (!in.ok() || ins != inputs || outs != outputs || points < 2 || inputEntries < 2 ||
        outputEntries < 2)
        return std::nullopt;
    Pipeline pipeline;
    pipeline.inputs = ins;
    pipeline.outputs = outs;
    if (ins == 3 && !isIdentity(matrix)) pipeline.addMatrix(matrix);
    auto curves = readTables(in, ins, inputEntries, width);
    if (!curves) return std::nullopt;
    pipeline.add({Step::curves, std::move(*curves), {}, {}});
    Stage grid;
    grid.step = Step::grid;
    grid.grid.inputs = ins;
    grid.grid.outputs = outs;
    std::fill_n(grid.grid.points.begin(), ins, points);
    if (!readNodes(in, grid.grid, width)) return std::nullopt;
    pipeline.add(std::move(grid));
    curves = readTables(in, outs, outputEntries, width);
    if (!curves) return std::nullopt;
    pipeline.add({Step::curves, std::move(*curves), {}, {}});
    return pipeline;
}

// The parts of mAB and mBA, each at its own place in the element, absent when that is 0.
class NewTable {
public:
    NewTable(std::span<const uint8_t> element, Pipeline& pipeline)
        : element_(element), pipeline_(pipeline) {}

    bool curves(uint32_t offset, int channels) {
        if (offset == 0) return true;
        auto in = from(offset);
        if (!in) return false;
        Stage stage;
        stage.step = Step::curves;
        bool needed = false;
        for (int ch = 0; ch < channels; ++ch) {
            size_t taken = 0;
            auto curve = parseCurve(*in, taken);
            if (!curve) return false;
            needed |= !curve->isIdentity();
            stage.curves.push_back(std::move(*curve));
            // Padding behind the last one may be missing.
            if (ch + 1 < channels) in->skip((4 - taken % 4) % 4);
        }
        if (needed) pipeline_.add(std::move(stage));
        return true;
    }
    bool matrix(uint32_t offset) {
        if (offset == 0) return true;
        auto in = from(offset);
        if (!in) return false;
        Matrix matrix;
        for (auto& row : matrix.rows)
            for (double& value : row) value = s15Fixed16(*in);
        for (double& value : matrix.offsets) value = s15Fixed16(*in);
        if (!in->ok()) return false;
        if (!isIdentity(matrix)) pipeline_.addMatrix(matrix);
        return true;
    }
    bool grid(uint32_t offset, int inputs, int outputs) {
        if (offset == 0) return inputs == outputs;
        auto in = from(offset);
        if (!in) return false;
        Stage stage;
        stage.step = Step::grid;
        stage.grid.inputs = inputs;
        stage.grid.outputs = outputs;
        for (int axis = 0; axis < 16; ++axis) {
            const int points = in->u8();
            if (axis < inputs) stage.grid.points[static_cast<size_t>(axis)] = points;
        }
        const int width = in->u8();
        in->skip(3);
        if (!in->ok() || (width != 1 && width != 2) || !readNodes(*in, stage.grid, width))
            return false;
        pipeline_.add(std::move(stage));
        return true;
    }

private:
    std::optional<ByteReader> from(uint32_t offset) const noexcept {
        if (offset > element_.size()) return std::nullopt;
        return ByteReader(element_.subspan(offset));
    }
    std::span<const uint8_t> element_;
    Pipeline& pipeline_;
};

std::optional<Pipeline> parseNewTable(std::span<const uint8_t> element, bool fromDevice, int inputs,
                                      int outputs) {
    ByteReader in(element);
    in.skip(8);
    const int ins = in.u8(), outs = in.u8();
    in.skip(2);
    const uint32_t b = in.u32(), matrix = in.u32(), m = in.u32(), grid = in.u32(), a = in.u32();
    if (!in.ok() || ins != inputs || outs != outputs) return std::nullopt;
    Pipeline pipeline;
    pipeline.inputs = ins;
    pipeline.outputs = outs;
    NewTable parts(element, pipeline);
    const int middle = fromDevice ? outs : ins;  // what the matrix works on
    if ((matrix != 0 || m != 0) && middle != 3) return std::nullopt;
    const bool whole =
        fromDevice ? parts.curves(a, ins) && parts.grid(grid, ins, outs) && parts.curves(m, outs) &&
                         parts.matrix(matrix) && parts.curves(b, outs)
                   : parts.curves(b, ins) && parts.matrix(matrix) && parts.curves(m, ins) &&
                         parts.grid(grid, ins, outs) && parts.curves(a, outs);
    if (!whole) return std::nullopt;
    return pipeline;
}

}  // namespace

std::optional<Curve> parseCurve(ByteReader& in, size_t& taken) {
    const size_t before = in.remaining();
    const uint32_t type = in.u32();
    in.skip(4);
    std::optional<Curve> curve;
    if (type == fourcc("curv")) {
        const uint32_t count = in.u32();
        if (!in.ok() || count > in.remaining() / 2) return std::nullopt;
        if (count == 0) {
            curve = Curve();
        } else if (count == 1) {
            curve = Curve::parametric(0, {in.u16() / 256.0});
        } else {
            std::vector<double> entries(count);
            for (double& entry : entries) entry = in.u16() / 65535.0;
            curve = Curve::sampled(std::move(entries));
        }
    } else if (type == fourcc("para")) {
        constexpr int kCounts[] = {1, 3, 4, 5, 7};
        const int form = in.u16();
        in.skip(2);
        if (form > 4) return std::nullopt;
        std::array<double, 7> parameters{};
        for (int at = 0; at < kCounts[form]; ++at)
            parameters[static_cast<size_t>(at)] = s15Fixed16(in);
        curve = Curve::parametric(form, parameters);
    }
    if (!in.ok()) return std::nullopt;
    taken = before - in.remaining();
    return curve;
}

std::optional<Pipeline> parseTable(std::span<const uint8_t> element, int inputs, int outputs,
                                   Problem& problem) {
    ByteReader in(element);
    std::optional<Pipeline> pipeline;
    switch (const uint32_t type = in.u32(); type) {
        case fourcc("mft1"): pipeline = parseOldTable(element, 1, inputs, outputs); break;
        case fourcc("mft2"): pipeline = parseOldTable(element, 2, inputs, outputs); break;
        case fourcc("mAB "): pipeline = parseNewTable(element, true, inputs, outputs); break;
        case fourcc("mBA "): pipeline = parseNewTable(element, false, inputs, outputs); break;
        default:
            problem.set(Trouble::unsupported,
                        "holds a table of the unknown type " + signatureText(type));
            return std::nullopt;
    }
    if (!pipeline)
        problem.set(Trouble::profile, "holds a table that is damaged or does not fit its channels");
    return pipeline;
}

}  // namespace ko::precise
