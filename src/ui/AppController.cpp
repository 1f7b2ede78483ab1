#include "ui/AppController.h"

#include "app/AppPaths.h"
#include "app/Log.h"
#include "app/Settings.h"
#include "links/LinkRecordKeys.h"
#include "package/PackageSettings.h"
#include "reportpdf/PdfReport.h"
#include "results/PresetSettings.h"
#include "results/Presets.h"
#include "ui/AppControllerKeys.h"
#include "ui/InformationPane.h"
#include "ui/LegendWindow.h"
#include "ui/MainWindow.h"
#include "ui/MetadataPane.h"
#include "ui/PreferencesWindow.h"
#include "ui/SupportWindow.h"
#include "ui/UpdateCheck.h"
#include "ui/UpdateCheckWindow.h"

#include <QActionGroup>
#include <QDataStream>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QScrollArea>
#include <QTabWidget>
#include <QUrl>

namespace quillon::ui {

AppController::AppController(app::Settings& settings, MainWindowServices services, QObject* parent)
    : QObject(parent), m_settings(settings), m_services(std::move(services)), m_pageLayout(pageLayoutFromData({}))
{
}

AppController::~AppController() = default;

QStringList AppController::makeSupportFolders()
{
    const QString appDir = app::applicationSupportFolder();
    QStringList made;
    for (const QString& folder : {QFileInfo(appDir).absolutePath(), appDir, results::presetsFolderPath()}) {
        if (QFileInfo(folder).isDir())
            continue;
        if (QDir().mkpath(folder))
            made.append(folder);
        else
            app::logFailure(QStringLiteral("create folder %1").arg(folder));
    }
    return made;
}

void AppController::setTableTextSize(const QList<QTreeView*>& views, int rowSize)
{
    const int rowHeight = rowSize == 1 ? 12 : 16;
    const int textSize = rowSize == 1 ? 9 : 11;
    for (QTreeView* view : views) {
        QFont font = view->font();
        font.setPixelSize(textSize);
        view->setFont(font);
        view->header()->setFont(font);
        view->setStyleSheet(QStringLiteral("QTreeView::item { height: %1px; padding: 0px; }").arg(rowHeight));
        view->setIconSize(QSize(rowHeight - 2, rowHeight - 2));
    }
}

void AppController::applicationWillFinishLaunching()
{
    app::logLine(QStringLiteral("~> applicationWillFinishLaunching"));
    makeSupportFolders();
    if (m_settings.contains(QLatin1String(kPrintPageSetupSetting.name)))
        m_pageLayout = pageLayoutFromData(m_settings.value(kPrintPageSetupSetting).toByteArray());
    if (m_settings.boolean(kDebuggingIsEnabledSetting))
        app::setDebugLogging(true);

    // Presets are loaded before the window and its lists start, which judge by them.
    m_presets = std::make_unique<results::QNPresetsTable>();
    if (const app::Status loaded = m_presets->loadStartupSettings(m_settings); !loaded)
        app::logError(loaded.error().message);

    m_window = std::make_unique<MainWindow>(nullptr, m_services);
    m_metadataPane = new MetadataPane;
    m_informationPane = new InformationPane;
    auto* details = new QTabWidget(m_window.get()); // owned by the window until it places it
    // A short window scrolls the facts rather than cutting off the path.
    auto* informationScroll = new QScrollArea;
    informationScroll->setWidget(m_informationPane);
    informationScroll->setWidgetResizable(true);
    informationScroll->setFrameShape(QFrame::NoFrame);
    details->addTab(informationScroll, QStringLiteral("Info"));
    details->addTab(m_metadataPane, QStringLiteral("Metadata"));
    m_window->setDetailPane(details);
    connect(m_window.get(), &MainWindow::linkSelectionChanged, m_informationPane, &InformationPane::setInfoForFile);
    connect(m_window.get(), &MainWindow::linkSelectionChanged, m_metadataPane, [this](const QVariantMap& record) {
        m_metadataPane->setMetadataForFile(record.value(links::kLinkPathKey).toString(),
                                           record.value(links::kLinkMetadataKey).toList());
    });
    buildFileMenu();
    buildHelpMenu();
    setTableTextSize(m_window->resultViews(), m_settings.integer(kRowSizeSetting));
    m_window->restoreGeometry(m_settings.value(kMainWindowGeometrySetting).toByteArray());
    m_window->restoreState(m_settings.value(kMainWindowStateSetting).toByteArray());
}

void AppController::applicationDidFinishLaunching()
{
    app::logLine(QStringLiteral("packSaveInCurrentInDesignVersion: %1")
                     .arg(m_settings.boolForKey(QStringLiteral("packSaveInCurrentInDesignVersion"), true)));
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    if (m_settings.boolean(kCheckForUpdatesAtLaunchSetting))
        menuUpdate(true);
}

void AppController::applicationWillTerminate()
{
    app::logLine(QStringLiteral("~> applicationWillTerminate"));
    m_settings.setValue(QLatin1String(kPrintPageSetupSetting.name), pageLayoutData(m_pageLayout));
    // The window's presets pop-up tells its row through this property when it has one.
    const QVariant presetRow = m_window ? m_window->property("presetIndexSelected") : QVariant();
    if (presetRow.isValid())
        m_settings.setValue(QLatin1String(results::kPresetIndexSelectedOnQuitSetting.name), presetRow.toInt());
    m_settings.setValue(QLatin1String(package::kPdfPresetNamesSetting.name),
                        package::pdfPresetNamesOrDefault(package::loadPackageSettings(m_settings).pdfPresetNames));
    if (m_window) {
        m_settings.setValue(QLatin1String(kMainWindowGeometrySetting.name), m_window->saveGeometry());
        m_settings.setValue(QLatin1String(kMainWindowStateSetting.name), m_window->saveState());
    }
    m_settings.sync();
}

void AppController::buildFileMenu()
{
    QMenu* file = m_window->menuBar()->addMenu(QStringLiteral("File"));
    file->addAction(QStringLiteral("Save Report as PDF..."), this, &AppController::saveReportAsPDF);
    file->addAction(QStringLiteral("Print Report..."), QKeySequence::Print, this, &AppController::printReport);
    file->addAction(QStringLiteral("Page Setup..."), this, &AppController::runPageLayout);
    file->addSeparator();
    file->addAction(QStringLiteral("Quit"), QKeySequence::Quit, m_window.get(), &QWidget::close);
}

void AppController::saveReportAsPDF()
{
    const reportpdf::ReportInputs inputs = m_window->shownReportInputs();
    if (!reportpdf::documentReadyForReport(inputs.docPath, alerts()))
        return;
    const QString folder = QFileDialog::getExistingDirectory(m_window.get(), QStringLiteral("Save Report as PDF"),
                                                             QFileInfo(inputs.docPath).absolutePath());
    if (!folder.isEmpty())
        m_window->saveReportAsPDF(folder);
}

void AppController::printReport()
{
    const reportpdf::ReportInputs inputs = m_window->shownReportInputs();
    if (!reportpdf::documentReadyForReport(inputs.docPath, alerts()))
        return;
    QPrinter printer;
    printer.setPageLayout(m_pageLayout);
    ui::printReport({reportpdf::reportSection(inputs)}, printer, m_reportSetup, m_window.get());
}

void AppController::runPageLayout()
{
    app::logLine(QStringLiteral("> runPageLayout"));
    QPrinter printer;
    const bool saved = m_settings.contains(QLatin1String(kPrintPageSetupSetting.name));
    if (saved)
        printer.setPageLayout(m_pageLayout);
    if (ui::runPageLayout(printer, saved, m_reportSetup, m_window.get()))
        m_pageLayout = printer.pageLayout();
}

void AppController::buildHelpMenu()
{
    m_helpMenu = m_window->menuBar()->addMenu(QStringLiteral("Help"));
    m_debugAction = m_helpMenu->addAction(QStringLiteral("Enable Debugging"));
    m_debugAction->setCheckable(true);
    connect(m_helpMenu, &QMenu::aboutToShow, this,
            [this] { m_debugAction->setChecked(m_settings.boolean(kDebuggingIsEnabledSetting)); });
    connect(m_debugAction, &QAction::triggered, this, [this](bool checked) { enableDebug(checked); });

    QMenu* rows = m_helpMenu->addMenu(QStringLiteral("Row Size"));
    auto* group = new QActionGroup(rows);
    for (const auto& [title, size] : {std::pair{"Normal Rows", 0}, std::pair{"Small Rows", 1}}) {
        QAction* action = rows->addAction(QLatin1String(title));
        action->setCheckable(true);
        action->setChecked(m_settings.integer(kRowSizeSetting) == size);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, size = size] { setRowSize(size); });
    }
    connect(rows, &QMenu::aboutToShow, rows,
            [this, rows] { rows->actions().at(m_settings.integer(kRowSizeSetting) == 1 ? 1 : 0)->setChecked(true); });

    m_helpMenu->addAction(QStringLiteral("Legend"), this, &AppController::legend);
    m_helpMenu->addAction(QStringLiteral("Preferences..."), this, &AppController::showPrefs);
    m_helpMenu->addSeparator();
    m_helpMenu->addAction(QStringLiteral("Quillon User Guide"), this, &AppController::openUserGuide);
    m_helpMenu->addAction(QStringLiteral("Quillon Support"), this, &AppController::support);
    m_helpMenu->addAction(QStringLiteral("Check for Updates..."), this, [this] { menuUpdate(false); });
}

