#include "cli/Commands.h"

#include "app/BuildInfo.h"

#include <QCoreApplication>

#include <iostream>

int main(int argc, char** argv)
{
    QCoreApplication qtApp(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Quillon"));
    QCoreApplication::setOrganizationName(QStringLiteral("Tornvale"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(quillon::app::kQuillonVersion));

    CLI::App program{"Quillon: preflight and package InDesign documents from their IDML export.", "quillon"};
    program.set_version_flag("--version", std::string("quillon ") + quillon::app::kQuillonVersion);
    program.require_subcommand(0, 1);
    program.fallthrough();

    std::vector<quillon::cli::Command> commands;
    quillon::cli::addCommands(program, commands);

    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return program.exit(e);
    }
    for (const auto& command : commands)
        if (command.app->parsed() && command.run)
            return command.run();
    std::cout << program.help();
    return quillon::cli::kExitOk;
}
