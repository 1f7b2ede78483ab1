#pragma once

#include "inspection/DocInfo.h"
#include "preflight/PreflightResultsSink.h"
#include "reports/TextReport.h"
#include "results/ColorResults.h"
#include "results/DocumentChecks.h"
#include "results/FontResults.h"
#include "results/LinkResults.h"
#include "results/Summary.h"

#include <QDateTime>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace quillon::app {
class AlertSink;
}

namespace quillon::reports {

// The results of the last preflight without a window: the link, font and colour lists judged by
// the current checkup preset, the summary and its status line, and the text report made from
// them. The command line and the tests use it as the driver's results sink; the desktop's lists
// show the same lists.
class PreflightResults : public preflight::PreflightResultsSink {
public:
    // The current checkup preset, asked for at every load; nothing when it cannot be had (the
    // lists are then shown without judging).
    using PresetSource = std::function<std::optional<QVariantMap>()>;

    explicit PreflightResults(PresetSource presetSource);

    // The preset chosen in the user defaults ("selectedPreset" of `settingsFile`, the user's own
    // when empty) read from `presetsFolder`; a missing file is reported through `alerts`.
    static PresetSource currentPreset(const QString& settingsFile, app::AlertSink& alerts,
                                      const QString& presetsFolder);
    // Always this preset.
    static PresetSource fixedPreset(const QVariantMap& preset);

    // Where presetsPopup stores the chosen preset; empty: the user's own defaults.
    void setSettingsFile(const QString& iniFilePath) { m_settingsFile = iniFilePath; }
    // The layout of the report files written into a folder (regular unless set).
    void setTextReportType(TextReportType type) { m_reportType = type; }
    // The clock of the report date (the current time unless set).
    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }

    // What a preflight is judged by when its preset is `preset` (nothing: not judged).
    static preflight::JudgingInputs judgingInputsFor(const std::optional<QVariantMap>& preset);

    void clearAllResults() override;
    preflight::JudgingInputs judgingInputs() override;
    void setItems(preflight::PreflightOutcome& outcome) override;
    void setItemsFromDataFiles(const QString& dataFolder) override;
    void populateSummaryAndDocInfo(inspection::QNDocInfo& docInfo) override;
    app::Result<QString> createTextReport(const QString& targetFolder, const QString& paraStylesReport,
                                          const inspection::QNDocInfo& docInfo) override;
    void presetsPopup(const QString& title) override;

    // The whole text of the report in a layout, as a report file holds it.
    QString textReport(TextReportType type, const QString& paraStylesReport,
                       const inspection::QNDocInfo& docInfo) const;

    const QVariantList& linkItems() const { return m_links.items(); }
    // The link rows, for renaming a linked file and for following the order a window sorted them in.
    QVariantList& mutableLinkItems() { return m_links.mutableItems(); }
    const QVariantList& fontItems() const { return m_fonts.items(); }
    const QVariantList& colorItems() const { return m_colors.items(); }
    const results::QNSummaryOutlineController& summary() const { return m_summary; }
    // The status line of the last summary.
    const results::PreflightStatus& status() const { return m_status; }
    // The document checks of the last summary, judged by the preset the lists were judged by.
    const results::DocumentJudgement& documentJudgement() const { return m_document; }

private:
    QVariantMap presetOrNothing() const;

    PresetSource m_presetSource;
    QString m_settingsFile;
    TextReportType m_reportType = TextReportType::Regular;
    std::function<QDateTime()> m_clock;
    QVariantMap m_judgedBy; // the preset the lists were judged by, for the document checks
    results::QNLinksOutline m_links;
    results::QNFontsOutlineController m_fonts;
    results::QNColorsOutlineController m_colors;
    results::QNSummaryOutlineController m_summary;
    results::PreflightStatus m_status;
    results::DocumentJudgement m_document;
};

// What the report header shows of a document.
ReportDocumentInfo reportDocumentInfo(const inspection::QNDocInfo& docInfo);

} // namespace quillon::reports
