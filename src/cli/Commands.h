#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <vector>

namespace quillon::cli {

// Exit statuses shared by every command.
inline constexpr int kExitOk = 0;
inline constexpr int kExitAlerts = 1;   // the run worked and found problems
inline constexpr int kExitFailure = 2;  // a document or file could not be processed

// Each command adds its subcommand to the program and sets `run` to the action that the
// subcommand performs when chosen; the action returns the exit status.
using CommandAction = std::function<int()>;
struct Command {
    CLI::App* app = nullptr;
    CommandAction run;
};

void addCommands(CLI::App& program, std::vector<Command>& commands);

// `quillon info DOC.idml...`: the document record and document information.
void addInfoCommand(CLI::App& program, std::vector<Command>& commands);

} // namespace quillon::cli
