// quillon schema: prints the JSON Schema that every command's JSON output follows.
#include "cli/Commands.h"

#include <QFile>

#include <iostream>

namespace quillon::cli {

void addSchemaCommand(CLI::App& program, std::vector<Command>& commands)
{
    CLI::App* schema = program.add_subcommand(
        "schema", "Print the JSON Schema of the JSON the commands write (--format json): format 1.");
    commands.push_back({schema, [] {
                            QFile file(QStringLiteral(":/quillon-1.schema.json"));
                            if (!file.open(QIODevice::ReadOnly)) {
                                std::cerr << "quillon schema: the schema is missing from this build" << std::endl;
                                return kExitFailure;
                            }
                            const QByteArray text = file.readAll();
                            std::cout.write(text.constData(), text.size());
                            return kExitOk;
                        }});
}

} // namespace quillon::cli
