#include "app/Settings.h"

#include "app/Company.h"
#include "app/Log.h"
#include "app/RegularFile.h"

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace quillon::app {

namespace {

// Where QSettings keeps the user's defaults; on macOS they live in the system's preferences store,
// which is not read as a file here.
QString userSettingsFile()
{
#ifdef Q_OS_DARWIN
    return {};
#else
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u'/' +
           QLatin1String(kCompanyName) + u'/' + QLatin1String(kApplicationName) + QStringLiteral(".conf");
#endif
}

} // namespace

Settings::Settings()
{
    openChecked(userSettingsFile(), [] {
        return std::make_unique<QSettings>(QLatin1String(kCompanyName), QLatin1String(kApplicationName));
    });
}

Settings::Settings(const QString& iniFilePath)
{
    openChecked(iniFilePath, [&] { return std::make_unique<QSettings>(iniFilePath, QSettings::IniFormat); });
}

void Settings::openChecked(const QString& path, const std::function<std::unique_ptr<QSettings>()>& open)
{
    if (!path.isEmpty() && QFileInfo::exists(path)) {
        Result<ReadableFile> file = openRegularFile(path);
        if (file && file->size() > kMaxPropertyListBytes)
            m_error = makeError(QStringLiteral("is too large for a settings file (more than %1 MiB)")
                                    .arg(kMaxPropertyListBytes / (1024 * 1024)),
                                path);
        else if (!file)
            m_error = file.error();
        if (m_error) {
            logFailure(QStringLiteral("use the settings: %1").arg(m_error->text()));
            return;
        }
    }
    m_settings = open();
}

Settings::~Settings() = default;
Settings::Settings(Settings&&) noexcept = default;
Settings& Settings::operator=(Settings&&) noexcept = default;

bool Settings::contains(const QString& key) const
{
    return m_settings && m_settings->contains(key);
}

QVariant Settings::value(const QString& key, const QVariant& fallback) const
{
    return m_settings ? m_settings->value(key, fallback) : fallback;
}

bool Settings::boolean(const SettingKey& key) const
{
    return variantToBool(value(key));
}

bool Settings::boolForKey(const QString& key, bool nilValue) const
{
    if (!contains(key))
        return nilValue;
    return variantToBool(value(key));
}

void Settings::setValue(const QString& key, const QVariant& value)
{
    if (m_settings)
        m_settings->setValue(key, value);
}

void Settings::remove(const QString& key)
{
    if (m_settings)
        m_settings->remove(key);
}

void Settings::sync()
{
    if (m_settings)
        m_settings->sync();
}

bool variantToBool(const QVariant& value)
{
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString().trimmed();
        if (text.compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0 ||
            text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            return true;
        bool isNumber = false;
        const double number = text.toDouble(&isNumber);
        return isNumber && number != 0.0;
    }
    return value.toBool();
}

} // namespace quillon::app
