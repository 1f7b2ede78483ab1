#pragma once

#include "cli/Commands.h"

namespace quillon::cli {

void addPresetsCommand(CLI::App& program, std::vector<Command>& commands);

} // namespace quillon::cli
