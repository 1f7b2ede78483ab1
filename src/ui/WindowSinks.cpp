#include "ui/WindowSinks.h"

#include "ui/CustomAlert.h"

#include <QCoreApplication>
#include <QLabel>
#include <QProgressBar>
#include <QThread>

#include <chrono>
#include <future>
#include <memory>

namespace quillon::ui {

namespace {

bool onThreadOf(const QObject* context)
{
    return QThread::currentThread() == context->thread();
}

} // namespace

MainThreadAlertSink::MainThreadAlertSink(QWidget* window)
    : m_context(window),
      m_presenter([window](const app::AlertRequest& request) { return showCustomAlert(request, window); })
{
}

int MainThreadAlertSink::ask(const app::AlertRequest& request)
{
    if (m_shutDown)
        return app::kAlertFirstButton;
    if (onThreadOf(m_context))
        return m_presenter(request);
    auto answer = std::make_shared<std::promise<int>>();
    std::future<int> answered = answer->get_future();
    QMetaObject::invokeMethod(
        m_context, [this, request, answer] { answer->set_value(m_presenter(request)); }, Qt::QueuedConnection);
    // Waits in short steps so that a window that closes meanwhile lets the worker go.
    while (answered.wait_for(std::chrono::milliseconds(50)) != std::future_status::ready)
        if (m_shutDown)
            return app::kAlertFirstButton;
    try {
        return answered.get();
    } catch (const std::future_error&) {
        return app::kAlertFirstButton; // the question was dropped with the window
    }
}

WindowProgressSink::WindowProgressSink(QProgressBar* bar, QLabel* status) : m_bar(bar), m_status(status) {}

void WindowProgressSink::post(std::function<void()> work)
{
    if (!m_bar)
        return;
    if (onThreadOf(m_bar))
        work();
    else
        QMetaObject::invokeMethod(m_bar, std::move(work), Qt::QueuedConnection);
}

void WindowProgressSink::showValue()
{
    m_bar->setValue(int(m_value));
    m_bar->show();
    m_status->show();
}

void WindowProgressSink::stage(const QString& name, const QString& text)
{
    (void)name;
    post([this, text] { m_status->setText(text); });
}

void WindowProgressSink::setMaximum(double maximum)
{
    post([this, maximum] {
        m_bar->setRange(0, int(maximum));
        m_value = 0;
        showValue();
    });
}

void WindowProgressSink::setValue(double value)
{
    post([this, value] {
        m_value = value;
        showValue();
    });
}

void WindowProgressSink::increment(double by)
{
    post([this, by] {
        m_value += by;
        showValue();
    });
}

void WindowProgressSink::status(const QString& text)
{
    post([this, text] { m_status->setText(text); });
}

void WindowProgressSink::finished()
{
    post([this] {
        m_bar->hide();
        m_status->hide();
    });
}

WindowResultsSink::WindowResultsSink(QObject* context, PresetSource presets, Handlers handlers)
    : PreflightResults(std::move(presets)), m_context(context), m_handlers(std::move(handlers))
{
}

void WindowResultsSink::onContextThread(std::function<void()> work)
{
    if (onThreadOf(m_context))
        work();
    else
        QMetaObject::invokeMethod(m_context, std::move(work), Qt::QueuedConnection);
}

ShownResults WindowResultsSink::snapshot(const inspection::QNDocInfo& docInfo) const
{
    return {linkItems(), fontItems(), colorItems(), summary().items(), status(), docInfo};
}

void WindowResultsSink::clearAllResults()
{
    PreflightResults::clearAllResults();
    onContextThread([this] { m_handlers.cleared(); });
}

void WindowResultsSink::showDocument(const QString& name, const QString& path)
{
    onContextThread([this, name, path] { m_handlers.document(name, path); });
}

void WindowResultsSink::populateSummaryAndDocInfo(inspection::QNDocInfo& docInfo)
{
    PreflightResults::populateSummaryAndDocInfo(docInfo);
    onContextThread([this, shown = snapshot(docInfo)] { m_handlers.shown(shown); });
}

} // namespace quillon::ui
