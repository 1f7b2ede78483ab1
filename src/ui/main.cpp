#include "ui/MainWindow.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillon"));
    quillon::ui::MainWindow window;
    window.show();
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() > 1)
        window.openDocument(arguments.at(1));
    return QApplication::exec();
}
