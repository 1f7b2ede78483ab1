#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace quillon::app {

// Records are QVariantMaps whose keys are spelled once, as constants of the subsystem that owns
// them. These helpers work on lists of such records.

inline const QString kNameKey = QStringLiteral("name");

// The first record whose "name" equals `name`, or nothing.
std::optional<QVariantMap> objectForName(const QVariantList& records, const QString& name);

// The records whose value for `key` is (or is not) equal to `value`, in order.
QVariantList everyDictWhoseValueForKey(const QVariantList& records, const QString& key, const QVariant& value);
QVariantList everyDictWhoseValueForKeyIsNot(const QVariantList& records, const QString& key, const QVariant& value);

// Removes the first record that has a "name" equal to `name`; true when one was removed.
bool removeObjectForName(QVariantList& records, const QString& name);

// Stores the value, or `fallback` when the value is null.
void setObjectForKeyValueIfNil(QVariantMap& record, const QString& key, const QVariant& value,
                               const QVariant& fallback);

// Looks up a "."-separated key path, applying the first key twice: "a.b" reads the value at a,
// then a again inside it, then b. A missing step gives a null QVariant (logged).
QVariant valueForKeyAtPath(const QVariantMap& record, const QString& keyPath);

// Whether a record value holds a number (an integer of any width or a double); a flag is not one.
bool isNumberValue(const QVariant& value);

} // namespace quillon::app
