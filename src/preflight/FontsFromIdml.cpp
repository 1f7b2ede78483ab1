#include "preflight/FontsFromIdml.h"

#include "app/XmlFile.h"
#include "preflight/FontColorParts.h"
#include "preflight/FontFiles.h"
#include "preflight/FontRecordKeys.h"
#include "preflight/FontRecords.h"
#include "preflight/ParaStylesSheet.h"
#include "preflight/ParaStylesStories.h"

#include <QHash>
#include <QSet>

#include <unordered_set>

namespace quillon::preflight {

namespace {

struct UsedFont {
    QString family;
    QString style;
    QString key() const { return family + u'\x1f' + style; }
};

// Collects the fonts of the text, in the order first met.
class UsedFontCollector final : public StoryTextVisitor {
public:
    explicit UsedFontCollector(const TextStyleSheet& sheet) : m_sheet(sheet) {}

    const QList<UsedFont>& fonts() const { return m_fonts; }

    void characters(pugi::xml_node paragraphRange, pugi::xml_node characterRange) override
    {
        const pugi::xml_node range = characterRange ? characterRange : paragraphRange;
        if (!m_seenRanges.insert(range.internal_object()).second)
            return;
        add(m_sheet.runValue(paragraphRange, characterRange, "AppliedFont"),
            m_sheet.runValue(paragraphRange, characterRange, "FontStyle"));

        const QString paragraphStyle = QString::fromUtf8(paragraphRange.attribute("AppliedParagraphStyle").value());
        const QString characterStyle = QString::fromUtf8(characterRange.attribute("AppliedCharacterStyle").value());
        addStyled(paragraphStyle, characterStyle);
        if (!m_seenParagraphStyles.contains(paragraphStyle)) {
            m_seenParagraphStyles.insert(paragraphStyle);
            addParagraphStyleExtras(paragraphStyle);
        }
    }

    void paragraphEnded(std::string_view) override {}

private:
    void add(const QString& family, const QString& style)
    {
        const UsedFont font{withoutIdPrefix(family), withoutIdPrefix(style)};
        if (font.family.isEmpty())
            return;
        if (!m_seenFonts.contains(font.key())) {
            m_seenFonts.insert(font.key());
            m_fonts.append(font);
        }
    }

    // What the applied styles give, whatever the run overrides.
    void addStyled(const QString& paragraphStyle, const QString& characterStyle)
    {
        const QString key = paragraphStyle + u'\x1f' + characterStyle;
        if (m_seenStylePairs.contains(key))
            return;
        m_seenStylePairs.insert(key);
        add(m_sheet.styledRunValue(paragraphStyle, characterStyle, "AppliedFont"),
            m_sheet.styledRunValue(paragraphStyle, characterStyle, "FontStyle"));
    }

    // Character styles a paragraph style applies to parts of its text, and its bullet font.
    void addParagraphStyleExtras(const QString& paragraphStyle)
    {
        for (const char* list : {"AllNestedStyles", "AllGREPStyles", "AllLineStyles"}) {
            const pugi::xml_node element = m_sheet.paragraphPropertyElement(paragraphStyle, list);
            for (const pugi::xml_node item : element.children("ListItem"))
                addStyled(paragraphStyle, QString::fromUtf8(item.child("AppliedCharacterStyle").text().get()));
        }
        const QString listType = m_sheet.paragraphValue(paragraphStyle, "BulletsAndNumberingListType");
        if (listType == QLatin1String("BulletList")) {
            addStyled(paragraphStyle, m_sheet.paragraphValue(paragraphStyle, "BulletsCharacterStyle"));
            const QString bulletFont = withoutIdPrefix(m_sheet.paragraphValue(paragraphStyle, "BulletsFont"));
            if (!bulletFont.isEmpty()) {
                QString bulletStyle = withoutIdPrefix(m_sheet.paragraphValue(paragraphStyle, "BulletsFontStyle"));
                if (bulletStyle.isEmpty())
                    bulletStyle = m_sheet.styledRunValue(paragraphStyle, {}, "FontStyle");
                add(bulletFont, bulletStyle);
            }
        } else if (listType == QLatin1String("NumberedList")) {
            addStyled(paragraphStyle, m_sheet.paragraphValue(paragraphStyle, "NumberingCharacterStyle"));
        }
    }

