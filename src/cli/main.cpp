#include "cli/Commands.h"

#include "app/BuildInfo.h"
#include "cli/Interruption.h"
#include "cli/StandardOutput.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

namespace {

using namespace quillon::cli;

// "quillon presets rename": the program and the subcommands chosen so far.
std::string commandPath(const CLI::App& program)
{
    std::string path = program.get_name();
    for (const CLI::App* app = &program; !app->get_subcommands().empty();) {
        app = app->get_subcommands().front();
        path += ' ' + app->get_name();
    }
    return path;
}

// The first word that should name a command and names none ("quillon frob", "quillon presets
// frob"). Above the commands only flags are taken, so any other word is a command's name.
std::optional<std::string> unknownCommand(CLI::App& program, int argc, char** argv)
{
    CLI::App* app = &program;
    std::string path = program.get_name();
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word.empty() || word[0] == '-')
            continue;
        const std::vector<CLI::App*> commands = app->get_subcommands([](CLI::App*) { return true; });
        if (commands.empty())
            return std::nullopt;
        std::string names;
        for (CLI::App* command : commands) {
            if (command->get_name() == word) {
                app = command;
                path += ' ' + word;
                names.clear();
                break;
            }
            names += (names.empty() ? "" : ", ") + command->get_name();
        }
        if (!names.empty())
            return path + ": unknown command '" + word + "'; commands: " + names;
    }
    return std::nullopt;
}

// Every parse error is a usage error: one line naming the option, and where to read more.
int usageError(const std::string& command, std::string message)
{
    for (char& c : message)
        if (c == '\n')
            c = ' ';
    std::cerr << command << ": " << message << "; see '" << command << " --help'" << std::endl;
    return kExitUsage;
}

void addExitStatusFooters(CLI::App& app)
{
    app.footer(kExitStatusHelp);
    for (CLI::App* command : app.get_subcommands([](CLI::App*) { return true; }))
        addExitStatusFooters(*command);
}

int runCommand(int argc, char** argv)
{
    CLI::App program{"Quillon: preflight InDesign documents from their IDML export.", "quillon"};
    program.set_version_flag("--version", std::string("quillon ") + quillon::app::kQuillonVersion);
    program.require_subcommand(0, 1);
    program.fallthrough();

    std::vector<Command> commands;
    addCommands(program, commands);
    addExitStatusFooters(program);

    if (const std::optional<std::string> unknown = unknownCommand(program, argc, argv)) {
        std::cerr << *unknown << std::endl;
        return kExitUsage;
    }
    try {
        program.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return program.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return program.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return program.exit(e);
    } catch (const CLI::ParseError& e) {
        return usageError(commandPath(program), e.what());
    }
    for (const auto& command : commands)
        if (command.app->parsed() && command.run)
            return command.run();
    std::cout << program.help();
    return kExitOk;
}

// A PDF report is painted, which needs a GUI application; the other commands keep the cheaper
// start of a core one.
bool paintsPdfReports(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const char* word = argv[i];
        if (std::strcmp(word, "--pdf-report") == 0 || std::strcmp(word, "--format=pdf") == 0)
            return true;
        if (std::strcmp(word, "--format") == 0 && i + 1 < argc && std::strcmp(argv[i + 1], "pdf") == 0)
            return true;
    }
    return false;
}

// The Qt application of the run, and the private runtime folder a GUI application needs when the
// session has none (Qt would otherwise leave one in the temporary folder).
struct Application {
    std::unique_ptr<QTemporaryDir> runtimeFolder;
    std::unique_ptr<QCoreApplication> qt;
};

Application makeApplication(int& argc, char** argv)
{
    Application application;
    if (!paintsPdfReports(argc, argv)) {
        application.qt = std::make_unique<QCoreApplication>(argc, argv);
        return application;
    }
    // No display is needed to paint a PDF.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        application.runtimeFolder = std::make_unique<QTemporaryDir>();
        if (application.runtimeFolder->isValid())
            qputenv("XDG_RUNTIME_DIR", QFile::encodeName(application.runtimeFolder->path()));
    }
    application.qt = std::make_unique<QGuiApplication>(argc, argv);
    return application;
}

} // namespace

int main(int argc, char** argv)
{
    const Application qtApp = makeApplication(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Quillon"));
    QCoreApplication::setOrganizationName(QStringLiteral("Tornvale"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(quillon::app::kQuillonVersion));

    StandardOutput output;
    int status = kExitOk;
    {
        Interruption interruption;
        status = runCommand(argc, argv);
        if (Interruption::requested() && status != kExitUsage)
            status = Interruption::exitStatus();
        // Checked while the handlers stand, so that a reader gone makes a message, not a kill.
        if (!output.flush()) {
            std::cerr << "quillon: " << output.failure().toStdString() << std::endl;
            if (status == kExitOk || status == kExitAlerts)
                status = kExitFailure;
        }
    }
    return status;
}
