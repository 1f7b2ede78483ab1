#include "ui/SupportWindow.h"

#include "app/BuildInfo.h"
#include "app/Company.h"
#include "ui/Icons.h"

#include <QLabel>
#include <QVBoxLayout>

namespace quillon::ui {

QString versionAndBuild()
{
    return QStringLiteral("Version %1 (build %2)")
        .arg(QLatin1String(app::kQuillonVersion), QLatin1String(QUILLON_BUILD));
}

SupportWindow::SupportWindow(QWidget* parent) : QWidget(parent, Qt::Window)
{
    setWindowTitle(QStringLiteral("%1 Support").arg(QLatin1String(app::kApplicationName)));
    auto* icon = new QLabel;
    icon->setPixmap(namedIcon(QStringLiteral("quillon")).pixmap(64, 64));
    auto* name = new QLabel(QLatin1String(app::kApplicationName));
    QFont font = name->font();
    font.setBold(true);
    font.setPixelSize(18);
    name->setFont(font);
    auto* links = new QLabel(QStringLiteral("<a href=\"%1/support\">Support page</a><br><a href=\"mailto:%2\">%2</a>")
                                 .arg(QLatin1String(app::kCompanyWebAddress), QLatin1String(app::kSupportAddress)));
    links->setOpenExternalLinks(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    for (QWidget* widget : {static_cast<QWidget*>(icon), static_cast<QWidget*>(name),
                            static_cast<QWidget*>(new QLabel(versionAndBuild())), static_cast<QWidget*>(links)}) {
        widget->setProperty("alignment", int(Qt::AlignHCenter));
        layout->addWidget(widget, 0, Qt::AlignHCenter);
    }
}

} // namespace quillon::ui
