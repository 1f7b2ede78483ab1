#include "ui/UpdateCheck.h"

#include "app/BuildInfo.h"
#include "app/PropertyList.h"

#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace quillon;
using Kind = ui::UpdateAnswer::Kind;

namespace {

QVariantMap versionList(const QString& version, const QString& free = QStringLiteral("NO"))
{
    return {{QStringLiteral("Quillon 3"),
             QVariantMap{{QStringLiteral("version"), version}, {QStringLiteral("free"), free}}}};
}

// The answer of a check against the list written to a local file, as the application reads it.
ui::UpdateAnswer checkFile(const QString& path, bool automatic)
{
    ui::UpdateCheck check(QUrl::fromLocalFile(path).toString());
    ui::UpdateAnswer answer{Kind::ErrorAlert, QStringLiteral("none"), {}, {}};
    QObject::connect(&check, &ui::UpdateCheck::finished, [&](const ui::UpdateAnswer& given) { answer = given; });
    check.start(automatic);
    return answer;
}

} // namespace

// The three messages, chosen by the first digit of each version and the entry's "free".
TEST(UpdateCheck, MessagesFollowTheMajorDigitAndFree)
{
    struct Case {
        QString newest, free, current, message;
    } const cases[] = {
        {"4.0", "YES", "3.1",
         "A new major version, Quillon 4.0, is available as a free upgrade for registered users of version 4.x. Your "
         "current version is 3.1."},
        {"4.0", "NO", "3.1",
         "A new major version, Quillon 4.0, is available as a paid upgrade for licensed users of previous versions. "
         "Your current version is 3.1."},
        {"3.2", "YES", "3.1",
         "A new version, Quillon 3.2, is available as a free update for licensed users of version 3.x. Your current "
         "version is 3.1."},
        // Any other text is an update, an older one too; a two-digit major reads as its first digit.
        {"3.0", "NO", "3.1",
         "A new version, Quillon 3.0, is available as a free update for licensed users of version 3.x. Your current "
         "version is 3.1."},
        {"10.0", "YES", "9.5",
         "A new version, Quillon 10.0, is available as a free update for licensed users of version 1.x. Your current "
         "version is 9.5."},
    };
    for (const Case& c : cases) {
        const ui::UpdateAnswer answer = ui::judgeUpdate(versionList(c.newest, c.free), c.current, true);
        EXPECT_EQ(answer.kind, Kind::NewVersion) << c.newest.toStdString();
        EXPECT_EQ(answer.message, c.message);
        EXPECT_EQ(answer.title, QStringLiteral("New version of Quillon is available."));
    }
}

// Read from local files: current gives the up-to-date alert (silent when automatic); an
// unreadable list or one without the entry gives the "Error" alert (silent when automatic).
TEST(UpdateCheck, LocalFilesGiveTheAlertsOrSilence)
{
    QTemporaryDir folder;
    const QString current = folder.filePath(QStringLiteral("current.plist"));
    const QString other = folder.filePath(QStringLiteral("other.plist"));
    ASSERT_TRUE(app::writePropertyListFile(versionList(QLatin1String(app::kQuillonVersion)), current));
    ASSERT_TRUE(app::writePropertyListFile(QVariantMap{{QStringLiteral("Quillon 2"), versionList("2.0")}}, other));

    const ui::UpdateAnswer upToDate = checkFile(current, false);
    EXPECT_EQ(upToDate.kind, Kind::UpToDate);
    EXPECT_EQ(upToDate.title, QStringLiteral("Your version is up to date"));
    EXPECT_EQ(upToDate.message, QStringLiteral("Your version of Quillon is up to date."));
    EXPECT_EQ(checkFile(current, true).kind, Kind::Silent);

    for (const QString& path : {folder.filePath(QStringLiteral("absent.plist")), other}) {
        const ui::UpdateAnswer error = checkFile(path, false);
        EXPECT_EQ(error.kind, Kind::ErrorAlert);
        EXPECT_EQ(error.title, QStringLiteral("Error"));
        EXPECT_TRUE(error.message.startsWith(
            QStringLiteral("Could not check for updates. This can happen if Internet connection is not available.\n\n"
                           "With any questions, contact ")));
        EXPECT_EQ(checkFile(path, true).kind, Kind::Silent);
    }
}
