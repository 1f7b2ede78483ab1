#include "support/QtPrinters.h"

#include "links/DefaultApplication.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon::links;

namespace {

void desktopFile(const QString& folder, const QString& id, const QString& name, const QString& mimeTypes,
                 bool hidden = false)
{
    QDir().mkpath(folder);
    QString text = QStringLiteral("[Desktop Entry]\nType=Application\nName=%1\nName[de]=Anders\nMimeType=%2\n")
                       .arg(name, mimeTypes);
    if (hidden)
        text += QStringLiteral("Hidden=true\n");
    text += QStringLiteral("[Desktop Action new]\nName=Not this one\n");
    quillon::test::writeAll(folder + u'/' + id, text.toUtf8());
}

} // namespace

TEST(DefaultApplication, DefaultsThenAddedThenDeclaredApplications)
{
    QTemporaryDir root;
    const QString config = root.filePath(QStringLiteral("config"));
    const QString userData = root.filePath(QStringLiteral("user"));
    const QString systemData = root.filePath(QStringLiteral("system"));
    const QString apps = systemData + QStringLiteral("/applications");
    desktopFile(apps, QStringLiteral("viewer.desktop"), QStringLiteral("Image Viewer"),
                QStringLiteral("image/jpeg;image/png;"));
    desktopFile(apps, QStringLiteral("editor.desktop"), QStringLiteral("Image Editor"),
                QStringLiteral("image/jpeg;image/tiff;"));
    desktopFile(apps + QStringLiteral("/kde"), QStringLiteral("paint.desktop"), QStringLiteral("Paint"),
                QStringLiteral("image/gif;"));
    desktopFile(userData + QStringLiteral("/applications"), QStringLiteral("editor.desktop"), QStringLiteral("Gone"),
                QStringLiteral("image/jpeg;"), true);
    desktopFile(apps, QStringLiteral("texts.desktop"), QStringLiteral("Text Editor"), QStringLiteral("text/plain;"));
    QDir().mkpath(config);
    quillon::test::writeAll(config + QStringLiteral("/mimeapps.list"),
                            "[Default Applications]\nimage/png=missing.desktop;viewer.desktop;\n"
                            "[Added Associations]\nimage/gif=kde-paint.desktop;\n"
                            "[Removed Associations]\nimage/tiff=editor.desktop;\n");
    quillon::test::writeAll(config + QStringLiteral("/mate-mimeapps.list"),
                            "[Default Applications]\nimage/gif=viewer.desktop\n");

    const DefaultApplications table({config}, {userData, systemData}, {QStringLiteral("mate")});
    // The first installed default wins; the desktop's own list comes first.
    EXPECT_EQ(table.defaultAppForMimeType(QStringLiteral("image/png")), QStringLiteral("Image Viewer"));
    EXPECT_EQ(table.defaultAppForMimeType(QStringLiteral("image/gif")), QStringLiteral("Image Viewer"));
    // A hidden desktop file of the user hides the system's one of the same id.
    EXPECT_EQ(table.defaultAppForMimeType(QStringLiteral("image/jpeg")), QStringLiteral("Image Viewer"));
    // A removed association is not offered.
    EXPECT_EQ(table.defaultAppForMimeType(QStringLiteral("image/tiff")), QString());
    // A type without an application of its own falls back to the types it derives from.
    EXPECT_EQ(table.defaultAppForMimeType(QStringLiteral("text/x-csrc")), QStringLiteral("Text Editor"));

    const QString picture = root.filePath(QStringLiteral("a.png"));
    quillon::test::writeAll(picture, "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(table.defaultAppForFile(picture), QStringLiteral("Image Viewer"));
    const QString unknown = root.filePath(QStringLiteral("a.qqq"));
    quillon::test::writeAll(unknown, QByteArray(64, '\0'));
    EXPECT_EQ(table.defaultAppForFile(unknown), QStringLiteral("?"));
}
