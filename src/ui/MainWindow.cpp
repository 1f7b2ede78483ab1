#include "ui/MainWindow.h"

#include "app/Log.h"
#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "fileinspect/PXMetadataController.h"
#include "host/OfflineIdmlHost.h"
#include "preflight/ControlCenter.h"
#include "reportpdf/PdfReport.h"
#include "results/LinkRename.h"
#include "results/LinkResults.h"
#include "results/PresetSettings.h"
#include "results/Presets.h"
#include "ui/DocInfoBox.h"
#include "ui/ResultDelegate.h"
#include "ui/ResultLists.h"
#include "ui/ResultMenus.h"
#include "ui/SummaryModel.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QTreeView>
#include <QVBoxLayout>

#include <chrono>

namespace quillon::ui {

namespace {

const app::SettingKey kSummaryIsCollapsed{"summaryIsCollapsed", false};
const app::SettingKey kSummaryViewWidth{"summaryViewWidth", 0.0};
constexpr int kDefaultSummaryWidth = 320;
constexpr int kWatchIntervalMs = 20;

// Renaming a linked file asks the host to relink the document's link to the new name.
class HostLinkRelinker : public results::LinkRelinker {
public:
    explicit HostLinkRelinker(host::InDesignHost& host) : m_host(host) {}
    bool relinkLink(const QString& linkID, const QString& newPath, const QString& docName) override
    {
        const app::Status relinked = m_host.relinkLinkID(linkID, newPath, docName);
        if (!relinked)
            app::logFailure(QStringLiteral("relink %1: %2").arg(linkID, relinked.error().message));
        return bool(relinked);
    }

private:
    host::InDesignHost& m_host;
};

QString idmlPathOf(const QUrl& url)
{
    const QString path = url.toLocalFile();
    return path.endsWith(QLatin1String(".idml"), Qt::CaseInsensitive) ? path : QString();
}

} // namespace

MainWindow::MainWindow(QWidget* parent, MainWindowServices services)
    : QMainWindow(parent), m_services(std::move(services)), m_alerts(this)
{
    if (!m_services.host) {
        m_services.host = std::make_shared<host::OfflineIdmlHost>();
        m_services.offline = true;
    }
    if (m_services.presetsFolder.isEmpty())
        m_services.presetsFolder = results::presetsFolderPath();
    setWindowTitle(QStringLiteral("Quillon"));
    setMinimumSize(700, 700);
    setAcceptDrops(true);
    buildWidgets();

    WindowResultsSink::Handlers handlers{
        [this] { clearResults(); },
        [this](const QString& name, const QString& path) {
            setWindowTitle(name);
            setWindowFilePath(path);
        },
        [this](const ShownResults& shown) { showResults(shown); },
    };
    m_results = std::make_unique<WindowResultsSink>(
        this, reports::PreflightResults::currentPreset(m_services.settingsFile, m_alerts, m_services.presetsFolder),
        std::move(handlers));
    m_results->setSettingsFile(m_services.settingsFile);
    m_progress = std::make_unique<WindowProgressSink>(m_progressBar, m_statusField);
    m_controlCenter = std::make_unique<preflight::QNControlCenter>(*m_services.host, m_alerts, *m_progress, *m_results,
                                                                   m_services.folders);
    m_controlCenter->setSettingsFile(m_services.settingsFile);
    m_controlCenter->startup();
    loadPresetsPopup();
    installResultMenus(*m_linksView, *m_linksModel, *m_fontsView, *m_fontsModel,
                       {*m_services.host, m_alerts, m_services.offline});
    m_linksModel->setRenamer([this](const QModelIndex& index, const QString& name) { return renameLink(index, name); });

    m_watch.setInterval(kWatchIntervalMs);
    connect(&m_watch, &QTimer::timeout, this, &MainWindow::watchPreflight);
    const app::Settings settings =
        m_services.settingsFile.isEmpty() ? app::Settings() : app::Settings(m_services.settingsFile);
    applySummaryState(settings.boolean(kSummaryIsCollapsed));
}

MainWindow::~MainWindow()
{
    m_alerts.shutDown();
    m_controlCenter->setDoCancel(true);
    if (m_starting.valid())
        m_starting.wait();
    m_controlCenter->setDoCancel(true);
    m_controlCenter->waitUntilPreflightIsDone();
}

QTreeView* MainWindow::makeResultView(ResultModel* model, const QString& name)
{
    auto* view = new QTreeView(this);
    view->setObjectName(name);
    view->setModel(model);
    view->setItemDelegate(new ResultDelegate(view));
    view->setUniformRowHeights(true);
    view->setAlternatingRowColors(true);
    // The lists keep their own order until a header is clicked.
    view->header()->setSortIndicator(-1, Qt::AscendingOrder);
    view->setSortingEnabled(true);
    view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view->setRootIsDecorated(false);
    view->setIconSize(QSize(16, 16));
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    view->header()->setStretchLastSection(false);
    view->header()->setMinimumSectionSize(24);
    for (int column = 0; column < model->columns().size(); ++column)
        view->setColumnWidth(column, model->columns().at(column).width);
    // A list holds document groups (a batch) or records, never both.
    connect(model, &QAbstractItemModel::modelReset, view, [view, model] {
        view->setRootIsDecorated(!model->rows().isEmpty() && results::isGroupRow(model->rows().first().toMap()));
    });
    return view;
}

void MainWindow::buildWidgets()
{
    m_linksModel = new LinksModel(this);
    m_fontsModel = new FontsModel(this);
    m_colorsModel = new ColorsModel(this);
    m_summaryModel = new SummaryModel(this);
    m_linksView = makeResultView(m_linksModel, QStringLiteral("linksOutline"));
    m_fontsView = makeResultView(m_fontsModel, QStringLiteral("fontsOutline"));
    m_colorsView = makeResultView(m_colorsModel, QStringLiteral("colorsOutline"));
    m_linksView->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    m_linksView->header()->setSectionResizeMode(0, QHeaderView::Interactive);

    m_summaryView = new QTreeView(this);
    m_summaryView->setObjectName(QStringLiteral("summaryOutline"));
    m_summaryView->setModel(m_summaryModel);
    m_summaryView->setUniformRowHeights(true);
    m_summaryView->setSelectionMode(QAbstractItemView::NoSelection);
    m_summaryView->expandAll();
    m_summaryView->setColumnWidth(0, 140);
    connect(m_summaryModel, &QAbstractItemModel::modelReset, m_summaryView, &QTreeView::expandAll);

    // Top bar: the preflight button, the presets pop-up, the bar and the status line.
    auto* bar = new QWidget(this);
    auto* barLayout = new QHBoxLayout(bar);
    barLayout->setContentsMargins(8, 6, 8, 6);
    m_preflightButton = new QPushButton(QStringLiteral("Preflight"), bar);
    m_preflightButton->setObjectName(QStringLiteral("preflightButton"));
    m_preflightButton->setMinimumWidth(96);
    m_preflightButton->setDefault(true);
    m_presetsPopup = new QComboBox(bar);
    m_presetsPopup->setObjectName(QStringLiteral("presetsPopup"));
    m_presetsPopup->setMinimumContentsLength(18);
    m_progressBar = new QProgressBar(bar);
    m_progressBar->setObjectName(QStringLiteral("progressBar"));
    m_progressBar->setTextVisible(false);
    m_progressBar->setMaximumWidth(220);
    m_progressBar->hide();
    m_statusField = new QLabel(bar);
    m_statusField->setObjectName(QStringLiteral("statusField"));
    m_statusField->hide();
    m_summaryButton = new QPushButton(QStringLiteral("Summary"), bar);
    m_summaryButton->setCheckable(true);
    barLayout->addWidget(m_preflightButton);
    barLayout->addWidget(new QLabel(QStringLiteral("Checkup preset:"), bar));
    barLayout->addWidget(m_presetsPopup);
    barLayout->addSpacing(12);
    barLayout->addWidget(m_progressBar);
    barLayout->addWidget(m_statusField, 1);
    barLayout->addStretch();
    barLayout->addWidget(m_summaryButton);

    // The lists: links on top (with the detail pane beside them), fonts and colours below.
    m_linksSplit = new QSplitter(Qt::Horizontal, this);
    m_linksSplit->addWidget(m_linksView);
    auto* lowerSplit = new QSplitter(Qt::Horizontal, this);
    lowerSplit->addWidget(m_fontsView);
    lowerSplit->addWidget(m_colorsView);
    lowerSplit->setSizes({560, 400});
    auto* listsSplit = new QSplitter(Qt::Vertical, this);
    listsSplit->addWidget(m_linksSplit);
    listsSplit->addWidget(lowerSplit);
    listsSplit->setSizes({420, 280});

    // The summary pane: the document's information above the summary outline.
    m_docInfoBox = new DocInfoBox(this);
    auto* summarySplit = new QSplitter(Qt::Vertical, this);
    summarySplit->addWidget(m_docInfoBox);
    summarySplit->addWidget(m_summaryView);
    summarySplit->setSizes({290, 410});
    m_summaryPane = summarySplit;

    m_mainSplit = new QSplitter(Qt::Horizontal, this);
    m_mainSplit->setObjectName(QStringLiteral("mainSplit"));
    m_mainSplit->addWidget(listsSplit);
    m_mainSplit->addWidget(m_summaryPane);
    m_mainSplit->setStretchFactor(0, 1);
    m_mainSplit->setCollapsible(0, false);

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(m_mainSplit, 1);
    setCentralWidget(central);

    connect(m_preflightButton, &QPushButton::clicked, this, &MainWindow::preflightButtonClicked);
    connect(m_presetsPopup, &QComboBox::activated, this,
            [this](int index) { choosePreset(m_presetsPopup->itemText(index)); });
    connect(m_summaryButton, &QPushButton::clicked, this, &MainWindow::toggleSummary);
    connect(m_docInfoBox, &DocInfoBox::batchDocumentChosen, this, &MainWindow::showBatchDocument);
    connect(m_linksView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainWindow::linkSelectionDidChange);
    // The driver's rows follow the order the user sorted the list into, so rows match by number.
    connect(m_linksView->header(), &QHeaderView::sortIndicatorChanged, this, [this] {
        if (!isPreflighting()) // the worker owns the driver's rows until it ends
            m_results->mutableLinkItems() = m_linksModel->rows();
    });
}

void MainWindow::loadPresetsPopup()
{
    results::QNPresetsTable presets(m_services.presetsFolder);
    if (const app::Status loaded = presets.loadPresets(); !loaded)
        app::logFailure(QStringLiteral("load presets: %1").arg(loaded.error().message));
    const app::Settings settings =
        m_services.settingsFile.isEmpty() ? app::Settings() : app::Settings(m_services.settingsFile);
    m_presetsPopup->clear();
    m_presetsPopup->addItems(presets.presetNames());
    m_presetsPopup->setCurrentText(results::selectPresetOnLaunch(settings));
}

void MainWindow::openDocument(const QString& path)
{
    m_batchQueue.clear();
    m_batch.clear();
    m_batchFolder.reset();
    m_docInfoBox->setBatchDocuments({});
    startPreflight(path);
}

void MainWindow::openDocuments(const QStringList& paths)
{
    if (paths.size() < 2) {
        if (!paths.isEmpty())
            openDocument(paths.first());
        return;
    }
    if (isPreflighting())
        return;
    m_batch.clear();
    m_batchFolder = std::make_unique<QTemporaryDir>();
    m_docInfoBox->setBatchDocuments({});
    m_batchQueue = paths;
    startPreflight(m_batchQueue.takeFirst());
}

void MainWindow::startPreflight(const QString& path)
{
    if (isPreflighting())
        return;
    if (m_services.offline) {
        if (const app::Status usable = host::OfflineIdmlHost::checkDocumentPath(path); !usable) {
            app::runAlert(m_alerts, QStringLiteral("Cannot preflight active document"), usable.error().message,
                          std::nullopt, true);
            m_batchQueue.clear();
            Q_EMIT preflightFinished();
            return;
        }
        if (const app::Status opened = m_services.host->openDocument(path, true); !opened) {
            app::runAlert(m_alerts, QStringLiteral("Cannot preflight active document"), opened.error().message,
                          std::nullopt, true);
            Q_EMIT preflightFinished();
            return;
        }
    }
    m_cancelRequested = false;
    m_starting = std::async(std::launch::async, [this] { return m_controlCenter->preflightActiveDoc(); });
    setRunning(true);
    m_watch.start();
}

void MainWindow::preflightButtonClicked()
{
    if (isPreflighting()) {
        app::logUserAction("cancel preflight");
        m_batchQueue.clear();
        m_cancelRequested = true;
        m_controlCenter->setDoCancel(true);
        return;
    }
    if (!m_services.offline) {
        openDocument(QString());
        return;
    }
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Choose an IDML document to preflight"),
                                                      QString(), QStringLiteral("IDML documents (*.idml)"));
    if (!path.isEmpty())
        openDocument(path);
}

