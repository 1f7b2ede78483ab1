#include "inspection/FontsFromIdml.h"

#include "idml/IdmlDocument.h"
#include "inspection/FontColorParts.h"
#include "inspection/FontFiles.h"
#include "inspection/FontRecordKeys.h"
#include "inspection/FontRecords.h"
#include "inspection/ParaStylesSheet.h"
#include "inspection/ParaStylesStories.h"

#include <QHash>
#include <QSet>

#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_set>

namespace quillon::inspection {

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
        // The pieces of one range come one after another (a text and its break): the second adds nothing.
        if (paragraphRange == m_lastParagraphRange && characterRange == m_lastCharacterRange)
            return;
        m_lastParagraphRange = paragraphRange;
        m_lastCharacterRange = characterRange;
        const bool newRun =
            m_seenRuns.insert(TextStyleSheet::runKey(paragraphRange, characterRange, {"AppliedFont", "FontStyle"}))
                .second;
        const bool localExtras = setsParagraphExtras(paragraphRange);
        if (!newRun && !localExtras)
            return;
        const QString paragraphStyle = QString::fromUtf8(paragraphRange.attribute("AppliedParagraphStyle").value());
        if (newRun) {
            add(m_sheet.runValue(paragraphRange, characterRange, "AppliedFont"),
                m_sheet.runValue(paragraphRange, characterRange, "FontStyle"));
            addStyled(paragraphStyle, QString::fromUtf8(characterRange.attribute("AppliedCharacterStyle").value()));
        }
        // A paragraph range may set its list, bullet and nested styles itself, or a face its
        // bullet takes: such a range counts on its own, once.
        if (localExtras) {
            if (m_seenParagraphRanges.insert(paragraphRange.internal_object()).second)
                addParagraphExtras(paragraphStyle, paragraphRange);
        } else if (!m_seenParagraphStyles.contains(paragraphStyle)) {
            m_seenParagraphStyles.insert(paragraphStyle);
            addParagraphExtras(paragraphStyle, {});
        }
    }

    void paragraphEnded(std::string_view) override {}

    // Paragraph ranges are keyed by their nodes, which go with their story.
    void textEnded() override
    {
        m_seenParagraphRanges.clear();
        m_lastParagraphRange = m_lastCharacterRange = pugi::xml_node();
    }

private:
    // The paragraph properties that apply character styles to parts of a paragraph.
    static constexpr std::array kExtraLists{"AllNestedStyles", "AllGREPStyles", "AllLineStyles"};
    static constexpr std::array kExtraValues{
        "BulletsAndNumberingListType", "BulletsFont", "BulletsFontStyle", "BulletsCharacterStyle",
        "NumberingCharacterStyle",     "FontStyle"};

    // Whether a paragraph range sets any of them, or the face a bullet takes, itself.
    static bool setsParagraphExtras(pugi::xml_node paragraphRange)
    {
        const pugi::xml_node properties = paragraphRange.child("Properties");
        for (const char* name : kExtraValues)
            if (paragraphRange.attribute(name) || properties.child(name))
                return true;
        for (const char* name : kExtraLists)
            if (properties.child(name))
                return true;
        return false;
    }

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

    // A paragraph property as the range sets it, else as its style does.
    QString paragraphValue(const QString& paragraphStyle, pugi::xml_node paragraphRange, const char* property) const
    {
        QString value = TextStyleSheet::localValue(paragraphRange, property);
        return value.isEmpty() ? m_sheet.paragraphValue(paragraphStyle, property) : value;
    }

    pugi::xml_node paragraphElement(const QString& paragraphStyle, pugi::xml_node paragraphRange,
                                    const char* property) const
    {
        const pugi::xml_node local = paragraphRange.child("Properties").child(property);
        return local ? local : m_sheet.paragraphPropertyElement(paragraphStyle, property);
    }

    // Character styles a paragraph applies to parts of its text, and its bullet font: set by its
    // style, or by the range itself when it is given (null for the style alone).
    void addParagraphExtras(const QString& paragraphStyle, pugi::xml_node paragraphRange)
    {
        for (const char* list : kExtraLists)
            for (const pugi::xml_node item :
                 paragraphElement(paragraphStyle, paragraphRange, list).children("ListItem"))
                addStyled(paragraphStyle, QString::fromUtf8(item.child("AppliedCharacterStyle").text().get()));
        const QString listType = paragraphValue(paragraphStyle, paragraphRange, "BulletsAndNumberingListType");
        if (listType == QLatin1String("BulletList")) {
            addStyled(paragraphStyle, paragraphValue(paragraphStyle, paragraphRange, "BulletsCharacterStyle"));
            const QString bulletFont = withoutIdPrefix(paragraphValue(paragraphStyle, paragraphRange, "BulletsFont"));
            if (!bulletFont.isEmpty())
                add(bulletFont, bulletFace(paragraphStyle, paragraphRange));
        } else if (listType == QLatin1String("NumberedList")) {
            addStyled(paragraphStyle, paragraphValue(paragraphStyle, paragraphRange, "NumberingCharacterStyle"));
        }
    }

    // The bullet font's face; none given ("$ID/", or the enumeration value "Nothing", which is no
    // face name) means the paragraph's own face.
    QString bulletFace(const QString& paragraphStyle, pugi::xml_node paragraphRange) const
    {
        QString face = paragraphValue(paragraphStyle, paragraphRange, "BulletsFontStyle");
        const pugi::xml_node element = paragraphElement(paragraphStyle, paragraphRange, "BulletsFontStyle");
        if (std::strcmp(element.attribute("type").value(), "enumeration") == 0 &&
            face == QString::fromUtf8(element.text().get()))
            face.clear();
        face = withoutIdPrefix(face);
        if (face.isEmpty())
            face = paragraphRange ? m_sheet.runValue(paragraphRange, {}, "FontStyle")
                                  : m_sheet.styledRunValue(paragraphStyle, {}, "FontStyle");
        return face;
    }

    const TextStyleSheet& m_sheet;
    QList<UsedFont> m_fonts;
    QSet<QString> m_seenFonts;
    QSet<QString> m_seenStylePairs;
    QSet<QString> m_seenParagraphStyles;
    std::unordered_set<std::string> m_seenRuns;
    std::unordered_set<const void*> m_seenParagraphRanges; // within one story only (see textEnded)
    pugi::xml_node m_lastParagraphRange;                   // the ranges of the last call, within one story only
    pugi::xml_node m_lastCharacterRange;
};

