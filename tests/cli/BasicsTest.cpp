#include "CliRunner.h"

#include "app/BuildInfo.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using quillon::test::runQuillon;

TEST(Cli, VersionAndHelpStateTheExitStatuses)
{
    const auto version = runQuillon({QStringLiteral("--version")});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out.trimmed(), QByteArray("quillon ") + quillon::app::kQuillonVersion);

    for (const char* command : {"", "preflight", "info", "links", "inspect", "metadata", "presets", "presets export"}) {
        QStringList arguments = QString::fromLatin1(command).split(u' ', Qt::SkipEmptyParts);
        const auto help = runQuillon(arguments << QStringLiteral("--help"));
        EXPECT_EQ(help.exitCode, 0) << command;
        EXPECT_TRUE(help.out.contains("Exit status: 0 no alert; 1 alerts or warnings; 2 a document could not be read"))
            << command << help.out.toStdString();
        EXPECT_TRUE(help.out.contains("64 a usage error")) << command;
    }
}

TEST(Cli, EveryUsageErrorExits64WithOneLineNamingTheProblem)
{
    QTemporaryDir folder;
    const QString dir = folder.path();
    const struct {
        QStringList arguments;
        const char* named; // what the line must name
    } cases[] = {
        {{"--no-such-option"}, "--no-such-option"},
        {{"frob"},
         "unknown command 'frob'; commands: links, presets, info, preflight, package, verify, inspect, metadata"},
        {{"presets", "frob"}, "quillon presets: unknown command 'frob'; commands: list, show"},
        {{"preflight"}, "no documents to process: give IDML files, folders or --files-from"},
        {{"preflight", "--jobs", "0", "a.idml"}, "--jobs: Value 0 not in range 1 to 64"},
        {{"preflight", "--format", "xml", "a.idml"}, "--format"},
        {{"preflight", "--report-dir", "", "a.idml"}, "--report-dir"},
        {{"preflight", "--overwrite", "a.idml"}, "--overwrite requires --report-dir"},
        {{"preflight", "--preset", "a", "--preset-file", "b", "a.idml"}, "--preset excludes --preset-file"},
        {{"preflight", "a.idml", "--preset"}, "--preset"},
        {{"links"}, "no documents to process"},
        {{"links", "--search-links", "9", "a.idml"}, "--search-links: Value 9 not in range 0 to 8"},
        {{"package", "a.idml"}, "--to is required"},
        {{"package", "a.idml", "--to", dir, "--separate", "--no-links"}, "--separate needs the links collected"},
        {{"links", "--format", "xml", "a.idml"}, "--format"},
        {{"links", "--links-dir", dir + "/none", "a.idml"}, "--links-dir"},
        {{"info", "--format", "xml", "a.idml"}, "--format"},
        {{"inspect"}, "files is required"},
        {{"inspect", "--bogus", "a"}, "--bogus"},
        {{"metadata"}, "file is required"},
        {{"metadata", "a", "b"}, "b"},
        {{"presets"}, "A subcommand is required"},
        {{"presets", "show"}, "NAME is required"},
        {{"presets", "export", dir + "/none"}, "DIR"},
        {{"presets", "export", dir, "--replace", "--keep-both"}, "--replace excludes --keep-both"},
    };
    for (const auto& c : cases) {
        const auto run = runQuillon(c.arguments);
        const std::string shown = c.arguments.join(u' ').toStdString() + "\n" + run.err.toStdString();
        EXPECT_EQ(run.exitCode, 64) << shown;
        EXPECT_EQ(run.err.count('\n'), 1) << shown;
        EXPECT_TRUE(run.err.contains(c.named)) << shown;
        EXPECT_TRUE(run.out.isEmpty()) << shown;
    }
}

TEST(Cli, AFullStandardOutputExits2WithTheReason)
{
    QTemporaryDir config;
    const QStringList environment{QStringLiteral("XDG_CONFIG_HOME=") + config.path()};
    for (const QStringList& arguments :
         {QStringList{QStringLiteral("--help")}, QStringList{QStringLiteral("presets"), QStringLiteral("list")},
          QStringList{QStringLiteral("info"), QStringLiteral("--format"), QStringLiteral("json"),
                      QStringLiteral("../shared/samples/idml/interview.idml")}}) {
        const auto run = runQuillon(arguments, environment, 60000, QStringLiteral("/dev/full"));
        EXPECT_EQ(run.exitCode, 2) << arguments.join(u' ').toStdString();
        EXPECT_EQ(run.err, QByteArray("quillon: cannot write standard output: No space left on device\n"))
            << run.err.toStdString();
    }
}
