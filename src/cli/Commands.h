#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <vector>

namespace quillon::cli {

// Exit statuses shared by every command.
inline constexpr int kExitOk = 0;
inline constexpr int kExitAlerts = 1;  // the run worked and found problems
inline constexpr int kExitFailure = 2; // a document could not be read or an output could not be written
inline constexpr int kExitUsage = 64;  // the command line itself is wrong

// The exit statuses as every --help states them.
inline constexpr const char* kExitStatusHelp =
    "Exit status: 0 no alert; 1 alerts or warnings; 2 a document could not be read or an output could not be "
    "written (the other documents are still processed); 64 a usage error; 130 interrupted by Ctrl-C (129 when "
    "the terminal hangs up, 143 when terminated, 2 when the reader of the output goes away).";

// Each command adds its subcommand to the program and sets `run` to the action that the
// subcommand performs when chosen; the action returns the exit status.
using CommandAction = std::function<int()>;
struct Command {
    CLI::App* app = nullptr;
    CommandAction run;
};

void addCommands(CLI::App& program, std::vector<Command>& commands);

// Refuses an empty value ("--report-dir ''"), asking for `what`.
CLI::Validator nonEmpty(const std::string& what);

// `quillon info DOC.idml...`: the document record and document information.
void addInfoCommand(CLI::App& program, std::vector<Command>& commands);

// `quillon schema`: the JSON Schema of the JSON output.
void addSchemaCommand(CLI::App& program, std::vector<Command>& commands);

// `quillon preflight DOC.idml...`: preflight documents and print or write their results.
void addPreflightCommand(CLI::App& program, std::vector<Command>& commands);

// `quillon package DOC.idml... --to FOLDER`: preflight documents and package them.
void addPackageCommand(CLI::App& program, std::vector<Command>& commands);

// `quillon verify FOLDER`: check a package folder against its manifest.
void addVerifyCommand(CLI::App& program, std::vector<Command>& commands);

} // namespace quillon::cli
