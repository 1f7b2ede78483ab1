#pragma once

#include "cli/PreflightJob.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <iosfwd>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace quillon::cli {

class ProgressLine;

// One document's share of the output, made on the thread that preflighted it.
struct RenderedDocument {
    QString path;
    QStringList errors;   // lines for standard error: why it failed, a result that was not written
    QStringList warnings; // lines for standard error unless quiet
    bool failed = false;
    bool alerted = false;
    std::string out;      // its part of the results: the summary or the report
    std::string terminal; // the summary for the terminal when the results go to a file
    // Writes its JSON object in place of `out`; made as it is written, so that the text of a
    // document of many links is never held whole.
    std::function<void(std::ostream&)> writeJson;
};

// The output formats: "summary", "text", "tab", "json". `withSummary` adds the summary for the
// terminal, which shows at most `maxItems` lines per list (all when not given).
RenderedDocument renderDocument(PreflightedDocument document, const QString& format, const QString& presetName,
                                bool withSummary, std::optional<int> maxItems = std::nullopt);

// Where a run's output goes.
struct PrinterOutput {
    std::ostream* results = nullptr; // the chosen format: standard output or the file of --output
    bool summaryToTerminal = false;  // the results go to a file and the summary to standard output
    bool quiet = false;              // nothing but errors, on standard error
};

// Prints each document when it and every document before it are done, so that the output keeps
// the order of the command line whatever order the jobs end in. JSON is written as it comes: the
// envelope's opening first, each document in turn, the closing at the end. Safe to call from
// several threads.
class OrderedPrinter {
public:
    OrderedPrinter(const QString& format, const QString& presetName, const PrinterOutput& output,
                   ProgressLine& progress, qsizetype documents);

    void deliver(qsizetype index, RenderedDocument document);
    // What is left after an interruption: documents done are printed, in JSON the others are
    // marked as cancelled; then the envelope is closed.
    void finish(const QStringList& paths);

    int exitStatus() const;

private:
    void print(const RenderedDocument& document);

    std::mutex m_mutex;
    const QString m_format;
    const QString m_presetName;
    const PrinterOutput m_output;
    ProgressLine& m_progress;
    std::vector<std::optional<RenderedDocument>> m_done;
    size_t m_next = 0;
    bool m_printedOne = false;
    bool m_printedSummary = false;
    bool m_failed = false;
    bool m_alerted = false;
};

} // namespace quillon::cli
