#include "cli/PreflightPrinter.h"

#include "cli/Commands.h"
#include "cli/JsonOutput.h"
#include "cli/PreflightOutput.h"
#include "cli/PreflightSummary.h"
#include "cli/ProgressLine.h"
#include "cli/TerminalText.h"

#include <QFileInfo>

#include <iostream>
#include <memory>
#include <sstream>

namespace quillon::cli {

namespace {

bool isJson(const QString& format)
{
    return format == QLatin1String("json");
}

// The depth of a document's object: an item of the envelope's "documents" array.
constexpr int kDocumentDepth = 2;

// Up to this many records a document's JSON is made before it reaches the printer (a few hundred
// kilobytes at most); a larger one is made as it is printed, never held whole.
constexpr qsizetype kJsonWrittenAheadRecords = 2000;

// The envelope up to its documents: "format", "quillonVersion", "command" and "preset", then the
// opened array.
std::string preflightEnvelopeOpening(const QString& presetName)
{
    QJsonObject head = jsonEnvelope(QStringLiteral("preflight"));
    head.insert(QStringLiteral("preset"), presetName);
    return envelopeOpening(head);
}

} // namespace

RenderedDocument renderDocument(PreflightedDocument document, const QString& format, const QString& presetName,
                                bool withSummary, std::optional<int> maxItems)
{
    RenderedDocument rendered;
    rendered.path = document.path;
    rendered.failed = !document.preflighted || !document.outputError.isEmpty();
    // A warning means a part of the document went unjudged: never a clean result.
    rendered.alerted = document.preflighted && (document.status.total != 0 || !document.warnings.isEmpty());
    if (!document.preflighted)
        rendered.errors << document.error;
    if (!document.outputError.isEmpty())
        rendered.errors << document.outputError;
    for (const QString& warning : document.warnings)
        rendered.warnings << QStringLiteral("warning: ") + warning;
    if (withSummary && document.preflighted)
        rendered.terminal = printableLinesText(summaryText(document, presetName, maxItems));
    if (isJson(format)) {
        if (document.links.size() + document.fonts.size() + document.colors.size() <= kJsonWrittenAheadRecords) {
            // Written here, on the document's own thread, so that documents run side by side do not
            // wait for each other's text at the printer.
            std::ostringstream text;
            writeDocumentJson(text, document, kDocumentDepth);
            rendered.writeJson = [kept = std::make_shared<const std::string>(std::move(text).str())](
                                     std::ostream& stream) { stream << *kept; };
        } else {
            auto kept = std::make_shared<const PreflightedDocument>(std::move(document));
            rendered.writeJson = [kept](std::ostream& stream) { writeDocumentJson(stream, *kept, kDocumentDepth); };
        }
    } else if (document.preflighted) {
        rendered.out = printableLinesText(format == QLatin1String("summary") || format == QLatin1String("pdf")
                                              ? summaryText(document, presetName, maxItems)
                                              : document.reportText + u'\n');
    }
    return rendered;
}

OrderedPrinter::OrderedPrinter(const QString& format, const QString& presetName, const PrinterOutput& output,
                               ProgressLine& progress, qsizetype documents)
    : m_format(format), m_presetName(presetName), m_output(output), m_progress(progress),
      m_done(static_cast<size_t>(documents))
{
    if (isJson(m_format))
        *m_output.results << preflightEnvelopeOpening(m_presetName) << std::flush;
}

void OrderedPrinter::deliver(qsizetype index, RenderedDocument document)
{
    std::lock_guard lock(m_mutex);
    m_done[static_cast<size_t>(index)] = std::move(document);
    for (; m_next < m_done.size() && m_done[m_next]; ++m_next) {
        print(*m_done[m_next]);
        m_done[m_next].reset();
    }
}

void OrderedPrinter::finish(const QStringList& paths)
{
    std::lock_guard lock(m_mutex);
    for (; m_next < m_done.size(); ++m_next) {
        if (m_done[m_next]) {
            print(*m_done[m_next]);
        } else if (isJson(m_format)) {
            PreflightedDocument cancelled;
            cancelled.path = paths.at(static_cast<qsizetype>(m_next));
            cancelled.name = QFileInfo(cancelled.path).fileName();
            cancelled.error = QStringLiteral("the preflight was cancelled");
            *m_output.results << (m_printedOne ? ",\n" : "");
            writeDocumentJson(*m_output.results, cancelled, kDocumentDepth);
            m_printedOne = true;
        }
    }
    if (isJson(m_format))
        *m_output.results << envelopeClosing(m_printedOne) << std::flush;
}

int OrderedPrinter::exitStatus() const
{
    return m_failed ? kExitFailure : (m_alerted ? kExitAlerts : kExitOk);
}

void OrderedPrinter::print(const RenderedDocument& document)
{
    m_progress.clear();
    m_failed = m_failed || document.failed;
    m_alerted = m_alerted || document.alerted;
    for (const QStringList& lines : {document.errors, m_output.quiet ? QStringList() : document.warnings})
        for (const QString& line : lines)
            std::cerr << "quillon preflight: " << printableText(document.path + QStringLiteral(": ") + line) << '\n';
    std::cerr << std::flush;
    std::ostream& results = *m_output.results;
    if (document.writeJson) {
        results << (m_printedOne ? ",\n" : "");
        document.writeJson(results);
        results << std::flush;
        m_printedOne = true;
    } else if (!document.out.empty()) {
        results << (m_printedOne ? "\n" : "") << document.out << std::flush;
        m_printedOne = true;
    }
    if (m_output.summaryToTerminal && !m_output.quiet && !document.terminal.empty()) {
        std::cout << (m_printedSummary ? "\n" : "") << document.terminal << std::flush;
        m_printedSummary = true;
    }
    m_progress.redraw();
}

} // namespace quillon::cli
