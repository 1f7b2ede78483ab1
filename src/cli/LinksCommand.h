#pragma once

#include "cli/Commands.h"

namespace quillon::cli {

// `quillon links DOC.idml... [--links-dir DIR]... [--format table|json]`: the link records of
// each document.
void addLinksCommand(CLI::App& program, std::vector<Command>& commands);

} // namespace quillon::cli
