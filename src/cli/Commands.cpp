#include "cli/Commands.h"

#include "cli/InspectCommands.h"
#include "cli/LinksCommand.h"
#include "cli/PresetsCommand.h"

namespace quillon::cli {

void addCommands(CLI::App& program, std::vector<Command>& commands)
{
    addLinksCommand(program, commands);
    addPresetsCommand(program, commands);
    addInfoCommand(program, commands);
    addPreflightCommand(program, commands);
    addPackageCommand(program, commands);
    addVerifyCommand(program, commands);
    addInspectCommand(program, commands);
    addMetadataCommand(program, commands);
    addSchemaCommand(program, commands);
}

CLI::Validator nonEmpty(const std::string& what)
{
    return CLI::Validator(
        [what](std::string& value) { return value.empty() ? "an empty value; give " + what : std::string(); }, "");
}

} // namespace quillon::cli
