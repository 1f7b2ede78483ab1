#include "support/FontColorFragment.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>

namespace quillon::test {

namespace {
const QByteArray kNamespace =
    "xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" DOMVersion=\"20.0\"";
} // namespace

FontColorFragment::FontColorFragment()
{
    QDir(m_dir.path()).mkpath(QStringLiteral("package"));
    writeAll(documentPath(), {});
}

void FontColorFragment::writePart(const QString& relative, const QByteArray& root, const QByteArray& body)
{
    const QString path = packageFolder() + u'/' + relative;
    QDir().mkpath(QFileInfo(path).absolutePath());
    writeAll(path, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<idPkg:" + root + ' ' + kNamespace +
                       ">\n" + body + "\n</idPkg:" + root + ">\n");
    m_mapEntries.append("<idPkg:" + root + " src=\"" + relative.toUtf8() + "\" />");
}

FontColorFragment& FontColorFragment::styles(const QByteArray& body)
{
    writePart(QStringLiteral("Resources/Styles.xml"), "Styles", body);
    return *this;
}

FontColorFragment& FontColorFragment::fonts(const QByteArray& body)
{
    writePart(QStringLiteral("Resources/Fonts.xml"), "Fonts", body);
    return *this;
}

FontColorFragment& FontColorFragment::graphic(const QByteArray& body)
{
    writePart(QStringLiteral("Resources/Graphic.xml"), "Graphic", body);
    return *this;
}

FontColorFragment& FontColorFragment::story(const QByteArray& body)
{
    const QByteArray id = "s" + QByteArray::number(++m_stories);
    writePart(QStringLiteral("Stories/Story_%1.xml").arg(QString::fromLatin1(id)), "Story",
              "<Story Self=\"" + id + "\">" + body + "</Story>");
    return *this;
}

FontColorFragment& FontColorFragment::spread(const QByteArray& body)
{
    const QByteArray id = "p" + QByteArray::number(++m_spreads);
    writePart(QStringLiteral("Spreads/Spread_%1.xml").arg(QString::fromLatin1(id)), "Spread",
              "<Spread Self=\"" + id + "\">" + body + "</Spread>");
    return *this;
}

FontColorFragment& FontColorFragment::designMapExtra(const QByteArray& body)
{
    m_designMapExtra += body;
    return *this;
}

QString FontColorFragment::write()
{
    writeAll(packageFolder() + QStringLiteral("/designmap.xml"),
             "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<Document " + kNamespace + ">\n" +
                 m_designMapExtra + '\n' + m_mapEntries.join('\n') + "\n</Document>\n");
    return packageFolder();
}

} // namespace quillon::test
