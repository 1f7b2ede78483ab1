#include "ui/GuiAlertSink.h"

#include "ui/CustomAlert.h"

#include <QThread>

namespace quillon::ui {

GuiAlertSink::GuiAlertSink(QWidget* parent, AlertPresenter presenter)
    : m_parent(parent), m_presenter(std::move(presenter))
{
    if (!m_presenter)
        m_presenter = [this](const app::AlertRequest& request) { return showCustomAlert(request, m_parent); };
}

int GuiAlertSink::ask(const app::AlertRequest& request)
{
    if (QThread::currentThread() == thread())
        return m_presenter(request);
    int answer = 0;
    QMetaObject::invokeMethod(
        this, [&] { answer = m_presenter(request); }, Qt::BlockingQueuedConnection);
    return answer;
}

} // namespace quillon::ui
