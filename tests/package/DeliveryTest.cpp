#include "package/Delivery.h"
#include "support/QtPrinters.h"
#include "support/RecordingScriptRunner.h"
#include "support/TestSupport.h"

#include "app/Alerts.h"
#include "app/PropertyList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::package;

namespace {

struct Rig {
    QTemporaryDir root;
    app::Settings settings{root.filePath(QStringLiteral("settings.ini"))};
    app::ScriptedAlertSink alerts;
    host::RecordingScriptRunner scripts;
    RYDelivery delivery{settings, alerts, &scripts, root.filePath(QStringLiteral("Destinations"))};

    void addDestination(const QString& app, const QString& name, const QVariantMap& values)
    {
        const QString folder = root.filePath(QStringLiteral("Destinations/%1/Destinations").arg(app));
        QDir().mkpath(folder);
        ASSERT_TRUE(app::writePropertyListFile(values, folder + u'/' + name + QStringLiteral(".dest")).ok());
    }
    void choose(const QString& app, const QString& destination, const QString& hotFolder)
    {
        const DestinationMenuItem item{destination, QString(), true, app, hotFolder};
        delivery.chooseDestination(&item);
    }
    // A package folder with a file, a subfolder and a link.
    QString package()
    {
        const QString folder = root.filePath(QStringLiteral("out/Job 12"));
        QDir().mkpath(folder + QStringLiteral("/Links"));
        test::writeAll(folder + QStringLiteral("/Job 12.idml"), "idml");
        test::writeAll(folder + QStringLiteral("/Links/a.tif"), "tif");
        QFile::link(QStringLiteral("a.tif"), folder + QStringLiteral("/Links/b.tif"));
        return folder;
    }
};

} // namespace

TEST(Delivery, MissingSettingsSendNothing)
{
    Rig rig;
    const QString folder = rig.package();
    EXPECT_FALSE(rig.delivery.sendFolderAtPath(folder).ok()); // no application
    rig.choose(QStringLiteral("Relayon Mini"), QStringLiteral("Print shop"), QString());
    EXPECT_FALSE(rig.delivery.sendFolderAtPath(folder).ok()); // no hot folder
    rig.settings.setValue(QStringLiteral("deliveryAppName"), QStringLiteral("Relayon"));
    rig.delivery.chooseDestination(nullptr);
    EXPECT_FALSE(rig.settings.contains(QStringLiteral("selectedDestination")));
    EXPECT_FALSE(rig.delivery.sendFolderAtPath(folder).ok()); // no destination
    EXPECT_TRUE(rig.scripts.calls().empty());
    EXPECT_TRUE(rig.alerts.requests().empty());
}

