// The commands. Each has a source of its own that adds its sub-command with options, help and the
// work as the callback; main.cpp keeps the list.
#pragma once

namespace CLI {
class App;
}

namespace ko::cli {

void addLinkCommand(CLI::App& app);
void addInfoCommand(CLI::App& app);
void addPlotCommand(CLI::App& app);
void addConvertCommand(CLI::App& app);
void addImageCommand(CLI::App& app);
void addListCommand(CLI::App& app);
void addCalibCommand(CLI::App& app);
void addTableCommand(CLI::App& app);

}  // namespace ko::cli
