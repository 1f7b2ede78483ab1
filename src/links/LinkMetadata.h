#pragma once

#include <QString>
#include <QVariantMap>

#include <pugixml.hpp>

#include <optional>
#include <string_view>

namespace quillon::app {
class AlertSink;
}

namespace quillon::links {

class LinkedFileReader;

// Completes one link record from the XMP packet the package keeps for its graphic and, for EPS
// and older Illustrator files, from the head of the file itself: profile, TIFF compression, EPS
// resolution and colours, nested links, Illustrator fonts and plates. Only keys that are found
// are written; what is missing leaves the record as it was.
class LinkMetadata {
public:
    // `record` is the link record being built; `path` its file and `linkedFileExists` whether that
    // file is present; `documentFolder` resolves relative nested URIs.
    LinkMetadata(QVariantMap& record, const QString& path, bool linkedFileExists, const LinkedFileReader& reader,
                 app::AlertSink* alerts, const QString& documentFolder = {});

    // The packet of the graphic; false when it is empty, does not parse or has no description.
    // The flags come from the record's kind: "TIFF", "EPS", contains "ai", contains "InDesign".
    bool iccProfileAndMoreFromMetadataStr(std::string_view packet, bool isTIFF, bool orEPS, bool orAI, bool orINDD);

    // The EPS file itself: a raster (Photoshop) EPS or a vector one, by its first 1500 bytes.
    bool processEPS();

    // "3000000/10000" gives "300"; "" when the entry is not a ratio of numbers.
    static QString resolutionFromMetadataEntry(const QString& entry);

    // The first rdf:Description of the first rdf:RDF under the root; empty when either is missing.
    static pugi::xml_node descriptionNodeFromXMLDoc(const pugi::xml_document& document);

    // The spot colours between "DocumentCustomColors: (" and the "CMYKCustomColor" comment (or,
    // when `orRGBEnd`, the "RGBCustomColor" one): count text and names separated by "\r". None
    // when the markers are missing or out of order.
    struct CustomColors {
        QString count;
        QString list;
    };
    static std::optional<CustomColors> customColorsInText(const QString& text, bool orRGBEnd);

    // The steps, public for the tests.
    void linksFromDescriptionNode(pugi::xml_node description);
    bool aiFontsAndColorsFromDescriptionNode(pugi::xml_node description);
    void aiFontsFromXMLElements(pugi::xml_node fonts);
    void aiColorsFromXMLElements(pugi::xml_node plateNames);
    bool aiFontsAndColorsPreCS3();
    void propertiesOfRasterEPS(bool hasImageData, QString read1500);
    bool vectorEPSColorsAndFonts(const QString& read1500);

private:
    void setEffectiveResolutionFromActual(double actual);
    QString nestedLinkPath(const QString& value, bool isURL) const;

    QVariantMap& m_record;
    QString m_path;
    bool m_linkedFileExists;
    const LinkedFileReader& m_reader;
    app::AlertSink* m_alerts;
    QString m_documentFolder;
};

} // namespace quillon::links
