#include "ui/MainWindow.h"

#include <QTreeView>

namespace quillon::ui {

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Quillon"));
    setMinimumSize(700, 700);
}

void MainWindow::openDocument(const QString& path)
{
    (void)path;
}

void MainWindow::setDetailPane(QWidget* pane)
{
    (void)pane;
}

QList<QTreeView*> MainWindow::resultViews() const
{
    return findChildren<QTreeView*>();
}

} // namespace quillon::ui
