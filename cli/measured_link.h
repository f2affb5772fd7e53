// A link's bytes on their way through the measures and the gates.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/files.h"
#include "cli/quality_summary.h"
#include "quality/quality.h"

namespace ko::cli {

// Fails with the path when the file is no ICC profile that can be read.
std::unique_ptr<precise::Profile> openPreciseProfile(const InputFile& file);

class MeasuredLink {
public:
    // file outlives this; nodes: how its grid is read, without a word as the link was made.
    MeasuredLink(const InputFile& file, std::optional<precise::Nodes> nodes);

    const quality::LinkFacts& facts() const { return subject_->facts(); }
    void judgeBy(const JudgedBy& by, const InputFile& source, const InputFile& destination);
    // Says which profile is missing where colours are not judged.
    void leaveColours(Origin missing) { missing_ = std::move(missing); }
    // Fails when a gate asks for colours and nothing has been said of the profiles.
    void measure(const quality::Gates& gates);

    ReportedLink reported() const { return {file_.path, *subject_, findings_, judgedBy_, missing_, gates_}; }
    Json json() const { return qualityJson(reported()); }
    std::string summary() const { return qualitySummary(reported()); }
    // Says a line on standard error for each gate that does not hold.
    bool passes() const;

private:
    const InputFile& file_;
    std::optional<quality::Subject> subject_;
    std::optional<JudgedBy> judgedBy_;
    Origin missing_;
    quality::Findings findings_;
    std::vector<quality::GateResult> gates_;
};

}  // namespace ko::cli