// Resources/Fonts.xml: the document's description of each face, and its composite fonts.
class FontCatalog {
public:
    // The part may be null (absent or unreadable): no face is then described.
    void load(std::shared_ptr<const pugi::xml_document> fonts)
    {
        if (!fonts)
            return;
        m_doc = std::move(fonts);
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
    std::shared_ptr<const pugi::xml_document> m_doc;
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

struct FontsFromParts::State {
    State(const idml::IdmlDocument& document, std::shared_ptr<FontFileFinder> finder, const app::CancelFlag* cancel)
        : reader(document, cancel), finder(std::move(finder)),
          sheet(TextStyleSheet::fromDocuments(reader.read(document.styles()), reader.read(document.preferences())))
    {
        catalog.load(reader.read(document.fonts()));
        collector.emplace(sheet);
    }

    PartReader reader;
    std::shared_ptr<FontFileFinder> finder;
    TextStyleSheet sheet;
    FontCatalog catalog;
    // The fonts in the order the pass meets the stories: the designmap's, which decides the record
    // kept when two fonts give one name.
    std::optional<UsedFontCollector> collector;
    // The stories that could not be read, named in the designmap's order.
    QHash<QString, app::Error> unreadable;
};

FontsFromParts::FontsFromParts(const idml::IdmlDocument& document, std::shared_ptr<FontFileFinder> finder,
                               const app::CancelFlag* cancel)
    : m_state(std::make_unique<State>(document, std::move(finder), cancel))
{
}

FontsFromParts::~FontsFromParts() = default;

QStringList FontsFromParts::partNames(const idml::IdmlDocument& document) const
{
    return document.stories();
}

void FontsFromParts::visit(const QString& name, const app::Result<std::shared_ptr<const idml::XmlPart>>& part)
{
    if (m_state->reader.cancelled())
        return;
    if (!part) {
        m_state->unreadable.insert(name, part.error());
        return;
    }
    walkStoryText((*part)->document().document_element(), *m_state->collector);
}

app::Result<Inspected<QVariantList>> FontsFromParts::finish()
{
    State& state = *m_state;
    if (state.reader.cancelled())
        return inspectionCancelled();
    Inspected<QVariantList> inspected;
    inspected.skipped = state.reader.warnings();
    for (const QString& story : state.reader.document().stories())
        if (const auto failed = state.unreadable.constFind(story); failed != state.unreadable.cend())
            inspected.skipped.append(*failed);

    QSet<QString> names;
    for (const UsedFont& used : state.collector->fonts()) {
        for (const UsedFont& font : state.catalog.expand(used)) {
            QVariantMap record = fontRecord(font, state.catalog.face(font), *state.finder);
            const QString name = record.value(kFontNameKey).toString();
            if (names.contains(name))
                continue;
            names.insert(name);
            inspected.found.append(record);
        }
    }
    sortFontRecordsByName(inspected.found);
    return inspected;
}

app::Result<Inspected<QVariantList>> fontRecordsFromIdml(const idml::IdmlDocument& document, FontFileFinder& finder,
                                                         const app::CancelFlag* cancel)
{
    FontsFromParts fonts(document, std::shared_ptr<FontFileFinder>(std::shared_ptr<FontFileFinder>(), &finder), cancel);
    document.visitParts({&fonts}, cancel);
    return fonts.finish();
}

} // namespace quillon::inspection
