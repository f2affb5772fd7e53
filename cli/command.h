// The commands. Each has a source of its own that adds its sub-command with options, help and the
// work as the callback; main.cpp keeps the list.
#pragma once

namespace ko::cli {

class Command;

void addLinkCommand(Command& app);
void addInfoCommand(Command& app);
void addPlotCommand(Command& app);
void addConvertCommand(Command& app);
void addImageCommand(Command& app);
void addListCommand(Command& app);
void addCalibCommand(Command& app);
void addTableCommand(Command& app);
void addReportCommand(Command& app);
void addCheckCommand(Command& app);

}  // namespace ko::cli
