// One picture for each kind of file; plot_command.cpp chooses.
#pragma once

#include <string>

#include "cli/files.h"

namespace ko::cli {

std::string plotIcc(const InputFile& file);    // links, device profiles, tone curve profiles
std::string plotTable(const InputFile& file);  // .lut, .amt
std::string plotTone(const InputFile& file);   // .bkc, .tnc, .dcc
std::string plotCalib(const InputFile& file);  // .clb
std::string plotColourTable(const InputFile& file);  // CMYK and RGB tables

}  // namespace ko::cli
