#include "ui/UpdateCheckWindow.h"

#include "app/Company.h"
#include "ui/Icons.h"
#include "ui/UpdateCheck.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace quillon::ui {

UpdateCheckWindow::UpdateCheckWindow(const QString& title, const QString& message, QWidget* parent)
    : QWidget(parent, Qt::Window)
{
    setWindowTitle(QStringLiteral("Software Update"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* icon = new QLabel;
    icon->setPixmap(namedIcon(QStringLiteral("quillon")).pixmap(64, 64));
    auto* heading = new QLabel(title);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    auto* text = new QLabel(message);
    text->setWordWrap(true);
    auto* links = new QLabel(QStringLiteral("<a href=\"%1\">Release Notes</a> &nbsp; <a href=\"%2\">Download</a> "
                                            "&nbsp; <a href=\"mailto:%3\">%3</a>")
                                 .arg(releaseNotesAddress(), downloadAddress(), QLatin1String(app::kSupportAddress)));
    links->setOpenExternalLinks(true);
    auto* texts = new QVBoxLayout;
    texts->addWidget(heading);
    texts->addWidget(text);
    texts->addWidget(links);
    texts->addStretch(1);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(icon, 0, Qt::AlignTop);
    layout->addLayout(texts, 1);
    setMinimumWidth(440);
}

} // namespace quillon::ui
