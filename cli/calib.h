// Calibration sets as the tool meets them.
#pragma once

#include <memory>
#include <string>

#include "cli/files.h"
#include "cli/report.h"

namespace ko::cli {

struct CalibDeleter {
    void operator()(CalibCurveSet* set) const { jKoCalibReleaseCurve(set); }
};
using CalibPtr = std::unique_ptr<CalibCurveSet, CalibDeleter>;

CalibPtr loadCalib(const InputFile& file);  // fails with a clear line
Json calibReport(const CalibCurveSet& set);
std::string calibText(const char* field, size_t size);  // of a record's field, as UTF-8

}  // namespace ko::cli
