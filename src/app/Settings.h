#pragma once

#include "app/Result.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>

class QSettings;

namespace quillon::app {

// A user default: its key and the value used when the user never set it. Each subsystem
// declares the keys it reads next to its code.
struct SettingKey {
    const char* name;
    QVariant defaultValue;
};

// The user defaults: QSettings("Tornvale", "Quillon") in the program, a file of its own in tests.
// Each instance owns its QSettings, so make one per thread.
//
// A settings file that is not a regular file (a FIFO would hang the read, a device fill memory) or
// is larger than kMaxPropertyListBytes is not read: the settings then read as their defaults,
// keep nothing, and `error` says why.
class Settings {
public:
    Settings();                                    // the user's defaults
    explicit Settings(const QString& iniFilePath); // a private file, for tests and the command line
    ~Settings();
    Settings(Settings&&) noexcept;
    Settings& operator=(Settings&&) noexcept;

    bool contains(const QString& key) const;
    QVariant value(const QString& key, const QVariant& fallback = {}) const;
    QVariant value(const SettingKey& key) const { return value(QLatin1String(key.name), key.defaultValue); }
    QString string(const SettingKey& key) const { return value(key).toString(); }
    int integer(const SettingKey& key) const { return value(key).toInt(); }
    bool boolean(const SettingKey& key) const;

    // With `nilValue` false the plain boolean lookup (absent is false); with true, true when the
    // key is absent and its boolean value otherwise.
    bool boolForKey(const QString& key, bool nilValue) const;

    void setValue(const QString& key, const QVariant& value);
    void remove(const QString& key);
    void sync();

    // Why the settings file could not be used; nothing when it could.
    const std::optional<Error>& error() const { return m_error; }

private:
    void openChecked(const QString& path, const std::function<std::unique_ptr<QSettings>()>& open);

    std::unique_ptr<QSettings> m_settings; // null when the file could not be used
    std::optional<Error> m_error;
};

// Reads stored booleans the way the defaults hold them: true/false, "YES"/"NO", "1"/"0", numbers.
bool variantToBool(const QVariant& value);

} // namespace quillon::app
