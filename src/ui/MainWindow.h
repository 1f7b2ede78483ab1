#pragma once

#include "preflight/PreflightFolders.h"
#include "reportpdf/ReportContent.h"
#include "ui/WindowSinks.h"

#include <QList>
#include <QMainWindow>
#include <QMap>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>
#include <QVariantMap>

#include <future>
#include <memory>

class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QSplitter;
class QTreeView;

namespace quillon::host {
class InDesignHost;
}
namespace quillon::preflight {
class QNControlCenter;
}

namespace quillon::ui {

class ColorsModel;
class DocInfoBox;
class FontsModel;
class LinksModel;
class SummaryModel;

// What the window works with; every part defaults to the desktop's own.
struct MainWindowServices {
    std::shared_ptr<host::InDesignHost> host; // null: the offline host, which reads `.idml` files
    bool offline = true;                      // documents are `.idml` files chosen here, not InDesign's
    preflight::PreflightFolders folders = preflight::PreflightFolders::systemFolders();
    QString settingsFile;  // empty: the user's defaults
    QString presetsFolder; // empty: the user's presets folder
};

// The window operators live in: the result lists, the summary and the document's information,
// the progress bar and status line, the preflight button and the presets pop-up.
class MainWindow : public QMainWindow {
    Q_OBJECT
    // The presets pop-up's row, which the application keeps at quit.
    Q_PROPERTY(int presetIndexSelected READ presetIndexSelected)

public:
    explicit MainWindow(QWidget* parent = nullptr, MainWindowServices services = {});
    // Lets a running preflight end (its alerts get their first button).
    ~MainWindow() override;

    // Preflights the `.idml` document at `path` (a file given on the command line or dropped).
    void openDocument(const QString& path);
    // Preflights several documents one after another; the box's pop-up then switches between them.
    void openDocuments(const QStringList& paths);
    // The preflight button: Cancel while a preflight runs; otherwise a document to preflight.
    void preflightButtonClicked();
    bool isPreflighting() const;
    // The presets pop-up chose `title`: the lists are judged again, without a new preflight.
    void choosePreset(const QString& title);
    // Collapses the summary pane when it shows, shows it when collapsed; the state is kept.
    void toggleSummary();
    // Renames the linked file of a row of the links list (rename in place ends here).
    bool renameLink(const QModelIndex& index, const QString& newName);
    // How alerts are shown: the application's own alert dialog unless set (tests answer them).
    void setAlertPresenter(MainThreadAlertSink::Presenter presenter) { m_alerts.setPresenter(std::move(presenter)); }
    // Where alerts of the window and of what it starts go, from any thread.
    app::AlertSink& alerts() { return m_alerts; }

    // The report of the document the lists show (its preset, the user and the time of now), for
    // printing and the PDF report; the document's path is empty before any preflight.
    reportpdf::ReportInputs shownReportInputs() const;
    // Writes that report as the annotated PDF into `folder` (an existing report is numbered,
    // never replaced). Nothing but the informational alert before any preflight; an alert when
    // the file cannot be written. Gives the file written, or nothing.
    QString saveReportAsPDF(const QString& folder);

    // Where the selected link's metadata and information are shown, beside the lists.
    void setDetailPane(QWidget* pane);
    // The fonts, colours and links views, whose row size the Help menu's switch sets.
    QList<QTreeView*> resultViews() const;

    LinksModel* linksModel() const { return m_linksModel; }
    FontsModel* fontsModel() const { return m_fontsModel; }
    ColorsModel* colorsModel() const { return m_colorsModel; }
    SummaryModel* summaryModel() const { return m_summaryModel; }
    DocInfoBox* docInfoBox() const { return m_docInfoBox; }
    QComboBox* presetsPopup() const { return m_presetsPopup; }
    int presetIndexSelected() const;
    QPushButton* preflightButton() const { return m_preflightButton; }
    QTreeView* linksView() const { return m_linksView; }

Q_SIGNALS:
    // The link record selected in the links list (its "metadata" read once and kept), or an
    // empty record when no link (or a group row) is selected.
    void linkSelectionChanged(const QVariantMap& record);
    // A preflight (or the last document of a batch) ended: completed, cancelled or refused.
    void preflightFinished();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildWidgets();
    QTreeView* makeResultView(class ResultModel* model, const QString& name);
    void loadPresetsPopup();
    void startPreflight(const QString& path);
    void watchPreflight();
    void preflightEnded();
    void setRunning(bool running);
    void showResults(const ShownResults& shown);
    void clearResults();
    void keepBatchDocument();
    void showBatchDocument(const QString& path);
    void linkSelectionDidChange();
    void applySummaryState(bool collapsed);

    MainWindowServices m_services;
    MainThreadAlertSink m_alerts;
    std::unique_ptr<WindowProgressSink> m_progress;
    std::unique_ptr<WindowResultsSink> m_results;
    std::unique_ptr<preflight::QNControlCenter> m_controlCenter;

    LinksModel* m_linksModel = nullptr;
    FontsModel* m_fontsModel = nullptr;
    ColorsModel* m_colorsModel = nullptr;
    SummaryModel* m_summaryModel = nullptr;
    QTreeView* m_linksView = nullptr;
    QTreeView* m_fontsView = nullptr;
    QTreeView* m_colorsView = nullptr;
    QTreeView* m_summaryView = nullptr;
    DocInfoBox* m_docInfoBox = nullptr;
    QSplitter* m_mainSplit = nullptr;
    QSplitter* m_linksSplit = nullptr;
    QWidget* m_summaryPane = nullptr;
    QComboBox* m_presetsPopup = nullptr;
    QPushButton* m_preflightButton = nullptr;
    QPushButton* m_summaryButton = nullptr;
    QProgressBar* m_progressBar = nullptr;
    QLabel* m_statusField = nullptr;
    QTimer m_watch;
    // Asking the host for the document reads the whole document, so it runs off the main
    // thread too; the stages follow on the driver's worker.
    std::future<bool> m_starting;
    bool m_cancelRequested = false;
    inspection::QNDocInfo m_shownDocInfo;
    results::PreflightStatus m_shownStatus;

    // A batch: the documents still to preflight, and per document its kept data files.
    struct BatchDocument {
        QString path;
        QString dataFolder;
        inspection::QNDocInfo docInfo;
    };
    QStringList m_batchQueue;
    QList<BatchDocument> m_batch;
    std::unique_ptr<QTemporaryDir> m_batchFolder;
};

} // namespace quillon::ui
