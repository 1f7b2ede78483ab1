#pragma once

#include "cli/Commands.h"

#include <string>

namespace quillon::cli {

// `quillon inspect FILE...`: what the linked-file readers find in each file.
void addInspectCommand(CLI::App& program, std::vector<Command>& commands);

// `quillon metadata FILE`: the image-metadata rows of a file, or the page size of a PDF.
void addMetadataCommand(CLI::App& program, std::vector<Command>& commands);

struct OutputOptions;

// The "--format text|json", --output and --quiet options of both.
void addFormatOptions(CLI::App* command, std::string& format, OutputOptions& output);

} // namespace quillon::cli
