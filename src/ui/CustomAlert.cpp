#include "ui/CustomAlert.h"

#include "app/Log.h"
#include "ui/Icons.h"

#include <QApplication>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include <memory>

namespace quillon::ui {

namespace {

constexpr int kCornerRadius = 15;
constexpr int kButtonHeight = 30;
constexpr int kButtonPadding = 10;
constexpr int kButtonMinWidth = 96;
constexpr int kTextWidth = 380;
constexpr int kIconSize = 56;
// Beyond this the message scrolls, so a very long text never pushes the buttons off screen.
constexpr int kMaxMessageHeight = 420;

// Sizes are the panel's points, which are device-independent pixels here.
QFont systemFont(int points, bool bold = false)
{
    QFont font = QApplication::font();
    font.setPixelSize(points);
    font.setBold(bold);
    return font;
}

QLabel* textField(int points, bool bold)
{
    auto* label = new QLabel;
    label->setFont(systemFont(points, bold));
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setFixedWidth(kTextWidth);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

int textHeight(const QString& text, const QFont& font, int width)
{
    if (text.isEmpty())
        return 0;
    return QFontMetrics(font).boundingRect(QRect(0, 0, width, 10000), Qt::TextWordWrap, text).height();
}

} // namespace

CustomAlertDialog::CustomAlertDialog(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), m_icon(new QLabel), m_message(textField(13, true)),
      m_informative(textField(11, false)),
      m_suppression(new QCheckBox(QStringLiteral("Do not show this message again"))), m_buttonRow(new QWidget)
{
    app::logLine(QStringLiteral(">> init custom alert"));
    setAttribute(Qt::WA_TranslucentBackground);
    setModal(true);
    m_icon->setFixedSize(kIconSize, kIconSize);
    m_icon->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    setCritical(false);
    m_suppression->setFont(systemFont(13));
    m_suppression->setStyleSheet(QStringLiteral("QCheckBox::indicator { width: 18px; height: 18px; }"));
    m_suppression->hide();

    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(m_informative);
    scroll->setWidgetResizable(false);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setStyleSheet(QStringLiteral("QScrollArea, QScrollArea > QWidget > QWidget { background: transparent; }"));
    scroll->setObjectName(QStringLiteral("messageScroll"));

    auto* buttons = new QHBoxLayout(m_buttonRow);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(12);
    buttons->addWidget(m_suppression);
    buttons->addStretch(1);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(8);
    texts->addWidget(m_message);
    texts->addWidget(scroll);
    texts->addStretch(1);

    auto* top = new QHBoxLayout;
    top->setSpacing(18);
    top->addWidget(m_icon, 0, Qt::AlignTop);
    top->addLayout(texts, 1);

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(24, 22, 24, 20);
    outer->setSpacing(18);
    outer->addLayout(top);
    outer->addWidget(m_buttonRow);
}

void CustomAlertDialog::setMessageText(const QString& text)
{
    m_message->setText(text);
    m_message->setVisible(!text.isEmpty());
}

void CustomAlertDialog::setInformativeText(const QString& text)
{
    m_informative->setText(text);
    const int height = textHeight(text, m_informative->font(), kTextWidth);
    m_informative->setFixedHeight(height);
    auto* scroll = findChild<QScrollArea*>(QStringLiteral("messageScroll"));
    scroll->setFixedSize(kTextWidth +
                             (height > kMaxMessageHeight ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0),
                         std::min(height, kMaxMessageHeight));
    scroll->setVisible(!text.isEmpty());
}

void CustomAlertDialog::setCritical(bool critical)
{
    m_icon->setPixmap(namedIcon(critical ? QStringLiteral("warning") : QStringLiteral("quillon"))
                          .pixmap(kIconSize, kIconSize, QIcon::Normal));
}

QPushButton* CustomAlertDialog::addButtonWithTitle(const QString& title)
{
    auto* button = new QPushButton(title);
    button->setFont(systemFont(13));
    button->setFixedHeight(kButtonHeight);
    button->setAutoDefault(false);
    const int fitted = button->sizeHint().width();
    button->setFixedWidth(std::max(fitted + 2 * kButtonPadding, kButtonMinWidth));
    connect(button, &QPushButton::clicked, this, &CustomAlertDialog::buttonPressed);
    // The first button is the default, as in the system's alerts; it sits rightmost.
    auto* row = static_cast<QHBoxLayout*>(m_buttonRow->layout());
    row->insertWidget(2, button);
    if (m_buttons.isEmpty())
        button->setDefault(true);
    m_buttons.append(button);
    return button;
}

void CustomAlertDialog::setShowsSuppressionButton(bool shows)
{
    m_suppression->setVisible(shows);
}

CustomAlertDialog* CustomAlertDialog::forRequest(const app::AlertRequest& request, QWidget* parent)
{
    auto* dialog = new CustomAlertDialog(parent);
    dialog->setMessageText(request.title);
    dialog->setInformativeText(request.message);
    dialog->setCritical(request.critical);
    const QStringList titles = request.buttons.value_or(QStringList{QStringLiteral("OK")});
    for (const QString& title : titles.isEmpty() ? QStringList{QStringLiteral("OK")} : titles)
        dialog->addButtonWithTitle(title);
    return dialog;
}

void CustomAlertDialog::buttonPressed()
{
    const auto index = m_buttons.indexOf(qobject_cast<QPushButton*>(sender()));
    done(index < 0 ? 0 : app::kAlertFirstButton + int(index));
}

void CustomAlertDialog::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath outline;
    outline.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius, kCornerRadius);
    painter.fillPath(outline, palette().window());
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.drawPath(outline);
}

// The panel has no title bar, so it moves by its background.
void CustomAlertDialog::mousePressEvent(QMouseEvent* event)
{
    m_dragOffset = event->globalPosition().toPoint() - frameGeometry().topLeft();
}

void CustomAlertDialog::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton)
        move(event->globalPosition().toPoint() - m_dragOffset);
}

bool needsCustomAlert(const QString& messageText, const QString& informativeText)
{
    constexpr int kMeasureWidth = 145;
    const int height = textHeight(messageText, systemFont(13, true), kMeasureWidth) +
                       textHeight(informativeText, systemFont(11), kMeasureWidth);
    return height + 15 > 220;
}

namespace {

int showSystemAlert(const app::AlertRequest& request, QWidget* parent)
{
    QMessageBox box(request.critical ? QMessageBox::Critical : QMessageBox::Information, request.title, request.title,
                    QMessageBox::NoButton, parent);
    box.setInformativeText(request.message);
    QList<QAbstractButton*> buttons;
    const QStringList titles = request.buttons.value_or(QStringList{QStringLiteral("OK")});
    for (const QString& title : titles)
        buttons.append(box.addButton(title, buttons.isEmpty() ? QMessageBox::AcceptRole : QMessageBox::RejectRole));
    if (buttons.isEmpty()) // an empty list: the box's own default button
        buttons.append(box.addButton(QMessageBox::Ok));
    box.setDefaultButton(qobject_cast<QPushButton*>(buttons.first()));
    box.exec();
    const auto index = buttons.indexOf(box.clickedButton());
    return index < 0 ? 0 : app::kAlertFirstButton + int(index);
}

} // namespace

int showCustomAlert(const app::AlertRequest& request, QWidget* parent)
{
    if (!needsCustomAlert(request.title, request.message))
        return showSystemAlert(request, parent);
    std::unique_ptr<CustomAlertDialog> dialog(CustomAlertDialog::forRequest(request, parent));
    return dialog->exec();
}

} // namespace quillon::ui