void AppController::enableDebug(bool enabled)
{
    app::logUserAction("enableDebug:");
    m_settings.setValue(QLatin1String(kDebuggingIsEnabledSetting.name), enabled);
    app::setDebugLogging(enabled);
}

void AppController::setRowSize(int rowSize)
{
    m_settings.setValue(QLatin1String(kRowSizeSetting.name), rowSize);
    if (m_window)
        setTableTextSize(m_window->resultViews(), rowSize);
    if (m_preferences)
        m_preferences->showRowSize(rowSize);
}

void AppController::legend()
{
    if (!m_legend)
        m_legend = new LegendWindow(m_window.get());
    m_legend->setVisible(!m_legend->isVisible());
}

void AppController::showPrefs()
{
    if (!m_preferences) {
        m_preferences = new PreferencesWindow(m_settings, m_window.get());
        connect(m_preferences, &PreferencesWindow::rowSizeChanged, this, &AppController::setRowSize);
    }
    m_preferences->show();
    m_preferences->raise();
}

void AppController::openUserGuide()
{
    QDesktopServices::openUrl(QUrl(userGuideAddress()));
}

void AppController::support()
{
    if (!m_support)
        m_support = new SupportWindow(m_window.get());
    m_support->show();
    m_support->raise();
}

void AppController::menuUpdate(bool automatic)
{
    auto* check = new UpdateCheck(versionListAddress(m_settings), this);
    connect(check, &UpdateCheck::finished, this, [this, check](const UpdateAnswer& answer) {
        check->deleteLater();
        showUpdateAnswer(answer);
    });
    check->start(automatic);
}