TEST(Delivery, HotFolderCopyLandsUnderItsOwnNameAndNeverReplacesOne)
{
    Rig rig;
    const QString folder = rig.package();
    const QString hot = rig.root.filePath(QStringLiteral("hot"));
    QDir().mkpath(hot);
    rig.choose(QStringLiteral("Relayon Mini"), QStringLiteral("Print shop"), hot);

    rig.delivery.deliverFolderAtPathAsync(folder);
    EXPECT_TRUE(rig.delivery.waitForDeliveries().isEmpty());
    EXPECT_EQ(test::readAll(hot + QStringLiteral("/Job 12/Job 12.idml")), QByteArrayLiteral("idml"));
    EXPECT_EQ(test::readAll(hot + QStringLiteral("/Job 12/Links/a.tif")), QByteArrayLiteral("tif"));
    EXPECT_EQ(QFileInfo(hot + QStringLiteral("/Job 12/Links/b.tif")).symLinkTarget(),
              hot + QStringLiteral("/Job 12/Links/a.tif"));
    EXPECT_EQ(QDir(hot).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("Job 12")});
    EXPECT_TRUE(rig.scripts.lastSource().contains(QLatin1String(kRelayonMiniBundleId)));

    // Sent again: the folder there stays as it was, and the user is told.
    test::writeAll(hot + QStringLiteral("/Job 12/Job 12.idml"), "taken by the delivery");
    EXPECT_FALSE(rig.delivery.sendFolderAtPath(folder).ok());
    EXPECT_EQ(test::readAll(hot + QStringLiteral("/Job 12/Job 12.idml")), QByteArrayLiteral("taken by the delivery"));
    ASSERT_EQ(rig.alerts.requests().size(), 1u);
    EXPECT_EQ(rig.alerts.requests()[0].title,
              QStringLiteral("Package folder could not be copied to Relayon Mini hot folder"));
    EXPECT_TRUE(rig.alerts.requests()[0].message.startsWith(QLatin1String("Error: ")));
    EXPECT_EQ(QDir(hot).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

TEST(Delivery, MenuGroupsTheMiniDestinationsFromRelayonsList)
{
    Rig rig;
    const QString hot = rig.root.filePath(QStringLiteral("hot"));
    QDir().mkpath(hot);
    rig.addDestination(QStringLiteral("Relayon Mini"), QStringLiteral("Hot"), {{QStringLiteral("KVHotfolder"), hot}});
    // No Relayon destinations: the Mini group holds only its header.
    auto items = rig.delivery.createMenuItemsForDestinations();
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0].title, QStringLiteral("       Relayon Mini"));
    EXPECT_FALSE(items[0].enabled);
    EXPECT_EQ(rig.delivery.destinationsForApp(QStringLiteral("Relayon Mini")).value(0).hotFolder, hot);

    rig.addDestination(QStringLiteral("Relayon"), QStringLiteral("Bucket"),
                       {{QStringLiteral("KVDestType"), QStringLiteral("Amazon S3")}});
    rig.addDestination(QStringLiteral("Relayon"), QStringLiteral("Disk"), {{QStringLiteral("type"), 1}});
    rig.addDestination(QStringLiteral("Relayon"), QStringLiteral("Ftp"), {{QStringLiteral("type"), 0}});
    items = rig.delivery.createMenuItemsForDestinations();
    QStringList rows;
    for (const DestinationMenuItem& item : items)
        rows << QStringLiteral("%1|%2|%3").arg(item.title, item.image, item.app);
    EXPECT_EQ(rows, (QStringList{"       Relayon||", "Bucket|bucket|Relayon", "Disk|disk|Relayon", "Ftp|ftp|Relayon",
                                 "       Relayon Mini||", "Bucket|bucket|Relayon Mini", "Disk|disk|Relayon Mini",
                                 "Ftp|ftp|Relayon Mini"}));

    rig.delivery.chooseDestination(&items[6]);
    EXPECT_EQ(rig.delivery.indexOfSelectedDestination(items), 2); // the first row of that title
    EXPECT_EQ(rig.settings.value(QStringLiteral("deliveryAppName")).toString(), QStringLiteral("Relayon Mini"));
    EXPECT_EQ(imageForDestType(QStringLiteral("Secure WebDAV Server")), QStringLiteral("http-sec"));
    EXPECT_EQ(imageForDestType(QStringLiteral("Carrier pigeon")), QStringLiteral("ftp"));
}

TEST(Delivery, RelayonQueuesTheFolderWithEscapedParameters)
{
    Rig rig;
    rig.choose(QStringLiteral("Relayon"), QStringLiteral("Shop \"A\" \\ B"), QString());
    EXPECT_TRUE(rig.delivery.sendFolderAtPath(QStringLiteral("/Pkg/Job \"1\"")).ok());
    EXPECT_EQ(
        rig.scripts.lastSource(),
        QStringLiteral("tell application id \"%1\" to call method \"addItemToQueue:destination:\" with parameters "
                       "{\"/Pkg/Job \\\"1\\\"\", \"Shop \\\"A\\\" \\\\ B\"}")
            .arg(QLatin1String(kRelayonBundleId)));
    rig.scripts.pushError(QStringLiteral("Relayon is not running."));
    EXPECT_FALSE(rig.delivery.sendFolderAtPath(QStringLiteral("/Pkg/Job")).ok());
    EXPECT_TRUE(rig.alerts.requests().empty()); // only logged

    EXPECT_EQ(foldersToDeliver({"/P/A/a.indd", "/P/B/b.indd"}, false), (QStringList{"/P/A", "/P/B"}));
    EXPECT_EQ(foldersToDeliver({"/P/U/a.indd", "/P/U/b.indd"}, true), QStringList{"/P/U"});
}
