#include "cli/PreflightPrinter.h"

#include "app/BuildInfo.h"
#include "cli/Commands.h"
#include "cli/PreflightOutput.h"
#include "cli/PreflightSummary.h"
#include "cli/ProgressLine.h"
#include "cli/TerminalText.h"

#include <QFileInfo>
#include <QJsonDocument>

#include <iostream>
#include <memory>

namespace quillon::cli {

namespace {

bool isJson(const QString& format)
{
    return format == QLatin1String("json");
}

// The depth of a document's object: an item of the envelope's "documents" array.
constexpr int kDocumentDepth = 2;

// The envelope up to its documents: "quillonVersion" and "preset", then the opened array.
std::string envelopeOpening(const QString& presetName)
{
    const QJsonObject head{{QStringLiteral("quillonVersion"), QString::fromLatin1(app::kQuillonVersion)},
                           {QStringLiteral("preset"), presetName}};
    QByteArray text = QJsonDocument(head).toJson(QJsonDocument::Indented).trimmed();
    text.chop(1); // the closing brace
    return text.trimmed().toStdString() + ",\n    \"documents\": [\n";
}

} // namespace

RenderedDocument renderDocument(PreflightedDocument document, const QString& format, const QString& presetName,
                                std::optional<int> maxItems)
{
    RenderedDocument rendered;
    rendered.path = document.path;
    rendered.failed = !document.preflighted || !document.outputError.isEmpty();
    // A warning means a part of the document went unjudged: never a clean result.
    rendered.alerted = document.preflighted && (document.status.total != 0 || !document.warnings.isEmpty());
    if (!document.preflighted)
        rendered.problems << document.error;
    if (!document.outputError.isEmpty())
        rendered.problems << document.outputError;
    for (const QString& warning : document.warnings)
        rendered.problems << QStringLiteral("warning: ") + warning;
    if (isJson(format)) {
        auto kept = std::make_shared<const PreflightedDocument>(std::move(document));
        rendered.writeJson = [kept](std::ostream& stream) { writeDocumentJson(stream, *kept, kDocumentDepth); };
    } else if (document.preflighted) {
        rendered.out =
            printableLinesText(format == QLatin1String("summary") ? summaryText(document, presetName, maxItems)
                                                                  : document.reportText + u'\n');
    }
    return rendered;
}

OrderedPrinter::OrderedPrinter(const QString& format, const QString& presetName, ProgressLine& progress,
                               qsizetype documents)
    : m_format(format), m_presetName(presetName), m_progress(progress), m_done(static_cast<size_t>(documents))
{
    if (isJson(m_format))
        std::cout << envelopeOpening(m_presetName) << std::flush;
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
            std::cout << (m_printedOne ? ",\n" : "");
            writeDocumentJson(std::cout, cancelled, kDocumentDepth);
            m_printedOne = true;
        }
    }
    if (isJson(m_format))
        std::cout << (m_printedOne ? "\n" : "") << "    ]\n}\n" << std::flush;
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
    for (const QString& problem : document.problems)
        std::cerr << "quillon preflight: " << printableText(document.path + QStringLiteral(": ") + problem) << '\n';
    std::cerr << std::flush;
    if (document.writeJson) {
        std::cout << (m_printedOne ? ",\n" : "");
        document.writeJson(std::cout);
        std::cout << std::flush;
        m_printedOne = true;
    } else if (!document.out.empty()) {
        std::cout << (m_printedOne ? "\n" : "") << document.out << std::flush;
        m_printedOne = true;
    }
    m_progress.redraw();
}

} // namespace quillon::cli
