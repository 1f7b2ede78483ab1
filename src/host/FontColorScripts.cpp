#include "host/FontColorScripts.h"

#include "app/Strings.h"

namespace quillon::host {

QString scriptDocumentHead(const QString& inDesignName, const QString& documentName)
{
    return QStringLiteral("tell application \"%1\"\n"
                          "\tset fieldSep to character id 31\n"
                          "\tset recordSep to character id 30\n"
                          "\tset sectionSep to character id 29\n"
                          "\tset out to \"\"\n"
                          "\ttell document \"%2\"\n")
        .arg(scriptStringContent(inDesignName), scriptStringContent(documentName));
}

QString scriptStringContent(const QString& text)
{
    return app::stringByEscapingCharacters(text, {QStringLiteral("\\"), QStringLiteral("\"")});
}

QList<QStringList> scriptRecords(const QString& section, int fields)
{
    QList<QStringList> records;
    for (const QString& record : section.split(QChar(kScriptRecordSeparator))) {
        if (record.isEmpty())
            continue;
        QStringList parts = record.split(QChar(kScriptFieldSeparator));
        if (parts.size() < fields)
            continue;
        parts.resize(fields);
        records.append(parts);
    }
    return records;
}

QStringList scriptSections(const QString& answer, int count)
{
    QStringList sections = answer.split(QChar(kScriptSectionSeparator));
    sections.resize(count);
    return sections;
}

QString scriptNumber(QString text)
{
    return text.trimmed().replace(u',', u'.');
}

} // namespace quillon::host
