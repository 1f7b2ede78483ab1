// Renders the main window after preflighting the bundled sample and a batch of real samples, to
// PNG files in the build folder, so what an operator first sees can be looked at.
#include "app/PropertyList.h"
#include "app/Settings.h"
#include "results/Presets.h"
#include "support/TestSupport.h"
#include "ui/AppController.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>

#include <iostream>

using namespace quillon;

namespace {

bool preflightAndGrab(ui::MainWindow& window, const QStringList& documents, int selectedRow, const QString& picture)
{
    QEventLoop loop;
    QObject::connect(&window, &ui::MainWindow::preflightFinished, &loop, &QEventLoop::quit);
    QTimer::singleShot(0, &window, [&window, documents] { window.openDocuments(documents); });
    QTimer::singleShot(180000, &loop, &QEventLoop::quit);
    loop.exec();
    window.linksView()->setCurrentIndex(window.linksView()->model()->index(selectedRow, 0));
    // The pane's preview is read on a worker; give it a moment to arrive.
    QEventLoop preview;
    QTimer::singleShot(1000, &preview, &QEventLoop::quit);
    preview.exec();
    const QString path = QDir(QStringLiteral(QUILLON_SCREENSHOT_DIR)).filePath(picture);
    const bool saved = window.grab().save(path);
    std::cout << (saved ? "wrote " : "could not write ") << path.toStdString() << "\n";
    return saved;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    QTemporaryDir folder;
    const QDir root(folder.path());
    root.mkpath(QStringLiteral("Presets"));
    QFile::copy(test::repoPath(QStringLiteral("resources/sample/Sample Print Checks.qnfp")),
                root.filePath(QStringLiteral("Presets/Sample Print Checks.qnfp")));
    (void)app::writePropertyListFile(results::defaultPreset(), root.filePath(QStringLiteral("Presets/[Default].qnfp")));
    const QString settingsFile = root.filePath(QStringLiteral("settings.ini"));
    {
        app::Settings settings(settingsFile);
        settings.setValue(QStringLiteral("selectedPreset"), QStringLiteral("Sample Print Checks"));
    }

    ui::MainWindowServices services;
    services.folders = preflight::PreflightFolders::inside(root.filePath(QStringLiteral("data")));
    services.settingsFile = settingsFile;
    services.presetsFolder = root.filePath(QStringLiteral("Presets"));
    // The whole application as it starts: the shell's menus and detail panes around the window.
    qputenv("QUILLON_SUPPORT_DIR", root.path().toUtf8());
    app::Settings settings(settingsFile);
    ui::AppController controller(settings, services);
    controller.applicationWillFinishLaunching();
    ui::MainWindow& window = *controller.mainWindow();
    window.setAlertPresenter([](const app::AlertRequest&) { return app::kAlertFirstButton; });
    window.resize(1440, 900);
    window.show();

    const QString bundled = test::copyBundledSample(root.filePath(QStringLiteral("sample")));
    bool saved = preflightAndGrab(window, {bundled}, 2, QStringLiteral("main-sample.png"));
    saved &= preflightAndGrab(window,
                              {test::samplePath(QStringLiteral("idml/tripple.idml")),
                               test::samplePath(QStringLiteral("idml/freshers.idml")),
                               test::samplePath(QStringLiteral("idml/manual_template_example_mixed_ink.idml"))},
                              0, QStringLiteral("main-batch.png"));
    return saved ? 0 : 1;
}
