#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

namespace quillon::host {

// The outcome of every script run: "error" always (an empty dictionary when the script ran) and,
// on success only, "result". Success is judged by the count of "error", never by "result".
inline const QString kScriptErrorKey = QStringLiteral("error");
inline const QString kScriptResultKey = QStringLiteral("result");
// Keys of the "error" dictionary.
inline const QString kScriptErrorMessageKey = QStringLiteral("NSAppleScriptErrorMessage");
inline const QString kScriptErrorBriefMessageKey = QStringLiteral("NSAppleScriptErrorBriefMessage");
inline const QString kScriptErrorNumberKey = QStringLiteral("NSAppleScriptErrorNumber");
inline const QString kScriptErrorAppNameKey = QStringLiteral("NSAppleScriptErrorAppName");

// Runs script source texts (or compiled script files) synchronously on the calling thread.
// "result" holds the script's value: a string, a number, a boolean, a list (QVariantList) or a
// record (QVariantMap); a value with no plain form (an object reference, a date) is its source
// text; a script that returns nothing gives an empty string.
class ScriptRunner {
public:
    virtual ~ScriptRunner() = default;

    // A non-empty source wins over the path; with neither, the "no source provided" outcome.
    // Sets no time-out of its own: long scripts carry their own "with timeout" block.
    QVariantMap runAppleScriptWithSourceString(const QString& source, const QString& path);
    QVariantMap runAppleScriptWithSourceString(const QString& source)
    {
        return runAppleScriptWithSourceString(source, {});
    }

protected:
    virtual QVariantMap runSource(const QString& source) = 0;
    virtual QVariantMap runFile(const QString& path) = 0;
};

QVariantMap scriptSuccessOutcome(const QVariant& result);
// An error outcome; `number` is left out when null.
QVariantMap scriptErrorOutcome(const QString& message, const QString& briefMessage, const QVariant& number = {});
QVariantMap noSourceOutcome();

QVariantMap scriptErrorDict(const QVariantMap& outcome);
bool scriptSucceeded(const QVariantMap& outcome);
QString scriptBriefErrorMessage(const QVariantMap& outcome);

// A value's text as a descriptor's string value gives it: strings as they are, numbers in their
// shortest form, booleans "true"/"false", anything else "".
QString descriptorStringValue(const QVariant& value);
// Whether the value has a text form (a string, a number or a boolean).
bool hasStringValue(const QVariant& value);
// The result's text, or "" on failure.
QString scriptResultString(const QVariantMap& outcome);
// The string values of the result list's items in order (a single value counts as a list of one).
QStringList scriptResultStrings(const QVariantMap& outcome);

} // namespace quillon::host
