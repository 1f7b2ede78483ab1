#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTemporaryDir>

namespace quillon::test {

// A small IDML document built part by part in a temporary folder: the unpacked package in
// "package/", the document itself ("Doc.indd", empty) beside it, so that a "Document fonts"
// folder can sit next to it. Bodies are the XML inside each part's root element.
class FontColorFragment {
public:
    FontColorFragment();

    QString root() const { return m_dir.path(); }
    QString packageFolder() const { return m_dir.filePath(QStringLiteral("package")); }
    QString documentPath() const { return m_dir.filePath(QStringLiteral("Doc.indd")); }
    QString documentFontsFolder() const { return m_dir.filePath(QStringLiteral("Document fonts")); }

    FontColorFragment& styles(const QByteArray& body);
    FontColorFragment& fonts(const QByteArray& body);
    FontColorFragment& graphic(const QByteArray& body);
    FontColorFragment& story(const QByteArray& body);  // the inside of <Story>
    FontColorFragment& spread(const QByteArray& body); // the inside of <Spread>
    FontColorFragment& designMapExtra(const QByteArray& body);

    // Writes designmap.xml naming every part given so far; returns the package folder.
    QString write();

private:
    void writePart(const QString& relative, const QByteArray& root, const QByteArray& body);

    QTemporaryDir m_dir;
    QList<QByteArray> m_mapEntries;
    QByteArray m_designMapExtra;
    int m_stories = 0;
    int m_spreads = 0;
};

} // namespace quillon::test
