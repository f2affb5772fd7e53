// The checks of files by their kind, behind checkFile.
#pragma once

#include <string_view>
#include <vector>

#include "quality/file_check.h"

namespace ko::quality {

std::vector<Fault> checkBlackCurve(std::string_view text);
std::vector<Fault> checkGridCurves(std::string_view text, bool printer);  // .dcc, else .tnc
std::vector<Fault> checkCalibration(std::string_view text);
std::vector<Fault> checkSettings(std::string_view text);

}  // namespace ko::quality
