#pragma once

#include "app/Alerts.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

namespace quillon::ui {

// Shows an alert and returns its answer; runs on the main thread.
using AlertPresenter = std::function<int(const app::AlertRequest&)>;

// The desktop application's alert sink. Alerts are shown on the thread the sink lives on (the
// main thread); a worker that asks is blocked until the user has answered there.
class GuiAlertSink : public QObject, public app::AlertSink {
    Q_OBJECT

public:
    // Without a presenter the alert panel is shown over `parent` (which may go away first).
    explicit GuiAlertSink(QWidget* parent = nullptr, AlertPresenter presenter = {});

    int ask(const app::AlertRequest& request) override;

private:
    QPointer<QWidget> m_parent;
    AlertPresenter m_presenter;
};

} // namespace quillon::ui
