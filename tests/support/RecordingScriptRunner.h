#pragma once

#include "host/ScriptRunner.h"

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace quillon::host {

// A script runner that runs nothing: it records every script it is given and answers from a
// responder, then from a queue of outcomes, and otherwise with success and an empty string.
// For tests of the code that builds scripts and reads their outcomes.
class RecordingScriptRunner : public ScriptRunner {
public:
    struct Call {
        QString source; // empty for a script file
        QString path;   // empty for a source text
    };
    // Answers a source text, or declines with nothing.
    using Responder = std::function<std::optional<QVariantMap>(const QString& source)>;

    void pushOutcome(const QVariantMap& outcome);
    void pushResult(const QVariant& result) { pushOutcome(scriptSuccessOutcome(result)); }
    void pushError(const QString& briefMessage, const QVariant& number = {});
    void setResponder(Responder responder);

    std::vector<Call> calls() const;
    QStringList sources() const;
    QString lastSource() const;

protected:
    QVariantMap runSource(const QString& source) override;
    QVariantMap runFile(const QString& path) override;

private:
    QVariantMap answer(const Call& call);

    mutable std::mutex m_mutex;
    std::deque<QVariantMap> m_outcomes;
    Responder m_responder;
    std::vector<Call> m_calls;
};

} // namespace quillon::host
