#pragma once

#include "app/Alerts.h"
#include "ui/MainWindow.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace quillon::test {

// A main window over private folders, presets and settings, with the offline host; its alerts
// are recorded and answered from a script (the first button when the script runs out).
class WindowFixture {
public:
    WindowFixture();
    ui::MainWindow& window() { return *m_window; }
    const QTemporaryDir& folder() const { return m_folder; }
    // Preflights the documents (one, or a batch) and waits until the window says it is done.
    bool preflight(const QStringList& paths);
    std::vector<app::AlertRequest> alerts() const { return m_alerts->requests(); }
    void answerNext(int answer) { m_alerts->pushAnswer(answer); }
    // Alerts that reached the presenter on another thread than the main one.
    int alertsOffMainThread() const { return *m_offMainThread; }

private:
    QTemporaryDir m_folder;
    std::shared_ptr<app::ScriptedAlertSink> m_alerts = std::make_shared<app::ScriptedAlertSink>();
    std::shared_ptr<int> m_offMainThread = std::make_shared<int>(0);
    std::unique_ptr<ui::MainWindow> m_window;
};

} // namespace quillon::test
