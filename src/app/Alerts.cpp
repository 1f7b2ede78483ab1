#include "app/Alerts.h"

#include "app/Log.h"

#include <QMetaProperty>
#include <QObject>

namespace quillon::app {

namespace {
const QString kDefaultAnswerProperty = QStringLiteral("lastAlertButtonReturn");
}

int runAlert(AlertSink& sink, const QString& title, const QString& message, const std::optional<QStringList>& buttons,
             bool asCritical)
{
    logLine(QStringLiteral("> runAlert: %1").arg(title));
    AlertRequest request{title, message, buttons.value_or(QStringList{QStringLiteral("OK")}), asCritical};
    return sink.ask(request);
}

QVariantMap alertRequestDict(const QString& title, const QString& message, const std::optional<QStringList>& buttons,
                             bool asCritical, const QString& propertyName)
{
    return QVariantMap{
        {QStringLiteral("alert"), title},
        {QStringLiteral("message"), message},
        {QStringLiteral("buttons"), buttons.value_or(QStringList{})},
        {QStringLiteral("asCritical"), asCritical},
        {QStringLiteral("propertyNameForAlertReturn"), propertyName.isEmpty() ? kDefaultAnswerProperty : propertyName},
    };
}

int showAlertWithDict(AlertSink& sink, QObject* receiver, const QVariantMap& dict)
{
    const int answer = runAlert(
        sink, dict.value(QStringLiteral("alert")).toString(), dict.value(QStringLiteral("message")).toString(),
        dict.value(QStringLiteral("buttons")).toStringList(), dict.value(QStringLiteral("asCritical")).toBool());
    logLine(QStringLiteral("lastAlertReturn: %1").arg(answer));
    const QString propertyName = dict.value(QStringLiteral("propertyNameForAlertReturn")).toString();
    const QByteArray name = propertyName.toUtf8();
    const bool hasProperty = receiver && receiver->metaObject()->indexOfProperty(name.constData()) >= 0;
    if (hasProperty)
        receiver->setProperty(name.constData(), answer);
    else
        logLine(QStringLiteral("not self respondsToSelector %1").arg(propertyName));
    return answer;
}

int runAlertOnMainThread(AlertSink& sink, QObject* receiver, const QString& title, const QString& message,
                         const std::optional<QStringList>& buttons, bool asCritical,
                         const QString& propertyNameForAlertReturn)
{
    return showAlertWithDict(sink, receiver,
                             alertRequestDict(title, message, buttons, asCritical, propertyNameForAlertReturn));
}

int TNRunAlertPanel(AlertSink& sink, const QString& title, const QString& message, const QString& button1,
                    const QString& button2, const QString& button3, bool critical)
{
    QStringList buttons;
    for (const QString& b : {button1, button2, button3})
        if (!b.isEmpty())
            buttons << b;
    return runAlert(sink, title, message, buttons.isEmpty() ? std::nullopt : std::optional(buttons), critical);
}

ScriptedAlertSink::ScriptedAlertSink(std::vector<int> answers) : m_answers(answers.begin(), answers.end()) {}

int ScriptedAlertSink::ask(const AlertRequest& request)
{
    std::lock_guard lock(m_mutex);
    m_requests.push_back(request);
    if (m_answers.empty())
        return kAlertFirstButton;
    const int answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

void ScriptedAlertSink::pushAnswer(int answer)
{
    std::lock_guard lock(m_mutex);
    m_answers.push_back(answer);
}

std::vector<AlertRequest> ScriptedAlertSink::requests() const
{
    std::lock_guard lock(m_mutex);
    return m_requests;
}

} // namespace quillon::app
