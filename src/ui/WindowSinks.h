#pragma once

#include "app/Alerts.h"
#include "app/Progress.h"
#include "reports/PreflightResults.h"

#include <QPointer>

#include <atomic>
#include <functional>

class QLabel;
class QWidget;
class QProgressBar;

namespace quillon::ui {

// The desktop application's alerts, asked from any thread and shown on the thread of `window`
// (the main thread) in the application's own alert dialog. A worker waits for the answer; the
// main thread is answered at once.
class MainThreadAlertSink : public app::AlertSink {
public:
    // Shows one alert and returns its answer (1000 for the first button, ...).
    using Presenter = std::function<int(const app::AlertRequest& request)>;

    explicit MainThreadAlertSink(QWidget* window);
    // Main thread only, before any preflight.
    void setPresenter(Presenter presenter) { m_presenter = std::move(presenter); }
    int ask(const app::AlertRequest& request) override;
    // The window is closing: a waiting worker, and every later question, gets the first button.
    void shutDown() { m_shutDown = true; }

private:
    QWidget* m_context;
    Presenter m_presenter;
    std::atomic<bool> m_shutDown{false};
};

// Progress from the preflight's worker, queued to the bar and the status line without waiting.
class WindowProgressSink : public app::ProgressSink {
public:
    WindowProgressSink(QProgressBar* bar, QLabel* status);
    void stage(const QString& name, const QString& text) override;
    void setMaximum(double maximum) override;
    void setValue(double value) override;
    void increment(double by) override;
    void status(const QString& text) override;
    void finished() override;

private:
    void post(std::function<void()> work);
    void showValue();

    QPointer<QProgressBar> m_bar;
    QPointer<QLabel> m_status;
    double m_value = 0; // main thread only
};

// What the window shows of one preflight, handed from the worker to the main thread in one go.
struct ShownResults {
    QVariantList links;
    QVariantList fonts;
    QVariantList colors;
    QList<results::QNSummaryItem> summary;
    results::PreflightStatus status;
    inspection::QNDocInfo docInfo;
};

// The window's results: the lists are judged where the driver calls (the worker), and what they
// show is handed to the main thread once the summary is loaded, so the worker never waits for
// the window and the window never judges ten thousand links itself.
class WindowResultsSink : public reports::PreflightResults {
public:
    struct Handlers {
        std::function<void()> cleared;                                          // the lists were emptied
        std::function<void(const QString& name, const QString& path)> document; // a preflight began
        std::function<void(const ShownResults& results)> shown;                 // results to show
    };

    WindowResultsSink(QObject* context, PresetSource presets, Handlers handlers);

    // What the lists hold now (main thread, no preflight running).
    ShownResults snapshot(const inspection::QNDocInfo& docInfo) const;

    void clearAllResults() override;
    void showDocument(const QString& name, const QString& path) override;
    void populateSummaryAndDocInfo(inspection::QNDocInfo& docInfo) override;

private:
    void onContextThread(std::function<void()> work);

    QObject* m_context;
    Handlers m_handlers;
};

} // namespace quillon::ui
