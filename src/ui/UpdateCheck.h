#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

#include <optional>

class QNetworkAccessManager;

namespace quillon::app {
class Settings;
}

namespace quillon::ui {

// What the update check tells the user.
struct UpdateAnswer {
    enum class Kind {
        Silent,     // an automatic check with nothing to say
        ErrorAlert, // the list could not be read
        UpToDate,   // the alert with "OK" and "View Release Notes"
        NewVersion, // the update window
    };
    Kind kind = Kind::Silent;
    QString title;
    QString message;
    QString newestVersion;
};

// Judges the version list (nothing when it could not be read or lacks the "Quillon 3" entry)
// against the running version. Major numbers are the first digit of each version, so versions
// are taken to have a one-digit major number; any other difference in the text is an update.
UpdateAnswer judgeUpdate(const std::optional<QVariantMap>& versionList, const QString& currentVersion, bool automatic);

// Where the version list is read from: the QUILLON_UPDATE_URL environment variable, else the
// "updateCheckAddress" setting, else the maker's address. `file://` addresses are read directly.
QString versionListAddress(const app::Settings& settings);

// The release-notes, download and user-guide pages.
QString releaseNotesAddress();
QString downloadAddress();
QString userGuideAddress();

// Reads the version list from an address without blocking the caller's thread: `finished`
// follows once, with the judged answer (file addresses answer at once, before start returns).
class UpdateCheck : public QObject {
    Q_OBJECT

public:
    explicit UpdateCheck(QString address, QObject* parent = nullptr);

    void start(bool automatic);

Q_SIGNALS:
    void finished(const quillon::ui::UpdateAnswer& answer);

private:
    void judge(const std::optional<QVariantMap>& list, bool automatic);

    QString m_address;
    QNetworkAccessManager* m_network = nullptr;
};

} // namespace quillon::ui
