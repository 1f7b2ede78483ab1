#include "app/Company.h"
#include "app/Settings.h"
#include "ui/AppController.h"
#include "ui/Icons.h"
#include "ui/MainWindow.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QLatin1String(quillon::app::kCompanyName));
    QApplication::setApplicationName(QLatin1String(quillon::app::kApplicationName));
    QApplication::setDesktopFileName(QStringLiteral("quillon"));
    QApplication::setWindowIcon(quillon::ui::namedIcon(QStringLiteral("quillon")));

    quillon::app::Settings settings;
    quillon::ui::AppController controller(settings);
    controller.applicationWillFinishLaunching();
    QObject::connect(&application, &QApplication::aboutToQuit, &controller,
                     [&controller] { controller.applicationWillTerminate(); });
    controller.applicationDidFinishLaunching();
    // Documents given on the command line (or by the desktop's "Open With") are preflighted.
    if (const QStringList documents = QApplication::arguments().mid(1); !documents.isEmpty())
        controller.mainWindow()->openDocuments(documents);
    return QApplication::exec();
}
