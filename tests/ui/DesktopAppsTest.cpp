#include "ui/DesktopApps.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;

// "Open With" offers the applications of the file's type and its parent types, by the user's
// associations and the entries' own types, less removed and hidden ones, sorted by name; each
// starts with the files in place of its field codes.
TEST(DesktopApps, OffersApplicationsForTheFileTypeSortedAndLaunchesWithFieldCodes)
{
    QTemporaryDir config;
    QTemporaryDir data;
    const QDir applications(data.filePath("applications"));
    QDir().mkpath(applications.path());
    auto entry = [&applications](const QString& id, const QString& lines) {
        test::writeAll(applications.filePath(id), ("[Desktop Entry]\nType=Application\n" + lines).toUtf8());
    };
    entry("viewer.desktop", "Name=Zeta Viewer\nExec=zview %U\nMimeType=image/jpeg;\n");
    entry("editor.desktop", "Name=Alpha Editor\nExec=aedit --open %f\nMimeType=image/png;\n");
    entry("text.desktop", "Name=Notes\nExec=notes %F\nMimeType=text/plain;\n");
    entry("bytes.desktop", "Name=Mid Tool\nExec=midtool\nMimeType=application/octet-stream;\n");
    entry("hidden.desktop", "Name=Gone\nHidden=true\nExec=gone %f\nMimeType=image/jpeg;\n");
    entry("dropped.desktop", "Name=Dropped\nExec=dropped %f\nMimeType=image/jpeg;\n");
    test::writeAll(QDir(config.path()).filePath("mimeapps.list"),
                   "[Added Associations]\nimage/jpeg=editor.desktop;\n[Removed Associations]\n"
                   "image/jpeg=dropped.desktop;\n");
    const links::DefaultApplications desktop({config.path()}, {data.path()}, {});

    const QList<links::DesktopApplication> apps = desktop.applicationsForFile("/jobs/photo.jpg");
    QStringList names;
    for (const links::DesktopApplication& app : apps)
        names.append(app.name);
    EXPECT_EQ(names, (QStringList{"Alpha Editor", "Mid Tool", "Zeta Viewer"}));

    EXPECT_EQ(ui::launchCommand(apps.at(0), {"/a b.jpg", "/c.jpg"}), (QStringList{"aedit", "--open", "/a b.jpg"}));
    EXPECT_EQ(ui::launchCommand(apps.at(2), {"/a b.jpg"}), (QStringList{"zview", "file:///a%20b.jpg"}));
    EXPECT_EQ(ui::launchCommand(apps.at(1), {"/c.jpg"}), (QStringList{"midtool", "/c.jpg"}));
}
