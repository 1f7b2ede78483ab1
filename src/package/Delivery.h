#pragma once

#include "app/Result.h"
#include "app/Settings.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QThreadPool>

#include <mutex>

namespace quillon::app {
class AlertSink;
}

namespace quillon::host {
class ScriptRunner;
}

namespace quillon::package {

// The delivery settings.
inline const app::SettingKey kSelectedDestinationSetting{"selectedDestination", QString()};
inline const app::SettingKey kDeliveryAppNameSetting{"deliveryAppName", QString()};
inline const app::SettingKey kDestinationHotFolderSetting{"destinationHotFolder", QString()};

// The two delivery applications, and the bundle identifiers scripts address them by.
inline constexpr const char* kRelayonName = "Relayon";
inline constexpr const char* kRelayonMiniName = "Relayon Mini";
inline constexpr const char* kRelayonBundleId = "com.tornvale.relayon";
inline constexpr const char* kRelayonMiniBundleId = "com.tornvale.relayon-mini";

// A destination stored by a delivery application.
struct Destination {
    QString name;      // the destination file's name without ".dest"
    QString app;       // the application that stored it
    QString type;      // "FTP Server", "Local Disk", ...
    QString image;     // the icon of the type
    QString hotFolder; // Relayon Mini: the destination's hot folder when it exists; else ""
    QString fileName;
};

// A row of the destination pop-up: a disabled header naming an application, or a destination,
// which carries the application and hot folder that choosing it stores.
struct DestinationMenuItem {
    QString title;
    QString image;
    bool enabled = true;
    QString app;       // "" for a header
    QString hotFolder; // "" for a header
};

// Where the delivery applications keep their destination folders: "Tornvale" in the user's
// data folder ("~/Library/Application Support" on macOS, $XDG_DATA_HOME on Linux).
QString defaultDestinationsRoot();

// The icon name of a destination type; an unknown type shows "ftp".
QString imageForDestType(const QString& type);

// The package folders the deliver button sends: the folder of each packaged document, only the
// first in a unified package (all documents share one folder).
QStringList foldersToDeliver(const QStringList& pathsOfPackagedDocs, bool packageUnified);

// The status line while package folders are handed over, and once they are.
QString deliverySubmittingText();
QString deliveryQueuedText(const QString& appName);

// Hands finished package folders to the delivery application: Relayon queues them through a
// script, Relayon Mini takes them from its hot folder.
class RYDelivery {
public:
    // `scripts` may be null where there are no Apple events: Relayon cannot be reached then.
    // `destinationsRoot` holds one folder per application (tests give their own).
    RYDelivery(app::Settings& settings, app::AlertSink& alerts, host::ScriptRunner* scripts,
               QString destinationsRoot = defaultDestinationsRoot());
    // Waits for the hand-offs under way.
    ~RYDelivery();
    RYDelivery(const RYDelivery&) = delete;
    RYDelivery& operator=(const RYDelivery&) = delete;

    // The destinations `appName` has stored, in the order of their names; unreadable files are
    // skipped (and logged).
    QList<Destination> destinationsForApp(const QString& appName) const;
    // A header titled with seven spaces and the application's name, then one item per destination.
    QList<DestinationMenuItem> menuItemsForDestinations(const QList<Destination>& destinations,
                                                        const QString& appName) const;
    // The Relayon group when it has destinations; then, when Relayon Mini has destinations, a
    // Relayon Mini group made from Relayon's list, not its own, deliberately.
    QList<DestinationMenuItem> createMenuItemsForDestinations() const;
    // The row titled with the stored destination, or -1.
    int indexOfSelectedDestination(const QList<DestinationMenuItem>& items) const;
    // The sheet's OK: stores the chosen destination (title, application, hot folder), or forgets
    // the destination when the chosen row carries none.
    void chooseDestination(const DestinationMenuItem* item);

    // Sends one package folder; what is missing from the settings is logged and nothing is sent.
    // The copy into the hot folder failing is the one alert. The answer says whether the folder
    // was handed over.
    app::Status sendFolderAtPath(const QString& folder);
    // The same on a worker, one folder after another; returns at once.
    void deliverFolderAtPathAsync(const QString& folder);
    // Waits until every folder handed to deliverFolderAtPathAsync has been sent; answers the
    // failures among them.
    QList<app::Error> waitForDeliveries();

    // Copies a package folder into a hot folder under its own name, under a hidden name first so
    // that the taker never sees it half copied; a folder of that name already there is never
    // replaced.
    static app::Status copyToHotFolder(const QString& folder, const QString& hotFolder);

private:
    struct Choice {
        QString appName;
        QString destination;
        QString hotFolder;
    };
    Choice storedChoice() const;
    app::Status send(const Choice& choice, const QString& folder);

    app::Settings& m_settings;
    app::AlertSink& m_alerts;
    host::ScriptRunner* m_scripts;
    QString m_destinationsRoot;
    QThreadPool m_worker;
    std::mutex m_failuresMutex;
    QList<app::Error> m_failures;
};

} // namespace quillon::package
