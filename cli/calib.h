// Calibration sets as the tool meets them.
#pragma once

#include <memory>
#include <string>

#include "cli/files.h"
#include "cli/report.h"
#include "frame/block.h"

namespace ko::cli {

using CalibPtr = Block<CalibCurveSet>;

CalibPtr loadCalib(const InputFile& file);  // fails with a clear line
Json calibReport(const CalibCurveSet& set);

}  // namespace ko::cli
