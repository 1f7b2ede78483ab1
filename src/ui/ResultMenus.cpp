#include "ui/ResultMenus.h"

#include "app/Log.h"
#include "host/InDesignHost.h"
#include "links/LinkRecordKeys.h"
#include "results/FontResults.h"
#include "results/LinkResults.h"
#include "ui/DesktopApps.h"
#include "ui/ResultLists.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QIcon>
#include <QMenu>
#include <QPointer>
#include <QThreadPool>
#include <QTreeView>
#include <QUrl>

namespace quillon::ui {

namespace {

const QString kGoToLinkTitle = QStringLiteral("Go to Link in InDesign");

QStringList pathsOf(const QVariantList& rows)
{
    QStringList paths;
    for (const QVariant& row : rows)
        paths.append(row.toMap().value(links::kLinkPathKey).toString());
    return paths;
}

// Fills the "Open With" menu once the applications are found on a worker; a menu closed
// meanwhile is left alone.
void fetchApplications(QMenu* openWith, const QStringList& files)
{
    QThreadPool::globalInstance()->start([menu = QPointer<QMenu>(openWith), files] {
        const QList<links::DesktopApplication> applications =
            links::DefaultApplications::session().applicationsForFile(files.first());
        QMetaObject::invokeMethod(
            qApp,
            [menu, files, applications] {
                if (!menu)
                    return;
                menu->clear();
                for (const links::DesktopApplication& application : applications) {
                    const QIcon icon = QFileInfo(application.iconName).isAbsolute()
                                           ? QIcon(application.iconName)
                                           : QIcon::fromTheme(application.iconName);
                    QObject::connect(menu->addAction(icon, application.name), &QAction::triggered,
                                     [application, files] { openWithApplication(application, files); });
                }
                if (applications.isEmpty())
                    menu->addAction(QStringLiteral("Selected items cannot be open"))->setEnabled(false);
            },
            Qt::QueuedConnection);
    });
}

void showLinksMenu(QTreeView& view, LinksModel& model, const ResultMenuServices& services, QPoint point)
{
    const results::OutlineSelection selection = outlineSelection(view, model, point);
    const QVariantList files = results::QNLinksOutline::itemsForAction(selection, model.rows(), QString());
    auto* menu = new QMenu(&view);
    menu->setAttribute(Qt::WA_DeleteOnClose);

    QAction* reveal = menu->addAction(platformRevealTitle(QStringLiteral("Reveal in Finder...")));
    reveal->setEnabled(!files.isEmpty());
    QObject::connect(reveal, &QAction::triggered, [paths = pathsOf(files)] { revealInFileManager(paths); });

    QMenu* openWith = menu->addMenu(QStringLiteral("Open With"));
    openWith->addAction(results::QNLinksOutline::openWithPlaceholder(files))->setEnabled(false);
    if (!files.isEmpty())
        fetchApplications(openWith, pathsOf(files));

    const QVariantList targets =
        results::QNLinksOutline::itemsForAction(selection, model.rows(), QStringLiteral("goToLink"));
    QAction* goToLink = menu->addAction(services.offline ? kGoToLinkTitle + QStringLiteral(" (needs InDesign on macOS)")
                                                         : kGoToLinkTitle);
    goToLink->setEnabled(!services.offline && !targets.isEmpty());
    QObject::connect(goToLink, &QAction::triggered, [&services, targets] {
        const auto target = results::QNLinksOutline::goToLinkTarget(targets);
        if (!target) {
            QApplication::beep();
            return;
        }
        if (const app::Status shown = services.host.showLinkID(target->linkId, target->docName); !shown)
            app::logFailure(QStringLiteral("go to link: %1").arg(shown.error().message));
    });

    menu->addSeparator();
    const QModelIndex clicked = view.indexAt(point).siblingAtColumn(0);
    QAction* rename = menu->addAction(QStringLiteral("Rename..."));
    rename->setEnabled(clicked.isValid() && (model.flags(clicked) & Qt::ItemIsEditable));
    QObject::connect(rename, &QAction::triggered, &view, [&view, clicked] {
        view.setCurrentIndex(clicked);
        view.edit(clicked);
    });
    menu->popup(view.viewport()->mapToGlobal(point));
}

void showFontsMenu(QTreeView& view, FontsModel& model, QPoint point)
{
    const QVariantList rows = results::QNFontsOutlineController::itemsForAction(outlineSelection(view, model, point));
    const auto item = results::QNFontsOutlineController::revealMenuItem(rows);
    auto* menu = new QMenu(&view);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* reveal = menu->addAction(platformRevealTitle(item.title));
    reveal->setEnabled(item.enabled);
    QObject::connect(reveal, &QAction::triggered, [rows] {
        const QStringList paths = results::QNFontsOutlineController::pathsToReveal(rows);
        if (paths.isEmpty())
            QApplication::beep();
        else
            revealInFileManager(paths);
    });
    menu->popup(view.viewport()->mapToGlobal(point));
}

} // namespace

results::OutlineSelection outlineSelection(const QTreeView& view, const ResultModel& model, QPoint clickPoint)
{
    results::OutlineSelection selection;
    const QModelIndex clicked = clickPoint.isNull() ? QModelIndex() : view.indexAt(clickPoint).siblingAtColumn(0);
    const QItemSelectionModel* selected = view.selectionModel();
    qsizetype row = 0;
    for (QModelIndex index = model.index(0, 0); index.isValid(); index = view.indexBelow(index), ++row) {
        selection.rows.append(model.record(index));
        if (selected && selected->isRowSelected(index.row(), index.parent()))
            selection.selected.append(row);
        if (index == clicked)
            selection.clickedRow = row;
    }
    return selection;
}

void revealInFileManager(const QStringList& paths)
{
    if (paths.isEmpty()) {
        QApplication::beep();
        return;
    }
    QStringList uris;
    for (const QString& path : paths)
        uris.append(QUrl::fromLocalFile(path).toString());
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << uris << QString();
    const QString folder = QFileInfo(paths.first()).absolutePath();
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, 3000), qApp);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [watcher, folder] {
        if (watcher->isError())
            QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
        watcher->deleteLater();
    });
}

QString platformRevealTitle(QString title)
{
#ifndef Q_OS_MACOS
    title.replace(QLatin1String("Finder"), QLatin1String("File Manager"));
#endif
    return title;
}

void installResultMenus(QTreeView& linksView, LinksModel& links, QTreeView& fontsView, FontsModel& fonts,
                        const ResultMenuServices& services)
{
    QObject::connect(
        &linksView, &QWidget::customContextMenuRequested, &linksView,
        [&linksView, &links, services](QPoint point) { showLinksMenu(linksView, links, services, point); });
    QObject::connect(&fontsView, &QWidget::customContextMenuRequested, &fontsView,
                     [&fontsView, &fonts](QPoint point) { showFontsMenu(fontsView, fonts, point); });
}

} // namespace quillon::ui
