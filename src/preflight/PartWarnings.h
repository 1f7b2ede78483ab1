#pragma once

#include <QList>
#include <QString>

namespace quillon::preflight {

// A part of an IDML package that an inspection had to skip, and why. The rest of the document is
// still inspected; the warning tells the user that the result is incomplete.
struct PartWarning {
    QString part;    // its name inside the package: "Stories/Story_u1a.xml"
    QString problem; // "not readable XML at byte 14"

    // "Stories/Story_u1a.xml: not readable XML at byte 14"
    QString text() const { return part + QStringLiteral(": ") + problem; }
    bool operator==(const PartWarning&) const = default;
};
using PartWarnings = QList<PartWarning>;

// What an inspection found, with the parts it skipped.
template <typename T> struct Inspected {
    T found;
    PartWarnings skipped;
};

} // namespace quillon::preflight
