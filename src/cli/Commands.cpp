#include "cli/Commands.h"

#include "cli/LinksCommand.h"

namespace quillon::cli {

void addCommands(CLI::App& program, std::vector<Command>& commands)
{
    addLinksCommand(program, commands);
}

} // namespace quillon::cli
