#include "host/ParaStylesScript.h"

#include "host/FontColorScripts.h"
#include "inspection/FontRecords.h"

#include <QHash>

using namespace quillon::inspection;

namespace quillon::host {

namespace {

const QString kNoParagraphStyle = QStringLiteral("[No Paragraph Style]");

// "id of applied paragraph style of every paragraph of X" answers a list in one event; joined by
// the record separator it adds every paragraph's style to the answer.
QString paragraphStylesOf(const QString& container, const QString& indent)
{
    return indent + QStringLiteral("try\n") + indent +
           QStringLiteral("\tset ids to id of applied paragraph style of every paragraph of %1\n").arg(container) +
           indent + QStringLiteral("\tif ids is not {} then set out to out & (ids as string) & recordSep\n") + indent +
           QStringLiteral("end try\n");
}

} // namespace

QString paraStylesScript(const QString& inDesignName, const QString& documentName)
{
    return scriptDocumentHead(inDesignName, documentName) +
           QStringLiteral("\t\trepeat with ps in (get all paragraph styles)\n"
                          "\t\t\tset pId to (id of ps) as string\n"
                          "\t\t\tset pName to name of ps\n"
                          "\t\t\tset pBased to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset b to based on of ps\n"
                          "\t\t\t\ttry\n"
                          "\t\t\t\t\tset pBased to name of b\n"
                          "\t\t\t\ton error\n"
                          "\t\t\t\t\tset pBased to b as string\n"
                          "\t\t\t\tend try\n"
                          "\t\t\tend try\n"
                          "\t\t\tset pFont to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset f to applied font of ps\n"
                          "\t\t\t\ttry\n"
                          "\t\t\t\t\tset pFont to font family of f\n"
                          "\t\t\t\ton error\n"
                          "\t\t\t\t\tset pFont to f as string\n"
                          "\t\t\t\tend try\n"
                          "\t\t\tend try\n"
                          "\t\t\tset pStyle to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset pStyle to font style of ps\n"
                          "\t\t\tend try\n"
                          "\t\t\tset pSize to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset pSize to (point size of ps) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset pLeading to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset pLeading to (leading of ps) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset pAuto to \"\"\n"
                          "\t\t\ttry\n"
                          "\t\t\t\tset pAuto to (auto leading of ps) as string\n"
                          "\t\t\tend try\n"
                          "\t\t\tset out to out & pId & fieldSep & pName & fieldSep & pBased & fieldSep & pFont & "
                          "fieldSep & pStyle & fieldSep & pSize & fieldSep & pLeading & fieldSep & pAuto & recordSep\n"
                          "\t\tend repeat\n"
                          "\t\tset out to out & sectionSep\n"
                          "\t\tset oldDelimiters to AppleScript's text item delimiters\n"
                          "\t\tset AppleScript's text item delimiters to recordSep\n"
                          "\t\trepeat with st in (get every story)\n") +
           paragraphStylesOf(QStringLiteral("st"), QStringLiteral("\t\t\t")) +
           QStringLiteral("\t\t\trepeat with t in (get every table of st)\n") +
           paragraphStylesOf(QStringLiteral("every cell of t"), QStringLiteral("\t\t\t\t")) +
           QStringLiteral("\t\t\tend repeat\n"
                          "\t\t\trepeat with fn in (get every footnote of st)\n") +
           paragraphStylesOf(QStringLiteral("fn"), QStringLiteral("\t\t\t\t")) +
           QStringLiteral("\t\t\tend repeat\n"
                          "\t\tend repeat\n"
                          "\t\tset AppleScript's text item delimiters to oldDelimiters\n"
                          "\tend tell\n"
                          "end tell\n"
                          "return out\n");
}

QList<ParaStyleUse> paraStyleUsesFromScriptAnswer(const QString& answer)
{
    const QStringList sections = scriptSections(answer, 2);
    QHash<QString, int> counts;
    for (const QStringList& fields : scriptRecords(sections[1], 1))
        ++counts[fields[0].trimmed()];

    QList<ParaStyleUse> uses;
    for (const QStringList& fields : scriptRecords(sections[0], 8)) {
        ParaStyleUse use;
        use.name = fields[1];
        use.paragraphs = counts.value(fields[0].trimmed());
        if (use.name == kNoParagraphStyle && use.paragraphs == 0)
            continue;
        if (fields[2] != use.name)
            use.basedOn = fields[2];
        use.font = fontDisplayName(fields[3], fields[4]);
        const QString size = scriptNumber(fields[5]);
        use.size = pointsText(size);
        use.leading = leadingText(scriptNumber(fields[6]), size, scriptNumber(fields[7]));
        uses.append(use);
    }
    return uses;
}

} // namespace quillon::host
