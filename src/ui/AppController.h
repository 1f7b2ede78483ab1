#pragma once

#include "ui/MainWindow.h"
#include "ui/ReportPrinting.h"

#include <QObject>
#include <QPageLayout>
#include <QPointer>
#include <QTreeView>

#include <memory>

class QAction;
class QMenu;

namespace quillon::app {
class AlertSink;
class Settings;
} // namespace quillon::app
namespace quillon::results {
class QNPresetsTable;
}

namespace quillon::ui {

class InformationPane;
class LegendWindow;
class MetadataPane;
class PreferencesWindow;
class SupportWindow;
struct UpdateAnswer;

// The application shell: makes the support folders, starts the lower controllers and then the
// main window, keeps the window state, the page layout and the shell's defaults, and owns the
// Help menu (debugging switch, row size, legend, preferences, user guide, support, updates).
// Lives on the main thread.
class AppController : public QObject {
    Q_OBJECT

public:
    // `services` are what the main window works with (the user's own folders and defaults unless
    // set; the settings file of `window` should be that of `settings`).
    explicit AppController(app::Settings& settings, MainWindowServices services = {}, QObject* parent = nullptr);
    ~AppController() override;

    // The maker's folder, the application's support folder and its "Presets" folder, each made
    // only when missing. Gives the folders it made.
    static QStringList makeSupportFolders();
    // Rows of 16 with text of 11 points for row size 0, rows of 12 with text of 9 points for 1.
    static void setTableTextSize(const QList<QTreeView*>& views, int rowSize);

    // Launch: folders, page layout, debugging, presets, then the window with its detail panes
    // and Help menu, its state restored.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    // Quit: saves the page layout, the presets row, the PDF preset titles and the window state.
    void applicationWillTerminate();

    MainWindow* mainWindow() const { return m_window.get(); }
    MetadataPane* metadataPane() const { return m_metadataPane; }
    InformationPane* informationPane() const { return m_informationPane; }
    app::AlertSink& alerts();
    QMenu* helpMenu() const { return m_helpMenu; }

    // The page layout of printed reports.
    QPageLayout pageLayout() const { return m_pageLayout; }
    void setPageLayout(const QPageLayout& layout) { m_pageLayout = layout; }

    // File menu actions on the report of the document the window shows; each first checks that a
    // document was preflighted (else the informational alert, and nothing more).
    void saveReportAsPDF();
    void printReport();
    void runPageLayout();

    // Help menu actions.
    void enableDebug(bool enabled);
    void setRowSize(int rowSize);
    void legend();
    void showPrefs();
    void openUserGuide();
    void support();
    // `automatic` is the quiet check at start: nothing is shown when current or unreachable.
    void menuUpdate(bool automatic);

private:
    void buildFileMenu();
    void buildHelpMenu();
    void showUpdateAnswer(const UpdateAnswer& answer);

    app::Settings& m_settings;
    MainWindowServices m_services;
    std::unique_ptr<results::QNPresetsTable> m_presets;
    std::unique_ptr<MainWindow> m_window;
    MetadataPane* m_metadataPane = nullptr;
    InformationPane* m_informationPane = nullptr;
    QMenu* m_helpMenu = nullptr;
    QAction* m_debugAction = nullptr;
    QPointer<LegendWindow> m_legend;
    QPointer<PreferencesWindow> m_preferences;
    QPointer<SupportWindow> m_support;
    QPageLayout m_pageLayout;
    ReportPageSetup m_reportSetup;
};

// The page layout as stored data, and back (a default A4 layout for data that is not one).
QByteArray pageLayoutData(const QPageLayout& layout);
QPageLayout pageLayoutFromData(const QByteArray& data);

} // namespace quillon::ui
