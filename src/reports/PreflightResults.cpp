#include "reports/PreflightResults.h"

#include "app/Log.h"
#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "links/LinkValues.h"
#include "results/PresetKeys.h"
#include "results/PresetSettings.h"
#include "results/ResultRows.h"

#include <utility>

namespace quillon::reports {

PreflightResults::PreflightResults(PresetSource presetSource)
    : m_presetSource(std::move(presetSource)), m_clock([] { return QDateTime::currentDateTime(); })
{
    m_summary.startup();
}

PreflightResults::PresetSource PreflightResults::currentPreset(const QString& settingsFile, app::AlertSink& alerts,
                                                               const QString& presetsFolder)
{
    return [settingsFile, &alerts, presetsFolder] {
        const app::Settings settings = settingsFile.isEmpty() ? app::Settings() : app::Settings(settingsFile);
        return results::currPreset(settings, alerts, presetsFolder);
    };
}

PreflightResults::PresetSource PreflightResults::fixedPreset(const QVariantMap& preset)
{
    return [preset] { return std::optional<QVariantMap>(preset); };
}

QVariantMap PreflightResults::presetOrNothing() const
{
    return m_presetSource ? m_presetSource().value_or(QVariantMap()) : QVariantMap();
}

void PreflightResults::clearAllResults()
{
    m_links.clear();
    m_fonts.clear();
    m_colors.clear();
    m_summary.clear();
    m_status = results::PreflightStatus();
    m_document = results::DocumentJudgement();
}

preflight::JudgingInputs PreflightResults::judgingInputsFor(const std::optional<QVariantMap>& preset)
{
    const QVariantMap chosen = preset.value_or(QVariantMap());
    const QVariantMap colorRules = chosen.value(results::kPresetColorsKey).toMap();
    return {chosen, inspection::countsRegistrationInText(results::registrationInTextFlagOfPreset(colorRules))};
}

preflight::JudgingInputs PreflightResults::judgingInputs()
{
    // Read once as a preflight starts, so that a preset that cannot be had is reported once.
    return judgingInputsFor(m_presetSource ? m_presetSource() : std::nullopt);
}

void PreflightResults::setItems(preflight::PreflightOutcome& outcome)
{
    m_judgedBy = outcome.judging.preset;
    m_links.setItems(std::exchange(outcome.linkData, {}), outcome.judging.preset);
    m_fonts.setItems(outcome.fontData(), outcome.judging.preset);
    m_colors.setItems(outcome.colorData(), outcome.judging.preset);
}

void PreflightResults::setItemsFromDataFiles(const QString& dataFolder)
{
    const QVariantMap preset = presetOrNothing();
    m_judgedBy = preset;
    m_links.setItems(results::readDataFile(dataFolder, app::kLinkDataFileName), preset);
    m_fonts.setItems(results::readDataFile(dataFolder, app::kFontDataFileName), preset);
    m_colors.setItems(results::readDataFile(dataFolder, app::kColorDataFileName), preset);
}

void PreflightResults::populateSummaryAndDocInfo(inspection::QNDocInfo& docInfo)
{
    const results::SummaryDocumentInfo document{
        docInfo.docName(),         docInfo.docPath(),          docInfo.creationDateStr(), docInfo.modDateStr(),
        docInfo.InDesignVersion(), docInfo.numberOfPagesStr(), docInfo.bleedStr(),        docInfo.slugStr()};
    m_document = results::judgeDocument(m_judgedBy.value(results::kPresetDocumentKey).toMap(), docInfo);
    m_status = m_summary.loadSummary(document, m_fonts.items(), m_colors.items(), m_links.items(),
                                     links::fileSizeFormat, m_document.alerts.size());
    docInfo.setHasPreflightErrors(m_status.hasPreflightErrors);
}

QString PreflightResults::textReport(TextReportType type, const QString& paraStylesReport,
                                     const inspection::QNDocInfo& docInfo) const
{
    return QNTextReport(type).reportText(m_fonts.items(), m_colors.items(), m_links.items(), paraStylesReport,
                                         reportDocumentInfo(docInfo), m_clock());
}

app::Result<QString> PreflightResults::createTextReport(const QString& targetFolder, const QString& paraStylesReport,
                                                        const inspection::QNDocInfo& docInfo)
{
    if (targetFolder.isEmpty())
        return app::makeError(QStringLiteral("No folder was given for the text report."));
    return QNTextReport(m_reportType)
        .writeReport(targetFolder, m_fonts.items(), m_colors.items(), m_links.items(), paraStylesReport,
                     reportDocumentInfo(docInfo), m_clock());
}

void PreflightResults::presetsPopup(const QString& title)
{
    {
        app::Settings settings = m_settingsFile.isEmpty() ? app::Settings() : app::Settings(m_settingsFile);
        results::presetsPopup(settings, title);
    }
    if (m_links.items().isEmpty() && m_colors.items().isEmpty() && m_fonts.items().isEmpty())
        return;
    const QVariantMap preset = presetOrNothing();
    m_judgedBy = preset;
    if (!m_links.items().isEmpty())
        m_links.reapplyPreset(preset);
    if (!m_colors.items().isEmpty())
        m_colors.reapplyPreset(preset);
    if (!m_fonts.items().isEmpty())
        m_fonts.reapplyPreset(preset);
}

ReportDocumentInfo reportDocumentInfo(const inspection::QNDocInfo& docInfo)
{
    return {docInfo.docName(), docInfo.docPath(), docInfo.creationDateStr(), docInfo.modDateStr()};
}

} // namespace quillon::reports
