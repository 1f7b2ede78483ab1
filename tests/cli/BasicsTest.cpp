#include "CliRunner.h"

#include "app/BuildInfo.h"

#include <gtest/gtest.h>

using quillon::test::runQuillon;

TEST(Cli, VersionAndHelp)
{
    const auto version = runQuillon({QStringLiteral("--version")});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out.trimmed(), QByteArray("quillon ") + quillon::app::kQuillonVersion);

    const auto help = runQuillon({QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("Usage: quillon")) << help.out.toStdString();

    const auto wrong = runQuillon({QStringLiteral("--no-such-option")});
    EXPECT_NE(wrong.exitCode, 0);
    EXPECT_FALSE(wrong.err.isEmpty());
}
