#pragma once

#include "app/Alerts.h"

#include <QCheckBox>
#include <QDialog>
#include <QList>
#include <QPushButton>

class QLabel;

namespace quillon::ui {

// The alert panel for texts too long for the narrow system alert: a wide, movable panel with
// rounded corners, the title bold at 13 points, the message at 11 points, buttons of height 30
// at least 96 wide, and an optional "Do not show this message again" box. Each button answers
// 1000 plus its index; closing the panel without a button answers 0.
class CustomAlertDialog : public QDialog {
    Q_OBJECT

public:
    explicit CustomAlertDialog(QWidget* parent = nullptr);

    void setMessageText(const QString& text);
    void setInformativeText(const QString& text);
    void setCritical(bool critical);
    QPushButton* addButtonWithTitle(const QString& title);
    const QList<QPushButton*>& buttons() const { return m_buttons; }

    void setShowsSuppressionButton(bool shows);
    QCheckBox* suppressionButton() const { return m_suppression; }

    // The panel for a request: its title, message, buttons (one "OK" when none are given).
    static CustomAlertDialog* forRequest(const app::AlertRequest& request, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void buttonPressed();

    QLabel* m_icon;
    QLabel* m_message;
    QLabel* m_informative;
    QCheckBox* m_suppression;
    QWidget* m_buttonRow;
    QList<QPushButton*> m_buttons;
    QPoint m_dragOffset;
};

// Whether a request needs the custom panel: both texts measured 145 points wide, their heights
// plus 15 above 220 points.
bool needsCustomAlert(const QString& messageText, const QString& informativeText);

// Shows the alert modally on the main thread and returns the answer (1000 for the first button):
// the custom panel when the texts need it, the system's message box otherwise. Usable as the
// main window's alert presenter.
int showCustomAlert(const app::AlertRequest& request, QWidget* parent);

} // namespace quillon::ui
