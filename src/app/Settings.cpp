#include "app/Settings.h"

#include "app/Company.h"

#include <QSettings>

namespace quillon::app {

Settings::Settings()
    : m_settings(std::make_unique<QSettings>(QLatin1String(kCompanyName), QLatin1String(kApplicationName)))
{
}

Settings::Settings(const QString& iniFilePath)
    : m_settings(std::make_unique<QSettings>(iniFilePath, QSettings::IniFormat))
{
}

Settings::~Settings() = default;
Settings::Settings(Settings&&) noexcept = default;
Settings& Settings::operator=(Settings&&) noexcept = default;

bool Settings::contains(const QString& key) const
{
    return m_settings->contains(key);
}

QVariant Settings::value(const QString& key, const QVariant& fallback) const
{
    return m_settings->value(key, fallback);
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
    m_settings->setValue(key, value);
}

void Settings::remove(const QString& key)
{
    m_settings->remove(key);
}

void Settings::sync()
{
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
