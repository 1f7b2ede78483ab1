#include "ui/UpdateCheck.h"

#include "app/BuildInfo.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/PropertyList.h"
#include "app/Settings.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

namespace quillon::ui {

namespace {

const QString kEntryName = QStringLiteral("Quillon 3");
constexpr int kTimeoutMs = 15000;
// A version list is a few hundred bytes; a larger answer is not one.
constexpr qint64 kMaxListBytes = 1 << 20;

int majorNumber(const QString& version)
{
    return version.left(1).toInt();
}

std::optional<QVariantMap> entryOf(const app::Result<QVariant>& list)
{
    if (!list)
        return std::nullopt;
    return list->toMap();
}

} // namespace

UpdateAnswer judgeUpdate(const std::optional<QVariantMap>& versionList, const QString& currentVersion, bool automatic)
{
    using Kind = UpdateAnswer::Kind;
    const QString appName = QLatin1String(app::kApplicationName);
    const QVariantMap entry = versionList ? versionList->value(kEntryName).toMap() : QVariantMap{};
    const QString newest = entry.value(QStringLiteral("version")).toString();
    if (newest.isEmpty()) {
        if (automatic)
            return {};
        return {Kind::ErrorAlert,
                QStringLiteral("Error"),
                app::withSupportContact(QStringLiteral(
                    "Could not check for updates. This can happen if Internet connection is not available.")),
                {}};
    }
    app::logLine(QStringLiteral("newVersion: %1").arg(newest));
    if (newest == currentVersion) {
        if (automatic)
            return {};
        return {Kind::UpToDate, QStringLiteral("Your version is up to date"),
                QStringLiteral("Your version of %1 is up to date.").arg(appName), newest};
    }
    const QString series = QStringLiteral("%1.x").arg(newest.left(1));
    const bool free = entry.value(QStringLiteral("free")).toString() == QLatin1String("YES");
    QString message;
    if (majorNumber(newest) > majorNumber(currentVersion) && free)
        message = QStringLiteral("A new major version, %1 %2, is available as a free upgrade for registered users of "
                                 "version %3. Your current version is %4.")
                      .arg(appName, newest, series, currentVersion);
    else if (majorNumber(newest) > majorNumber(currentVersion))
        message = QStringLiteral("A new major version, %1 %2, is available as a paid upgrade for licensed users of "
                                 "previous versions. Your current version is %3.")
                      .arg(appName, newest, currentVersion);
    else
        message = QStringLiteral("A new version, %1 %2, is available as a free update for licensed users of version "
                                 "%3. Your current version is %4.")
                      .arg(appName, newest, series, currentVersion);
    app::logLine(QStringLiteral("msg: %1").arg(message));
    return {Kind::NewVersion, QStringLiteral("New version of %1 is available.").arg(appName), message, newest};
}

QString versionListAddress(const app::Settings& settings)
{
    const QString fromEnvironment = qEnvironmentVariable("QUILLON_UPDATE_URL");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return settings
        .value(QStringLiteral("updateCheckAddress"),
               QStringLiteral("%1/versions/quillon.plist").arg(QLatin1String(app::kCompanyWebAddress)))
        .toString();
}

QString releaseNotesAddress()
{
    return QStringLiteral("%1/quillon/release-notes").arg(QLatin1String(app::kCompanyWebAddress));
}

QString downloadAddress()
{
    return QStringLiteral("%1/quillon/download").arg(QLatin1String(app::kCompanyWebAddress));
}

QString userGuideAddress()
{
    return QStringLiteral("%1/quillon/guide").arg(QLatin1String(app::kCompanyWebAddress));
}

UpdateCheck::UpdateCheck(QString address, QObject* parent) : QObject(parent), m_address(std::move(address)) {}

void UpdateCheck::start(bool automatic)
{
    app::logUserAction("menuUpdate:");
    const QUrl url(m_address);
    if (url.isLocalFile() || url.scheme().isEmpty()) {
        const QString path = url.isLocalFile() ? url.toLocalFile() : m_address;
        judge(entryOf(app::readPropertyListFile(path, kMaxListBytes)), automatic);
        return;
    }
    if (!m_network)
        m_network = new QNetworkAccessManager(this);
    QNetworkRequest request(url);
    request.setTransferTimeout(kTimeoutMs);
    QNetworkReply* reply = m_network->get(request);
    connect(reply, &QNetworkReply::finished, this, [this, reply, automatic] {
        reply->deleteLater();
        const QByteArray bytes = reply->error() == QNetworkReply::NoError ? reply->read(kMaxListBytes) : QByteArray{};
        judge(bytes.isEmpty() ? std::nullopt : entryOf(app::parsePropertyList(bytes, m_address)), automatic);
    });
}

void UpdateCheck::judge(const std::optional<QVariantMap>& list, bool automatic)
{
    if (!list)
        app::logFailure(QStringLiteral("read the version list at %1").arg(m_address));
    Q_EMIT finished(judgeUpdate(list, QLatin1String(app::kQuillonVersion), automatic));
}

} // namespace quillon::ui
