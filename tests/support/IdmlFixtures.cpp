#include "support/IdmlFixtures.h"

#include "idml/IdmlArchiveWriter.h"
#include "idml/IdmlDocument.h"

#include <QDir>
#include <QFileInfo>

#include <stdexcept>

#include <gtest/gtest.h>

using namespace quillon::idml;

namespace quillon::test {

void writeIdml(const QString& path, const ArchiveEntries& entries)
{
    auto writer = idml::IdmlArchiveWriter::create(path);
    ASSERT_TRUE(writer.ok()) << writer.error().text().toStdString();
    ASSERT_TRUE(writer->addMimetype().ok());
    for (const auto& [name, bytes] : entries) {
        const app::Status added = writer->addFile(name, bytes);
        ASSERT_TRUE(added.ok()) << added.error().text().toStdString();
    }
    const app::Status closed = writer->close();
    ASSERT_TRUE(closed.ok()) << closed.error().text().toStdString();
}

QByteArray designmapXml(const QStringList& parts, const QString& domVersion)
{
    QString xml = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                                 "<Document xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" "
                                 "DOMVersion=\"%1\" Self=\"d\">\n")
                      .arg(domVersion);
    for (const QString& part : parts) {
        const char* kind = part.startsWith(QLatin1String("Spreads/"))         ? "Spread"
                           : part.startsWith(QLatin1String("Stories/"))       ? "Story"
                           : part.startsWith(QLatin1String("MasterSpreads/")) ? "MasterSpread"
                                                                              : "Preferences";
        xml += QStringLiteral("<idPkg:%1 src=\"%2\"/>\n").arg(QLatin1String(kind), part);
    }
    return (xml + QStringLiteral("</Document>\n")).toUtf8();
}

QByteArray spreadXml(const QStringList& pageBounds, const QByteArray& extraContent)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                     "<idPkg:Spread xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" "
                     "DOMVersion=\"20.0\">\n<Spread Self=\"s1\" PageCount=\"" +
                     QByteArray::number(pageBounds.size()) +
                     "\" BindingLocation=\"0\" ItemTransform=\"1 0 0 1 0 0\">\n<FlattenerPreference/>\n";
    int n = 1;
    for (const QString& bounds : pageBounds) {
        xml += "<Page Self=\"p" + QByteArray::number(n) + "\" Name=\"" + QByteArray::number(n) + "\"";
        if (!bounds.isEmpty())
            xml += " GeometricBounds=\"" + bounds.toUtf8() + "\"";
        xml += "/>\n";
        ++n;
    }
    return xml + extraContent + "</Spread>\n</idPkg:Spread>\n";
}

QByteArray preferencesXml(const QString& viewAttributes, const QString& documentAttributes)
{
    QString xml = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                                 "<idPkg:Preferences xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/"
                                 "packaging\" DOMVersion=\"20.0\">\n");
    if (!viewAttributes.isNull())
        xml += QStringLiteral("<ViewPreference %1/>\n").arg(viewAttributes);
    if (!documentAttributes.isNull())
        xml += QStringLiteral("<DocumentPreference %1/>\n").arg(documentAttributes);
    return (xml + QStringLiteral("</idPkg:Preferences>\n")).toUtf8();
}

ArchiveEntries minimalIdml()
{
    return {
        {QStringLiteral("designmap.xml"),
         designmapXml({QStringLiteral("Resources/Preferences.xml"), QStringLiteral("Spreads/Spread_s1.xml")})},
        {QStringLiteral("Resources/Preferences.xml"),
         preferencesXml(QStringLiteral("HorizontalMeasurementUnits=\"Points\" VerticalMeasurementUnits=\"Points\""),
                        QStringLiteral("DocumentBleedTopOffset=\"0\" DocumentBleedUniformSize=\"true\""))},
        {QStringLiteral("Spreads/Spread_s1.xml"), spreadXml({QStringLiteral("0 0 792 612")})},
    };
}

} // namespace quillon::test

namespace quillon::test {

std::shared_ptr<const idml::IdmlDocument> readPackage(const QString& path)
{
    const auto document = QFileInfo(path).isDir() ? idml::IdmlDocument::fromFolder(path)
                                                  : idml::IdmlDocument::open(path, QDir::tempPath());
    if (!document)
        throw std::runtime_error(document.error().text().toStdString());
    return *document;
}

} // namespace quillon::test
