#include "host/ScriptRunner.h"

#include "app/Log.h"

#include <QLocale>

namespace quillon::host {

QVariantMap ScriptRunner::runAppleScriptWithSourceString(const QString& source, const QString& path)
{
    app::logEntry("runAppleScriptWithSourceString");
    if (!source.isEmpty())
        return runSource(source);
    if (!path.isEmpty())
        return runFile(path);
    return noSourceOutcome();
}

QVariantMap scriptSuccessOutcome(const QVariant& result)
{
    return {{kScriptErrorKey, QVariantMap()}, {kScriptResultKey, result}};
}

QVariantMap scriptErrorOutcome(const QString& message, const QString& briefMessage, const QVariant& number)
{
    QVariantMap error{{kScriptErrorMessageKey, message}, {kScriptErrorBriefMessageKey, briefMessage}};
    if (!number.isNull())
        error.insert(kScriptErrorNumberKey, number);
    return {{kScriptErrorKey, error}};
}

QVariantMap noSourceOutcome()
{
    return scriptErrorOutcome(QStringLiteral("no source provided"), QStringLiteral("no source provided"));
}

QVariantMap scriptErrorDict(const QVariantMap& outcome)
{
    return outcome.value(kScriptErrorKey).toMap();
}

bool scriptSucceeded(const QVariantMap& outcome)
{
    return scriptErrorDict(outcome).isEmpty();
}

QString scriptBriefErrorMessage(const QVariantMap& outcome)
{
    return scriptErrorDict(outcome).value(kScriptErrorBriefMessageKey).toString();
}

QString descriptorStringValue(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Int:
    case QMetaType::LongLong:
        return QString::number(value.toLongLong());
    case QMetaType::Double:
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    default:
        return {};
    }
}

bool hasStringValue(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

QString scriptResultString(const QVariantMap& outcome)
{
    return scriptSucceeded(outcome) ? descriptorStringValue(outcome.value(kScriptResultKey)) : QString();
}

QStringList scriptResultStrings(const QVariantMap& outcome)
{
    if (!scriptSucceeded(outcome))
        return {};
    const QVariant result = outcome.value(kScriptResultKey);
    if (result.typeId() != QMetaType::QVariantList)
        return {descriptorStringValue(result)};
    QStringList strings;
    for (const QVariant& item : result.toList())
        strings << descriptorStringValue(item);
    return strings;
}

} // namespace quillon::host
