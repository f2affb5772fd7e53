#include "cli/measured_link.h"

#include <cstdio>

#include "cli/errors.h"
#include "frame/arithmetic_mode.h"

namespace ko::cli {

std::unique_ptr<precise::Profile> openPreciseProfile(const InputFile& file) {
    if (file.type != FileType::icc) failOn(file.path, "is not an ICC file");
    precise::Problem problem;
    auto profile = precise::Profile::parse(file.bytes, problem);
    if (!profile) failOn(file.path, problem.text);
    return profile;
}

MeasuredLink::MeasuredLink(const InputFile& file, std::optional<precise::Nodes> nodes) : file_(file) {
    const auto profile = openPreciseProfile(file);
    precise::Problem problem;
    subject_ = quality::Subject::open(*profile, nodes, problem);
    if (!subject_) failOn(file.path, problem.text);
}

void MeasuredLink::judgeBy(const JudgedBy& by, const InputFile& source, const InputFile& destination) {
    const ArithmeticMode arithmetic;
    const auto from = openPreciseProfile(source), to = openPreciseProfile(destination);
    precise::Problem problem;
    int32_t part = 0;
    if (!subject_->judgeBy(*from, *to, by.intent, by.compensateBlack, problem, part))
        failOn(part == 2 ? destination.path : source.path, problem.text);
    judgedBy_ = by;
}

void MeasuredLink::measure(const quality::Gates& gates) {
    const ArithmeticMode arithmetic;
    if (!judgedBy_ && gates.needColours())
        failOn(file_.path, "colours are not judged without the profiles (--source, --destination)");
    findings_ = quality::measure(*subject_, file_.bytes);
    gates_ = quality::judge(gates, *subject_, findings_);
}

bool MeasuredLink::passes() const {
    bool all = true;
    for (const quality::GateResult& gate : gates_) {
        if (gate.holds) continue;
        all = false;
        const std::string line = "kolink: " + printable(file_.path) + ": " + gateLine(gate) + '\n';
        std::fwrite(line.data(), 1, line.size(), stderr);
    }
    return all;
}

}  // namespace ko::cli
