#include "ui/DesktopApps.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;

// Applications are offered by their entries' types, the type's parents, the desktop's cache and
// the user's associations; removed ones and hidden entries are not; the list is sorted by name.
TEST(DesktopApps, OffersApplicationsForTheFileTypeSortedAndLaunchesWithFieldCodes)
{
    QTemporaryDir user;
    QTemporaryDir system;
    auto entry = [](const QTemporaryDir& folder, const QString& id, const QString& lines) {
        test::writeAll(QDir(folder.path()).filePath(id), ("[Desktop Entry]\nType=Application\n" + lines).toUtf8());
    };
    entry(system, "viewer.desktop", "Name=Zeta Viewer\nExec=zview %U\nMimeType=image/jpeg;\n");
    entry(system, "editor.desktop", "Name=Alpha Editor\nExec=aedit --open %f\nMimeType=image/png;\n");
    entry(system, "text.desktop", "Name=Notes\nExec=notes %F\nMimeType=text/plain;\n");
    entry(system, "cached.desktop", "Name=Mid Tool\nExec=midtool\n");
    entry(system, "hidden.desktop", "Name=Gone\nHidden=true\nExec=gone %f\nMimeType=image/jpeg;\n");
    entry(system, "dropped.desktop", "Name=Dropped\nExec=dropped %f\nMimeType=image/jpeg;\n");
    test::writeAll(QDir(system.path()).filePath("mimeinfo.cache"), "[MIME Cache]\nimage/jpeg=cached.desktop;\n");
    test::writeAll(QDir(user.path()).filePath("mimeapps.list"),
                   "[Added Associations]\nimage/jpeg=editor.desktop;\n[Removed Associations]\n"
                   "image/jpeg=dropped.desktop;\n");

    const QList<ui::DesktopApplication> apps = ui::applicationsForFile("/jobs/photo.jpg", {user.path(), system.path()});
    QStringList names;
    for (const ui::DesktopApplication& app : apps)
        names.append(app.name);
    EXPECT_EQ(names, (QStringList{"Alpha Editor", "Mid Tool", "Zeta Viewer"}));
    EXPECT_TRUE(ui::applicationsForFile("/jobs/song.xyzunknown", {user.path(), system.path()}).isEmpty());

    EXPECT_EQ(ui::launchCommand(apps.at(0), {"/a b.jpg", "/c.jpg"}), (QStringList{"aedit", "--open", "/a b.jpg"}));
    EXPECT_EQ(ui::launchCommand(apps.at(2), {"/a b.jpg"}), (QStringList{"zview", "file:///a%20b.jpg"}));
    EXPECT_EQ(ui::launchCommand(apps.at(1), {"/c.jpg"}), (QStringList{"midtool", "/c.jpg"}));
}
