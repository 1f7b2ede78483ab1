#include "cli/Commands.h"

namespace quillon::cli {

void addCommands(CLI::App& program, std::vector<Command>& commands)
{
    addInfoCommand(program, commands);
}

} // namespace quillon::cli
