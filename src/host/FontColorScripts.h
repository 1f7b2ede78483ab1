#pragma once

#include "app/Result.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace quillon::host {

// Runs one script in InDesign and gives back the text the script returned, or an Error carrying
// InDesign's message. The AppleScript host adapts its script runner to this; tests record.
using ScriptTextRunner = std::function<app::Result<QString>(const QString& source)>;

// The inspection scripts answer with one text: sections separated by U+001D, records by U+001E,
// fields by U+001F. None of these can occur in a name, unlike tabs (InDesign names a font
// "Family<tab>Style") and line ends.
inline constexpr char16_t kScriptSectionSeparator = 0x1D;
inline constexpr char16_t kScriptRecordSeparator = 0x1E;
inline constexpr char16_t kScriptFieldSeparator = 0x1F;

// The opening every inspection script shares: "tell application" and "tell document" around the
// lines that set `fieldSep`, `recordSep`, `sectionSep` and an empty `out`.
QString scriptDocumentHead(const QString& inDesignName, const QString& documentName);

// Text for inside a quoted AppleScript string: backslashes and quotation marks escaped.
QString scriptStringContent(const QString& text);

// One section of an answer split into records and fields. Records with fewer than `fields` fields
// are dropped (a partial answer), extra fields are ignored; a trailing empty record is not one.
QList<QStringList> scriptRecords(const QString& section, int fields);

// Sections of an answer; missing trailing sections come back empty, so there are always `count`.
QStringList scriptSections(const QString& answer, int count);

// A number as AppleScript wrote it in the user's locale ("12,5") in the form the program reads.
QString scriptNumber(QString text);

} // namespace quillon::host
