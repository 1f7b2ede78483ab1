#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <deque>
#include <mutex>
#include <optional>
#include <vector>

class QObject;

namespace quillon::app {

// One question for the user. `buttons` unset means the system's single "OK"; an empty list
// leaves the choice of the default button to whoever shows the alert.
struct AlertRequest {
    QString title;
    QString message;
    std::optional<QStringList> buttons;
    bool critical = false;
};

// Answers are 1000 for the first button, 1001 for the second, and so on.
inline constexpr int kAlertFirstButton = 1000;
inline constexpr int kAlertSecondButton = 1001;
inline constexpr int kAlertThirdButton = 1002;

// Shows alerts and returns the answer. May be called from any thread: an implementation that
// needs the main thread (the desktop application) blocks the caller until the user has answered;
// the command line answers from its flags; tests script the answers.
class AlertSink {
public:
    virtual ~AlertSink() = default;
    virtual int ask(const AlertRequest& request) = 0;
};

// The title, the message ("" when none) and the button titles, or one "OK" when none are given.
// Logs "> runAlert: <title>".
int runAlert(AlertSink& sink, const QString& title, const QString& message, const std::optional<QStringList>& buttons,
             bool asCritical);

// The alert request dictionary read by showAlertWithDict: "alert", "message", "buttons" (an
// empty array when none), "asCritical", "propertyNameForAlertReturn".
QVariantMap alertRequestDict(const QString& title, const QString& message, const std::optional<QStringList>& buttons,
                             bool asCritical, const QString& propertyName = {});

// Runs the alert of the dictionary and stores the answer as an integer in the receiver's Qt
// property of the dictionary's name. A receiver without that property loses the answer (logged
// as "not self respondsToSelector <name>"). Returns the answer.
int showAlertWithDict(AlertSink& sink, QObject* receiver, const QVariantMap& dict);

// The worker's form: builds the dictionary and shows it, the answer landing in the named
// property of `receiver` ("lastAlertButtonReturn" by default). Blocks until answered.
int runAlertOnMainThread(AlertSink& sink, QObject* receiver, const QString& title, const QString& message,
                         const std::optional<QStringList>& buttons, bool asCritical,
                         const QString& propertyNameForAlertReturn = {});

// Up to three button titles; empty ones are dropped and none left means the single "OK".
int TNRunAlertPanel(AlertSink& sink, const QString& title, const QString& message, const QString& button1,
                    const QString& button2, const QString& button3, bool critical);

// Answers from a script of answers and records every request; when the script runs out it
// answers with the first button. Used by tests and by the command line's non-interactive mode.
class ScriptedAlertSink : public AlertSink {
public:
    explicit ScriptedAlertSink(std::vector<int> answers = {});
    int ask(const AlertRequest& request) override;

    void pushAnswer(int answer);
    std::vector<AlertRequest> requests() const;

private:
    mutable std::mutex m_mutex;
    std::deque<int> m_answers;
    std::vector<AlertRequest> m_requests;
};

} // namespace quillon::app
