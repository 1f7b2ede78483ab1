#pragma once

#include "inspection/DocInfo.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace quillon::results {

// One alert of the document checks: the preset key of the rule it broke and what was measured
// beside the rule ("Bleed 0 mm < 3 mm").
struct DocumentAlert {
    QString rule; // "minBleed", "minSlug", "pageSize", "samePageSize", "minPages" or "maxPages"
    QString text;
    bool operator==(const DocumentAlert&) const = default;
};

struct DocumentJudgement {
    bool checked = false; // the preset holds document checks; without them nothing is shown or counted
    QList<DocumentAlert> alerts;
    // Checks that could not be made: a malformed or unknown key of the preset, a fact the document
    // does not give. Never a silent pass.
    QStringList warnings;
};

// A length as the checks store it: points, with the unit the user gave it in, which the alerts
// are then shown in. "3mm", "3 mm", "0.125in", "8.5pt", "1cm"; nothing for text without a unit, a
// negative or an unreadable number.
struct DocumentLength {
    double points = 0;
    QString unit;
};
std::optional<DocumentLength> documentLengthOfText(const QString& text);
// "pt", "mm", "cm", "in".
QStringList documentUnitNames();

// Judges the document information by a checkup preset's "Document" dictionary.
DocumentJudgement judgeDocument(const QVariantMap& checks, const inspection::QNDocInfo& info);

} // namespace quillon::results