    const TextStyleSheet& m_sheet;
    QList<UsedFont> m_fonts;
    QSet<QString> m_seenFonts;
    QSet<QString> m_seenStylePairs;
    QSet<QString> m_seenParagraphStyles;
    std::unordered_set<const void*> m_seenRanges;
};

// Resources/Fonts.xml: the document's description of each face, and its composite fonts.
class FontCatalog {
public:
    app::Status load(const QString& path)
    {
        if (path.isEmpty())
            return {};
        auto doc = app::loadXmlFile(path);
        if (!doc)
            return doc.error();
        m_doc = std::move(doc).value();
        const pugi::xml_node root = m_doc->document_element();
        for (const pugi::xml_node family : root.children("FontFamily")) {
            for (const pugi::xml_node font : family.children("Font")) {
                QString familyName = QString::fromUtf8(font.attribute("FontFamily").value());
                if (familyName.isEmpty())
                    familyName = QString::fromUtf8(family.attribute("Name").value());
                const UsedFont key{familyName, QString::fromUtf8(font.attribute("FontStyleName").value())};
                m_faces.insert(key.key(), font);
            }
        }
        for (const pugi::xml_node composite : root.children("CompositeFont")) {
            QList<UsedFont> parts;
            for (const pugi::xml_node entry : composite.children("CompositeFontEntry"))
                parts.append(UsedFont{withoutIdPrefix(TextStyleSheet::localValue(entry, "AppliedFont")),
                                      withoutIdPrefix(TextStyleSheet::localValue(entry, "FontStyle"))});
            m_composites.insert(withoutIdPrefix(QString::fromUtf8(composite.attribute("Name").value())), parts);
        }
        return {};
    }

    pugi::xml_node face(const UsedFont& font) const { return m_faces.value(font.key()); }

    // A composite font stands for its parts; any other font for itself.
    QList<UsedFont> expand(const UsedFont& font) const
    {
        const auto it = m_composites.constFind(font.family);
        if (it == m_composites.cend())
            return {font};
        QList<UsedFont> parts;
        for (const UsedFont& part : *it)
            if (!part.family.isEmpty() && !m_composites.contains(part.family))
                parts.append(part);
        return parts;
    }

private:
    std::shared_ptr<pugi::xml_document> m_doc;
    QHash<QString, pugi::xml_node> m_faces;
    QHash<QString, QList<UsedFont>> m_composites;
};

QString attributeText(pugi::xml_node node, const char* name)
{
    return QString::fromUtf8(node.attribute(name).value());
}

QVariantMap fontRecord(const UsedFont& font, pugi::xml_node face, FontFileFinder& finder)
{
    QString name = attributeText(face, "Name");
    if (name.isEmpty())
        name = fontDisplayName(font.family, font.style);
    const QString postScriptName = withoutIdPrefix(attributeText(face, "PostScriptName"));
    const QString idmlStatus = attributeText(face, "Status");
    const QString typekitId = withoutIdPrefix(attributeText(face, "TypekitID"));

    const std::optional<FontFile> file = finder.find(postScriptName, font.family, font.style);
    QString status = kFontStatusMissing;
    if (file) {
        if (idmlStatus == QLatin1String("Fauxed"))
            status = kFontStatusFauxed;
        else if (idmlStatus == QLatin1String("Substituted"))
            status = kFontStatusSubstituted;
        else
            status = kFontStatusInstalled;
    }
    QString type = fontTypeFromIdml(attributeText(face, "FontType"));
    if (type.isEmpty())
        type = file ? finder.fontType(*file) : kFontTypeUnknown;

    QString path = file ? file->path : kFontNoPath;
    if (!typekitId.isEmpty())
        path = kFontAdobeFontsPath;

    return {
        {kFontNameKey, name},     {kFontTypeKey, type},
        {kFontStatusKey, status}, {kFontPsFontKey, postScriptName},
        {kFontPathKey, path},     {kFontEmbedKey, file ? finder.pdfEmbedding(*file) : kFontEmbedUnknown},
    };
}

} // namespace

QString fontTypeFromIdml(const QString& fontType)
{
    if (fontType.startsWith(kFontTypeOpenTypeMarker) && fontType.size() > kFontTypeOpenTypeMarker.size())
        return kFontTypeOpenTypeMarker + u' ' + fontType.mid(kFontTypeOpenTypeMarker.size());
    if (fontType == QLatin1String("Type1"))
        return kFontTypeType1;
    if (fontType == QLatin1String("Bitmap"))
        return kFontTypeBitmap;
    return fontType;
}

app::Result<QVariantList> fontRecordsFromIdml(const QString& idmlFolder, FontFileFinder& finder)
{
    auto parts = readIdmlParts(idmlFolder);
    if (!parts)
        return parts.error();
    auto sheet = TextStyleSheet::load(parts->styles, parts->preferences);
    if (!sheet)
        return sheet.error();
    FontCatalog catalog;
    if (app::Status loaded = catalog.load(parts->fonts); !loaded)
        return loaded.error();

    UsedFontCollector collector(*sheet);
    if (app::Status walked = walkStories(parts->stories, collector); !walked)
        return walked.error();

    QVariantList records;
    QSet<QString> names;
    for (const UsedFont& used : collector.fonts()) {
        for (const UsedFont& font : catalog.expand(used)) {
            QVariantMap record = fontRecord(font, catalog.face(font), finder);
            const QString name = record.value(kFontNameKey).toString();
            if (names.contains(name))
                continue;
            names.insert(name);
            records.append(record);
        }
    }
    sortFontRecordsByName(records);
    return records;
}

} // namespace quillon::preflight
