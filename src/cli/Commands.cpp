#include "cli/Commands.h"

namespace quillon::cli {

void addCommands(CLI::App& program, std::vector<Command>& commands)
{
    addInspectCommand(program, commands);
    addMetadataCommand(program, commands);
}

} // namespace quillon::cli