bool MainWindow::isPreflighting() const
{
    return m_watch.isActive();
}

void MainWindow::watchPreflight()
{
    if (m_starting.valid()) {
        if (m_starting.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            return;
        if (!m_starting.get()) { // no document, or cancelled before the stages
            m_watch.stop();
            QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
            setRunning(false);
            m_batchQueue.clear();
            Q_EMIT preflightFinished();
            return;
        }
        if (m_cancelRequested) // a click before the driver reset its flag
            m_controlCenter->setDoCancel(true);
    }
    if (m_controlCenter->isPreflighting())
        return;
    m_watch.stop();
    m_controlCenter->waitUntilPreflightIsDone();
    // What the worker handed over before it ended is shown before the end is announced.
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    QCoreApplication::sendPostedEvents(m_progressBar, QEvent::MetaCall);
    preflightEnded();
}

void MainWindow::preflightEnded()
{
    setRunning(false);
    if (m_batchFolder)
        keepBatchDocument();
    if (!m_batchQueue.isEmpty()) {
        startPreflight(m_batchQueue.takeFirst());
        return;
    }
    if (m_batch.size() > 1) {
        QList<DocInfoBox::BatchDocument> documents;
        for (const BatchDocument& document : std::as_const(m_batch))
            documents.append({document.path, document.docInfo.hasPreflightErrors()});
        m_docInfoBox->setBatchDocuments(documents);
        m_docInfoBox->selectMenuForDocPath(m_batch.last().path);
    }
    if (m_batch.size() < 2)
        m_batchFolder.reset();
    Q_EMIT preflightFinished();
}

void MainWindow::keepBatchDocument()
{
    if (m_controlCenter->outcome().ended != preflight::PreflightEnding::Completed)
        return;
    const QString folder = m_batchFolder->filePath(QString::number(m_batch.size()));
    QDir().mkpath(folder);
    const QDir data(m_services.folders.dataFolder);
    for (const QString& name : {app::kLinkDataFileName, app::kFontDataFileName, app::kColorDataFileName})
        QFile::copy(data.filePath(name), QDir(folder).filePath(name));
    m_batch.append({m_controlCenter->currDocPath(), folder, m_controlCenter->currDocInfo()});
}

void MainWindow::showBatchDocument(const QString& path)
{
    if (isPreflighting())
        return;
    for (const BatchDocument& document : std::as_const(m_batch)) {
        if (document.path != path)
            continue;
        app::logEntry("loadPreflightDataForSelectedFile");
        inspection::QNDocInfo info = document.docInfo;
        m_controlCenter->setCurrDocInfo(info);
        m_controlCenter->setCurrDocPath(path);
        m_controlCenter->setCurrDocName(QFileInfo(path).fileName());
        m_results->setItemsFromDataFiles(document.dataFolder);
        m_results->populateSummaryAndDocInfo(info);
        setWindowTitle(QFileInfo(path).fileName());
        return;
    }
}

void MainWindow::setRunning(bool running)
{
    m_preflightButton->setText(running ? QStringLiteral("Cancel") : QStringLiteral("Preflight"));
    m_presetsPopup->setEnabled(!running);
    m_docInfoBox->docNamesPopup()->setEnabled(!running);
    m_linksModel->setEditable(!running);
}

void MainWindow::clearResults()
{
    m_linksModel->setRows({});
    m_fontsModel->setRows({});
    m_colorsModel->setRows({});
    results::QNSummaryOutlineController empty;
    empty.startup();
    m_summaryModel->setSections(empty.items());
    m_docInfoBox->clearAllFields();
    Q_EMIT linkSelectionChanged({});
}

void MainWindow::showResults(const ShownResults& shown)
{
    m_shownDocInfo = shown.docInfo;
    m_shownStatus = shown.status;
    m_linksModel->setRows(shown.links);
    m_fontsModel->setRows(shown.fonts);
    m_colorsModel->setRows(shown.colors);
    m_summaryModel->setSections(shown.summary);
    m_docInfoBox->setDocInfo(shown.docInfo);
    m_docInfoBox->setPreflightStatus(shown.status);
    if (!m_linksModel->sortDescriptors().isEmpty())
        m_results->mutableLinkItems() = m_linksModel->rows();
}

void MainWindow::choosePreset(const QString& title)
{
    if (isPreflighting())
        return;
    app::logUserAction("presetsPopup");
    m_presetsPopup->setCurrentText(title);
    m_controlCenter->presetsPopup(title);
    if (m_linksModel->rows().isEmpty() && m_fontsModel->rows().isEmpty() && m_colorsModel->rows().isEmpty())
        return;
    inspection::QNDocInfo info = m_shownDocInfo;
    m_results->populateSummaryAndDocInfo(info);
}

reportpdf::ReportInputs MainWindow::shownReportInputs() const
{
    reportpdf::ReportInputs inputs =
        reportpdf::reportInputs(m_fontsModel->rows(), m_colorsModel->rows(), m_linksModel->rows(), m_shownDocInfo,
                                m_summaryModel->sections(), m_shownStatus);
    reportpdf::stampReport(inputs, m_presetsPopup->currentText());
    return inputs;
}

QString MainWindow::saveReportAsPDF(const QString& folder)
{
    app::logLine(QStringLiteral("> saveReportAsPDFWithAnnots"));
    const reportpdf::ReportInputs inputs = shownReportInputs();
    if (!reportpdf::documentReadyForReport(inputs.docPath, m_alerts))
        return {};
    const app::Result<QString> written = reportpdf::writePdfReport({reportpdf::reportSection(inputs)}, folder,
                                                                   reportpdf::pdfReportFileName(inputs.docName),
                                                                   reports::QNTextReport::ExistingFile::Number);
    if (!written) {
        app::runAlert(m_alerts, QStringLiteral("The report could not be saved"), written.error().text(), std::nullopt,
                      true);
        return {};
    }
    return *written;
}

int MainWindow::presetIndexSelected() const
{
    return m_presetsPopup->currentIndex();
}

void MainWindow::applySummaryState(bool collapsed)
{
    app::Settings settings =
        m_services.settingsFile.isEmpty() ? app::Settings() : app::Settings(m_services.settingsFile);
    const int total = std::max(m_mainSplit->width(), 1280);
    if (collapsed) {
        m_mainSplit->setSizes({total, 0});
    } else {
        const int width = int(settings.value(kSummaryViewWidth).toDouble());
        m_mainSplit->setSizes(
            {total - (width > 0 ? width : kDefaultSummaryWidth), width > 0 ? width : kDefaultSummaryWidth});
    }
    m_summaryButton->setChecked(!collapsed);
}

void MainWindow::toggleSummary()
{
    app::logUserAction("toggleSummary");
    app::Settings settings =
        m_services.settingsFile.isEmpty() ? app::Settings() : app::Settings(m_services.settingsFile);
    const bool collapse = m_mainSplit->sizes().value(1) > 0;
    if (collapse)
        settings.setValue(QLatin1String(kSummaryViewWidth.name), double(m_mainSplit->sizes().value(1)));
    settings.setValue(QLatin1String(kSummaryIsCollapsed.name), collapse);
    settings.sync();
    applySummaryState(collapse);
}

bool MainWindow::renameLink(const QModelIndex& index, const QString& newName)
{
    const QVariantMap record = m_linksModel->record(index);
    if (isPreflighting() || record.isEmpty() || newName == record.value(QStringLiteral("name")).toString())
        return false;
    if (m_services.offline) {
        const QString document = QFileInfo(record.value(QStringLiteral("docPath")).toString()).fileName();
        const int answer = app::runAlert(
            m_alerts, QStringLiteral("Rename the linked file?"),
            QStringLiteral("The file is renamed on disk and the document \"%1\" is changed so that its link points "
                           "at the new name.")
                .arg(document),
            QStringList{QStringLiteral("Rename"), QStringLiteral("Cancel")}, false);
        if (answer != app::kAlertFirstButton)
            return false;
    }
    HostLinkRelinker relinker(*m_services.host);
    QVariantList& items = m_results->mutableLinkItems();
    const results::LinkRenameResult renamed = results::renameLinkedFile(items, record, newName, m_alerts, relinker);
    if (renamed.outcome != results::LinkRenameOutcome::Relinked)
        return false;
    m_linksModel->setRows(items);
    m_results->mutableLinkItems() = m_linksModel->rows();
    for (int row = 0; row < m_linksModel->rowCount(); ++row) {
        const QModelIndex shown = m_linksModel->index(row, 0);
        const QVariantMap candidate = m_linksModel->record(shown);
        if (candidate.value(QStringLiteral("path")).toString() == renamed.newPath &&
            candidate.value(QStringLiteral("id")) == record.value(QStringLiteral("id"))) {
            m_linksView->selectionModel()->select(shown,
                                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
            m_linksView->scrollTo(shown);
            break;
        }
    }
    return true;
}

void MainWindow::linkSelectionDidChange()
{
    const QModelIndexList rows = m_linksView->selectionModel()->selectedRows();
    if (isPreflighting() || rows.size() != 1 || m_linksModel->isGroup(rows.first())) {
        Q_EMIT linkSelectionChanged({});
        return;
    }
    const QModelIndex index = rows.first();
    QVariantMap record = m_linksModel->record(index);
    const app::Settings settings =
        m_services.settingsFile.isEmpty() ? app::Settings() : app::Settings(m_services.settingsFile);
    results::QNLinksOutline::acquireMetadata(record, [&settings](const QString& path) {
        fileinspect::PXMetadataController reader(&settings);
        return reader.readFromURL(path);
    });
    m_linksModel->replaceRecord(index, record);
    replaceRecordIn(m_results->mutableLinkItems(), index.parent().isValid() ? index.parent().row() : -1, index.row(),
                    record);
    Q_EMIT linkSelectionChanged(record);
}

void MainWindow::setDetailPane(QWidget* pane)
{
    if (!pane)
        return;
    // The list keeps the room a wider window gives; the pane keeps the width of its preview.
    m_linksSplit->addWidget(pane);
    m_linksSplit->setStretchFactor(0, 1);
    m_linksSplit->setStretchFactor(1, 0);
    m_linksSplit->setSizes({1000, 300});
}

QList<QTreeView*> MainWindow::resultViews() const
{
    return {m_fontsView, m_colorsView, m_linksView};
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!isPreflighting() &&
        std::any_of(urls.cbegin(), urls.cend(), [](const QUrl& url) { return !idmlPathOf(url).isEmpty(); }))
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (const QString path = idmlPathOf(url); !path.isEmpty())
            paths.append(path);
    if (paths.isEmpty())
        return;
    event->acceptProposedAction();
    openDocuments(paths);
}

} // namespace quillon::ui
