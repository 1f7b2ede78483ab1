#include "host/ColorScript.h"

#include "host/FontColorScripts.h"
#include "inspection/ColorRecordKeys.h"

#include <QSet>

using namespace quillon::inspection;

namespace quillon::host {

namespace {

QString registrationBlock(const QString& documentName)
{
    const QString document = scriptStringContent(documentName);
    return QStringLiteral("\ttry\n"
                          "\t\tset regSwatch to swatch \"Registration\" of document \"%1\"\n"
                          "\t\tset find text preferences to nothing\n"
                          "\t\tset fill color of find text preferences to regSwatch\n"
                          "\t\ttell document \"%1\" to set hits to find text\n"
                          "\t\tset regCount to regCount + (count hits)\n"
                          "\t\tset find text preferences to nothing\n"
                          "\t\tset stroke color of find text preferences to regSwatch\n"
                          "\t\ttell document \"%1\" to set hits to find text\n"
                          "\t\tset regCount to regCount + (count hits)\n"
                          "\tend try\n"
                          "\tset find text preferences to nothing\n")
        .arg(document);
}

QVariantList valuesFromScript(const QString& text)
{
    QVariantList values;
    for (const QString& item : text.split(u' ', Qt::SkipEmptyParts)) {
        bool ok = false;
        const double value = scriptNumber(item).toDouble(&ok);
        if (ok)
            values.append(value);
    }
    return values;
}

} // namespace

QString colorsScript(const QString& inDesignName, const QString& documentName, const QString& registrationInTextFlag)
{
    return scriptDocumentHead(inDesignName, documentName) +
           QStringLiteral("\t\tset oldDelimiters to AppleScript's text item delimiters\n"
                          "\t\tset AppleScript's text item delimiters to \" \"\n"
                          "\t\trepeat with s in (get every swatch)\n"
                          "\t\t\tset sName to name of s\n"
                          "\t\t\tset sClass to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset sClass to (class of s) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset sModel to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset sModel to (model of s) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset sSpace to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset sSpace to (space of s) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset sValues to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset sValues to (color value of s) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset out to out & sName & fieldSep & sClass & fieldSep & sModel & fieldSep & sSpace & "
                          "fieldSep & sValues & recordSep\n"
                          "\t\tend repeat\n"
                          "\t\tset out to out & sectionSep\n"
                          "\t\trepeat with s in (get unused swatches)\n"
                          "\t\t\tset out to out & (name of s) & recordSep\n"
                          "\t\tend repeat\n"
                          "\t\tset AppleScript's text item delimiters to oldDelimiters\n"
                          "\tend tell\n"
                          "\tset regCount to 0\n") +
           (countsRegistrationInText(registrationInTextFlag) ? registrationBlock(documentName) : QString()) +
           QStringLiteral("\tset out to out & sectionSep & (regCount as string)\n"
                          "end tell\n"
                          "return out\n");
}

ColorInspection colorInspectionFromScriptAnswer(const QString& answer)
{
    const QStringList sections = scriptSections(answer, 3);
    ColorInspection inspection;
    QSet<QString> unused;
    for (const QStringList& fields : scriptRecords(sections[1], 1))
        unused.insert(fields[0]);
    for (const QStringList& fields : scriptRecords(sections[0], 5)) {
        const QString& name = fields[0];
        QString model = fields[2];
        if (model.isEmpty() && fields[1] == QLatin1String("gradient"))
            model = kColorModelGradient;
        const bool isUsed = !unused.contains(name);
        if (!isUsed)
            inspection.namesOfUnusedColors.append(name);
        inspection.records.append(QVariantMap{
            {kColorNameKey, name},
            {kColorModelKey, model},
            {kColorSpaceKey, fields[3]},
            {kColorValuesListKey, valuesFromScript(fields[4])},
            {kColorUsedKey, isUsed ? kColorUsed : kColorUnused},
        });
    }
    inspection.registrationInTextCount = sections[2].trimmed().toInt();
    return inspection;
}

} // namespace quillon::host
