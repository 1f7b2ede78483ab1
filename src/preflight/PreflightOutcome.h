#pragma once

#include "app/Result.h"
#include "inspection/ColorInspection.h"
#include "inspection/DocInfo.h"
#include "inspection/DocumentRecord.h"

#include <QList>
#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace quillon::preflight {

// What the results are judged by, read once as a preflight starts.
struct JudgingInputs {
    QVariantMap preset; // the checkup preset; empty: the results are shown unjudged
    // The preset asks the colour inspection to count Registration applied to text.
    bool registrationInText = false;
};

// How a preflight ended.
enum class PreflightEnding {
    Completed,  // every stage ran and the results were handed on
    Cancelled,  // the flag was set, by the user or because the export failed
    NoDocument, // the host named no document to preflight
};

// Everything one preflight found, handed to whoever shows, reports or stores it. The records are
// as the stages found them; judging them by the preset is the results' business.
struct PreflightOutcome {
    PreflightEnding ended = PreflightEnding::NoDocument;
    inspection::DocumentRecord record;
    inspection::QNDocInfo docInfo;
    JudgingInputs judging;

    // The link analysis' truth value (links were found) and its records as the link data file
    // holds them: the document's path to its group row. Empty when the analysis did not run, and
    // once the results sink has taken the records over to judge them.
    bool foundLinks = false;
    QVariantMap linkData;
    // The inspections' records; nothing when an inspection did not run or failed.
    std::optional<QVariantList> fonts;
    std::optional<inspection::ColorInspection> colors;

    // Why the export or the unpacking failed, when it did (the preflight was then cancelled).
    std::optional<app::Error> exportError;
    // What the user was alerted to while the stages ran (a file that could not be read, a failed
    // link analysis), in the order shown.
    QList<app::Error> alerts;
    // What failed without stopping the preflight, each once, in the order met. A preflight with
    // warnings is not a clean one.
    QList<app::Error> warnings;

    // What the font and colour data files hold of this document (empty when not inspected).
    QVariantMap fontData() const;
    QVariantMap colorData() const;
};

} // namespace quillon::preflight
