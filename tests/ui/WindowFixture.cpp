#include "WindowFixture.h"

#include "app/PropertyList.h"
#include "results/Presets.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThread>

namespace quillon::test {

WindowFixture::WindowFixture()
{
    const QDir root(m_folder.path());
    root.mkpath(QStringLiteral("Presets"));
    QFile::copy(repoPath(QStringLiteral("resources/sample/Sample Print Checks.qnfp")),
                root.filePath(QStringLiteral("Presets/Sample Print Checks.qnfp")));
    (void)app::writePropertyListFile(results::defaultPreset(), root.filePath(QStringLiteral("Presets/[Default].qnfp")));
    ui::MainWindowServices services;
    services.folders = preflight::PreflightFolders::inside(root.filePath(QStringLiteral("data")));
    services.settingsFile = root.filePath(QStringLiteral("settings.ini"));
    services.presetsFolder = root.filePath(QStringLiteral("Presets"));
    m_window = std::make_unique<ui::MainWindow>(nullptr, services);
    m_window->setAlertPresenter([alerts = m_alerts, off = m_offMainThread](const app::AlertRequest& request) {
        *off += QThread::currentThread() != qApp->thread();
        return alerts->ask(request);
    });
    m_window->resize(1280, 800);
}

bool WindowFixture::preflight(const QStringList& paths)
{
    QSignalSpy finished(m_window.get(), &ui::MainWindow::preflightFinished);
    m_window->openDocuments(paths);
    return !finished.isEmpty() || finished.wait(120000);
}

} // namespace quillon::test