void AppController::showUpdateAnswer(const UpdateAnswer& answer)
{
    switch (answer.kind) {
    case UpdateAnswer::Kind::Silent:
        return;
    case UpdateAnswer::Kind::ErrorAlert:
        app::runAlert(m_window->alerts(), answer.title, answer.message, std::nullopt, false);
        return;
    case UpdateAnswer::Kind::UpToDate:
        if (app::runAlert(m_window->alerts(), answer.title, answer.message,
                          QStringList{QStringLiteral("OK"), QStringLiteral("View Release Notes")},
                          false) == app::kAlertSecondButton)
            QDesktopServices::openUrl(QUrl(releaseNotesAddress()));
        return;
    case UpdateAnswer::Kind::NewVersion: {
        app::logLine(QStringLiteral("orderFront"));
        auto* window = new UpdateCheckWindow(answer.title, answer.message, m_window.get());
        window->show();
        return;
    }
    }
}

QByteArray pageLayoutData(const QPageLayout& layout)
{
    QByteArray data;
    QDataStream out(&data, QIODevice::WriteOnly);
    out << int(layout.pageSize().id()) << layout.pageSize().size(QPageSize::Point) << int(layout.orientation())
        << int(layout.units()) << layout.margins();
    return data;
}

QPageLayout pageLayoutFromData(const QByteArray& data)
{
    QDataStream in(data);
    int id = 0;
    QSizeF points;
    int orientation = 0;
    int units = 0;
    QMarginsF margins;
    in >> id >> points >> orientation >> units >> margins;
    const QPageLayout fallback(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(36, 36, 36, 36),
                               QPageLayout::Point);
    if (in.status() != QDataStream::Ok || id < 0 || id > QPageSize::LastPageSize || orientation < 0 ||
        orientation > 1 || units < 0 || units > QPageLayout::Cicero || !points.isValid())
        return fallback;
    const QPageSize size =
        id == QPageSize::Custom ? QPageSize(points, QPageSize::Point) : QPageSize(QPageSize::PageSizeId(id));
    QPageLayout layout(size, QPageLayout::Orientation(orientation), margins, QPageLayout::Unit(units));
    return layout.isValid() ? layout : fallback;
}

app::AlertSink& AppController::alerts()
{
    return m_window->alerts();
}

} // namespace quillon::ui
