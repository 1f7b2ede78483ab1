#include "host/FontScript.h"

#include "host/FontColorScripts.h"
#include "inspection/FontRecordKeys.h"
#include "inspection/FontRecords.h"

using namespace quillon::inspection;

namespace quillon::host {

namespace {

// Fonts that Adobe Fonts activates live in its synchronisation folder.
const QString kAdobeFontsFolderMarker = QStringLiteral("/CoreSync/plugins/livetype/");

QString statusFromScript(const QString& status)
{
    if (status == QLatin1String("not available"))
        return kFontStatusMissing;
    if (status.isEmpty())
        return kFontStatusUnknown;
    return status;
}

QString pathFromScript(const QString& location)
{
    if (location.isEmpty())
        return kFontNoPath;
    if (location.contains(kAdobeFontsFolderMarker) || location.contains(kFontAdobeFontsMarker))
        return kFontAdobeFontsPath;
    return location;
}

QString embeddingFromScript(const QString& allowed)
{
    if (allowed == QLatin1String("true"))
        return kFontEmbedYes;
    if (allowed == QLatin1String("false"))
        return kFontEmbedNo;
    return kFontEmbedUnknown;
}

} // namespace

QString fontsScript(const QString& inDesignName, const QString& documentName)
{
    return scriptDocumentHead(inDesignName, documentName) +
           QStringLiteral("\t\trepeat with f in (get every font)\n"
                          "\t\t\tset fName to name of f\n"
                          "\t\t\tset fType to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset fType to (font type of f) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset fStatus to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset fStatus to (status of f) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset fPostScript to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset fPostScript to PostScript name of f\n"
                          "\t\t\tend try\n"
                          "\t\t\tset fLocation to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset fLocation to location of f\n"
                          "\t\t\tend try\n"
                          "\t\t\tset fEmbed to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset fEmbed to (allow PDF embedding of f) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset out to out & fName & fieldSep & fType & fieldSep & fStatus & fieldSep & "
                          "fPostScript & fieldSep & fLocation & fieldSep & fEmbed & recordSep\n"
                          "\t\tend repeat\n"
                          "\tend tell\n"
                          "end tell\n"
                          "return out\n");
}

QVariantList fontRecordsFromScriptAnswer(const QString& answer)
{
    QVariantList records;
    for (const QStringList& fields : scriptRecords(answer, 6)) {
        QString name = fields[0];
        name.replace(u'\t', u' ');
        records.append(QVariantMap{
            {kFontNameKey, name},
            {kFontTypeKey, fields[1].isEmpty() ? kFontTypeUnknown : fields[1]},
            {kFontStatusKey, statusFromScript(fields[2])},
            {kFontPsFontKey, fields[3]},
            {kFontPathKey, pathFromScript(fields[4])},
            {kFontEmbedKey, embeddingFromScript(fields[5])},
        });
    }
    sortFontRecordsByName(records);
    return records;
}

} // namespace quillon::host
