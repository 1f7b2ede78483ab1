#include "cli/Commands.h"

#include "cli/InspectCommands.h"

namespace quillon::cli {

void addCommands(CLI::App& program, std::vector<Command>& commands)
{
    addInspectCommand(program, commands);
    addMetadataCommand(program, commands);
}

} // namespace quillon::cli
