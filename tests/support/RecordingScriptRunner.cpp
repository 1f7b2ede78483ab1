#include "support/RecordingScriptRunner.h"

namespace quillon::host {

void RecordingScriptRunner::pushOutcome(const QVariantMap& outcome)
{
    std::lock_guard lock(m_mutex);
    m_outcomes.push_back(outcome);
}

void RecordingScriptRunner::pushError(const QString& briefMessage, const QVariant& number)
{
    pushOutcome(scriptErrorOutcome(briefMessage, briefMessage, number));
}

void RecordingScriptRunner::setResponder(Responder responder)
{
    std::lock_guard lock(m_mutex);
    m_responder = std::move(responder);
}

std::vector<RecordingScriptRunner::Call> RecordingScriptRunner::calls() const
{
    std::lock_guard lock(m_mutex);
    return m_calls;
}

QStringList RecordingScriptRunner::sources() const
{
    QStringList out;
    for (const Call& call : calls())
        out << call.source;
    return out;
}

QString RecordingScriptRunner::lastSource() const
{
    const QStringList all = sources();
    return all.isEmpty() ? QString() : all.last();
}

QVariantMap RecordingScriptRunner::runSource(const QString& source)
{
    return answer({source, {}});
}

QVariantMap RecordingScriptRunner::runFile(const QString& path)
{
    return answer({{}, path});
}

QVariantMap RecordingScriptRunner::answer(const Call& call)
{
    std::lock_guard lock(m_mutex);
    m_calls.push_back(call);
    if (m_responder) {
        if (std::optional<QVariantMap> outcome = m_responder(call.source))
            return *outcome;
    }
    if (m_outcomes.empty())
        return scriptSuccessOutcome(QString());
    QVariantMap outcome = m_outcomes.front();
    m_outcomes.pop_front();
    return outcome;
}

} // namespace quillon::host
