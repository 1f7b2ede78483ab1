#include "inspection/ColorsFromIdml.h"

#include "app/Numbers.h"
#include "idml/IdmlDocument.h"
#include "inspection/ColorRecordKeys.h"
#include "inspection/FontColorParts.h"
#include "inspection/ParaStylesSheet.h"
#include "inspection/ParaStylesStories.h"

#include <QHash>
#include <QSet>
#include <QUrl>

#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace quillon::inspection {

namespace {

enum class Special { No, None, Paper, Registration, Black };

struct Swatch {
    QString id;
    std::string_view kind; // the element: "Color", "Tint", "Gradient", "MixedInk", "MixedInkGroup", "Swatch"
    pugi::xml_node node;
    Special special = Special::No;
    bool inPanel = false;
    QStringList builtOn; // the swatches it is made of (a tint's base, a gradient's stops, a mix's inks)
};

constexpr std::array kSwatchKinds{"Color", "Tint", "Gradient", "MixedInk", "MixedInkGroup", "Swatch"};
constexpr std::array<std::string_view, 11> kReferencePrefixes{
    "Color/",          "Tint/",           "Gradient/",    "MixedInk/",   "MixedInkGroup/", "Swatch/",
    "ParagraphStyle/", "CharacterStyle/", "ObjectStyle/", "TableStyle/", "CellStyle/"};

template <std::size_t N> bool isOneOf(std::string_view name, const std::array<const char*, N>& names)
{
    for (const char* candidate : names)
        if (name == candidate)
            return true;
    return false;
}

// Most values are numbers, names and flags: their first letter turns them away cheaply.
bool isReference(const char* value)
{
    switch (value[0]) {
    case 'C':
    case 'T':
    case 'G':
    case 'M':
    case 'S':
    case 'P':
    case 'O':
        break;
    default:
        return false;
    }
    for (const std::string_view prefix : kReferencePrefixes)
        if (std::strncmp(value, prefix.data(), prefix.size()) == 0)
            return true;
    return false;
}

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

bool isProperties(pugi::xml_node node)
{
    return std::strcmp(node.name(), "Properties") == 0;
}

// The references an element and everything inside it make: attribute values, and texts of
// <Properties> entries (where object-typed values live). Text content is never a reference.
// One pass in document order, counting the <Properties> around the element as it goes.
template <typename Take> void forEachReference(pugi::xml_node root, Take&& take)
{
    int inProperties = 0; // <Properties> elements around the next node visited, below `root`
    auto visit = [&](pugi::xml_node element) {
        for (const pugi::xml_attribute attr : element.attributes())
            if (isReference(attr.value()) && std::strcmp(attr.name(), "Self") != 0)
                take(attr.value());
        const pugi::xml_node value = element.first_child();
        if (inProperties > 0 && value.type() == pugi::node_pcdata && isReference(value.value()))
            take(value.value());
    };
    visit(root);
    pugi::xml_node node = root.first_child();
    while (node) {
        if (node.type() == pugi::node_element)
            visit(node);
        if (node.first_child()) {
            inProperties += isProperties(node) ? 1 : 0;
            node = node.first_child();
            continue;
        }
        while (node && node != root && !node.next_sibling()) {
            node = node.parent();
            if (node != root)
                inProperties -= isProperties(node) ? 1 : 0;
        }
        if (!node || node == root)
            return;
        node = node.next_sibling();
    }
}

void collectReferences(pugi::xml_node root, QStringList& out)
{
    forEachReference(root, [&](const char* reference) { out.append(text(reference)); });
}

// A set of UTF-8 texts that is asked with a view of the text, so that a text met again costs no copy.
struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};
using Utf8Set = std::unordered_set<std::string, TextHash, std::equal_to<>>;

constexpr std::string_view kInkPrefix = "Ink/";

// The swatches a graphic swatch is made of. List attributes ("MixedInkSpotColorList", "InkList")
// hold several, blank-separated and percent-encoded; others hold one, blanks and all. A mixed
// ink's inks ("Ink/PANTONE 130 U") are kept as they are: the swatch table finds their spot colours.
QStringList builtOnReferences(pugi::xml_node node)
{
    QStringList refs;
    auto take = [&](pugi::xml_node element) {
        for (const pugi::xml_attribute attr : element.attributes()) {
            if (std::strcmp(attr.name(), "Self") == 0 || !*attr.value())
                continue;
            const std::string_view name = attr.name();
            if (name.size() > 4 && name.substr(name.size() - 4) == "List") {
                for (const QString& item : text(attr.value()).split(u' ', Qt::SkipEmptyParts)) {
                    const QString decoded = QUrl::fromPercentEncoding(item.toUtf8());
                    const QByteArray utf8 = decoded.toUtf8();
                    if (isReference(utf8.constData()) || utf8.startsWith(kInkPrefix.data()))
                        refs.append(decoded);
                }
            } else if (isReference(attr.value())) {
                refs.append(text(attr.value()));
            }
        }
    };
    take(node);
    for (const pugi::xml_node child : node.children())
        take(child);
    return refs;
}

class SwatchTable {
public:
    // Keeps the part: the swatches point into it.
    void load(std::shared_ptr<const pugi::xml_document> graphic)
    {
        m_graphic = std::move(graphic);
        for (const pugi::xml_node node : m_graphic->document_element().children()) {
            const std::string_view kind = node.name();
            if (!isOneOf(kind, kSwatchKinds))
                continue;
            Swatch swatch;
            swatch.id = text(node.attribute("Self").value());
            if (swatch.id.isEmpty() || m_byId.contains(swatch.id))
                continue;
            swatch.kind = kind;
            swatch.node = node;
            const std::string_view override = node.attribute("ColorOverride").value();
            if (kind == "Swatch")
                swatch.special = Special::None;
            else if (override == "Specialpaper")
                swatch.special = Special::Paper;
            else if (override == "Specialregistration")
                swatch.special = Special::Registration;
            else if (override == "Specialblack")
                swatch.special = Special::Black;
            swatch.inPanel =
                std::strcmp(node.attribute("Visible").value(), "false") != 0 && override != "Hiddenreserved";
            if (kind != "Color" && kind != "Swatch")
                swatch.builtOn = builtOnReferences(node);
            m_byId.insert(swatch.id, m_swatches.size());
            if (kind == "Color")
                m_colorByName.insert(text(node.attribute("Name").value()), swatch.id);
            m_swatches.append(swatch);
        }
        resolveInks();
    }

    const Swatch* find(const QString& id) const
    {
        const auto it = m_byId.constFind(id);
        return it == m_byId.cend() ? nullptr : &m_swatches[*it];
    }
    const QList<Swatch>& all() const { return m_swatches; }

    // The panel's swatches: in the order of the document's colour groups, then the rest in file order.
    QList<const Swatch*> panelOrder(const pugi::xml_document* designMap) const
    {
        QList<const Swatch*> order;
        QSet<QString> placed;
        auto place = [&](const Swatch* swatch) {
            if (swatch && swatch->inPanel && !placed.contains(swatch->id)) {
                placed.insert(swatch->id);
                order.append(swatch);
            }
        };
        if (designMap)
            for (const pugi::xpath_node ref : designMap->select_nodes("//ColorGroupSwatch[@SwatchItemRef]"))
                place(find(text(ref.node().attribute("SwatchItemRef").value())));
        for (const Swatch& swatch : m_swatches)
            place(&swatch);
        return order;
    }

    QString registrationId() const
    {
        for (const Swatch& swatch : m_swatches)
            if (swatch.special == Special::Registration)
                return swatch.id;
        return {};
    }

private:
    // A mixed ink is made of inks; a spot ink is the colour swatch of its name.
    void resolveInks()
    {
        const QString inkPrefix = QString::fromLatin1(kInkPrefix);
        for (Swatch& swatch : m_swatches)
            for (QString& ref : swatch.builtOn)
                if (ref.startsWith(inkPrefix))
                    ref = m_colorByName.value(ref.mid(inkPrefix.size()));
    }

    std::shared_ptr<const pugi::xml_document> m_graphic;
    QList<Swatch> m_swatches;
    QHash<QString, qsizetype> m_byId;
    QHash<QString, QString> m_colorByName;
};

// Styles.xml: every style's references, so that applying a style uses what it refers to.
class StyleReferences {
public:
    void load(const pugi::xml_document& styles)
    {
        QHash<QString, QString> idByKindAndName;
        std::vector<std::pair<QString, pugi::xml_node>> found;
        for (const pugi::xpath_node hit :
             styles.select_nodes("//ParagraphStyle | //CharacterStyle | //ObjectStyle | //TableStyle | //CellStyle")) {
            const pugi::xml_node node = hit.node();
            const QString id = text(node.attribute("Self").value());
            idByKindAndName.insert(text(node.name()) + u'\x1f' + text(node.attribute("Name").value()), id);
            found.emplace_back(id, node);
        }
        for (const auto& [id, node] : found) {
            QStringList refs;
            collectReferences(node, refs);
            // BasedOn of type string names the parent ("$ID/[No paragraph style]").
            const pugi::xml_node basedOn = node.child("Properties").child("BasedOn");
            if (std::strcmp(basedOn.attribute("type").value(), "string") == 0) {
                const QString parent = idByKindAndName.value(text(node.name()) + u'\x1f' + text(basedOn.text().get()));
                if (!parent.isEmpty())
                    refs.append(parent);
            }
            m_refs.insert(id, refs);
        }
    }

    const QStringList* find(const QString& id) const
    {
        const auto it = m_refs.constFind(id);
        return it == m_refs.cend() ? nullptr : &*it;
    }

private:
    QHash<QString, QStringList> m_refs;
};

// Counts the text ranges whose fill or stroke is one of the given swatches.
class RegistrationTextCounter final : public StoryTextVisitor {
public:
    RegistrationTextCounter(const TextStyleSheet& sheet, QSet<QString> swatches)
        : m_sheet(sheet), m_swatches(std::move(swatches))
    {
    }

    int count() const { return m_count; }

    void characters(pugi::xml_node paragraphRange, pugi::xml_node characterRange) override
    {
        const pugi::xml_node range = characterRange ? characterRange : paragraphRange;
        if (!m_seen.insert(range.internal_object()).second)
            return;
        auto [known, isNew] = m_setInRegistration.try_emplace(
            TextStyleSheet::runKey(paragraphRange, characterRange, {"FillColor", "StrokeColor"}), false);
        if (isNew)
            known->second = m_swatches.contains(m_sheet.runValue(paragraphRange, characterRange, "FillColor")) ||
                            m_swatches.contains(m_sheet.runValue(paragraphRange, characterRange, "StrokeColor"));
        if (known->second)
            ++m_count;
    }

    void paragraphEnded(std::string_view) override {}

    // The ranges are keyed by their nodes, which go with their story.
    void textEnded() override { m_seen.clear(); }

private:
    const TextStyleSheet& m_sheet;
    QSet<QString> m_swatches;
    std::unordered_set<const void*> m_seen;                    // within one story only
    std::unordered_map<std::string, bool> m_setInRegistration; // by what decides the run's colours

    int m_count = 0;
};

QVariantList numbers(const char* list)
{
    QVariantList values;
    for (const QString& item : text(list).split(u' ', Qt::SkipEmptyParts)) {
        bool ok = false;
        const double value = item.toDouble(&ok);
        if (ok)
            values.append(value);
    }
    return values;
}

QString lowerModel(const char* model)
{
    return text(model).toLower();
}

QString swatchName(const Swatch& swatch, const SwatchTable& table)
{
    switch (swatch.special) {
    case Special::None:
        return kColorSwatchNone;
    case Special::Paper:
        return kColorSwatchPaper;
    case Special::Registration:
        return kColorSwatchRegistration;
    case Special::Black:
    case Special::No:
        break;
    }
    const QString name = text(swatch.node.attribute("Name").value());
    if (swatch.kind == "Tint" && (name.isEmpty() || name == QLatin1String("$ID/"))) {
        const Swatch* base = table.find(text(swatch.node.attribute("BaseColor").value()));
        const QString baseName = base ? swatchName(*base, table) : QString();
        return QStringLiteral("%1 %2%").arg(baseName,
                                            app::formatOneDecimal(swatch.node.attribute("TintValue").as_double()));
    }
    return withoutIdPrefix(name);
}

QVariantMap colorRecord(const Swatch& swatch, const SwatchTable& table, bool used)
{
    QString model;
    QString space;
    QVariantList values;
    pugi::xml_node colour = swatch.node;
    if (swatch.kind == "Tint")
        if (const Swatch* base = table.find(text(swatch.node.attribute("BaseColor").value())))
            colour = base->node;
    if (swatch.kind == "Color" || swatch.kind == "Tint") {
        model = lowerModel(colour.attribute("Model").value());
        space = text(colour.attribute("Space").value());
        values = numbers(colour.attribute("ColorValue").value());
    } else if (swatch.kind == "MixedInk" || swatch.kind == "MixedInkGroup") {
        model = lowerModel(swatch.node.attribute("Model").value());
        if (model.isEmpty())
            model = kColorModelMixedInk;
        space = text(swatch.node.attribute("Space").value());
        values = numbers(swatch.node.attribute("InkPercentages").value());
    } else if (swatch.kind == "Gradient") {
        model = kColorModelGradient;
        QSet<QString> spaces;
        for (const QString& stop : swatch.builtOn)
            if (const Swatch* s = table.find(stop))
                spaces.insert(text(s->node.attribute("Space").value()));
        space = spaces.size() == 1 ? *spaces.cbegin() : QString();
    }
    return {
        {kColorNameKey, swatchName(swatch, table)},
        {kColorModelKey, model},
        {kColorSpaceKey, space},
        {kColorValuesListKey, values},
        {kColorUsedKey, used ? kColorUsed : kColorUnused},
    };
}

} // namespace

struct ColorsFromParts::State {
    State(const idml::IdmlDocument& document, const QString& registrationInTextFlag, const app::CancelFlag* cancel)
        : reader(document, cancel)
    {
        if (std::shared_ptr<const pugi::xml_document> graphic = reader.read(document.graphic()))
            swatches.load(std::move(graphic));
        const std::shared_ptr<const pugi::xml_document> stylesDoc = reader.read(document.styles());
        if (stylesDoc)
            styleRefs.load(*stylesDoc);

        QSet<QString> registration;
        if (countsRegistrationInText(registrationInTextFlag)) {
            sheet = TextStyleSheet::fromDocuments(stylesDoc, reader.read(document.preferences()));
            const QString registrationId = swatches.registrationId();
            if (!registrationId.isEmpty()) {
                registration.insert(registrationId);
                for (const Swatch& swatch : swatches.all())
                    if (swatch.kind == "Tint" && text(swatch.node.attribute("BaseColor").value()) == registrationId)
                        registration.insert(swatch.id);
            }
        }
        if (sheet && !registration.isEmpty())
            counter.emplace(*sheet, registration);
        stories = QSet<QString>(document.stories().cbegin(), document.stories().cend());
    }

    PartReader reader;
    SwatchTable swatches;
    StyleReferences styleRefs;
    std::optional<TextStyleSheet> sheet;
    std::optional<RegistrationTextCounter> counter;
    QSet<QString> stories;
    // Each reference once: a large document makes millions, of a few hundred names.
    QSet<QString> referenced;
    Utf8Set referencedUtf8; // the same, as met in the parts
    // The parts that could not be read, named in the answer in the designmap's order.
    QHash<QString, app::Error> unreadable;
};

ColorsFromParts::ColorsFromParts(const idml::IdmlDocument& document, const QString& registrationInTextFlag,
                                 const app::CancelFlag* cancel)
    : m_state(std::make_unique<State>(document, registrationInTextFlag, cancel))
{
}

ColorsFromParts::~ColorsFromParts() = default;

QStringList ColorsFromParts::partNames(const idml::IdmlDocument& document) const
{
    return document.spreads() + document.masterSpreads() + document.stories();
}

void ColorsFromParts::visit(const QString& name, const app::Result<std::shared_ptr<const idml::XmlPart>>& part)
{
    State& state = *m_state;
    if (state.reader.cancelled())
        return;
    if (!part) {
        state.unreadable.insert(name, part.error());
        return;
    }
    const pugi::xml_node root = (*part)->document().document_element();
    forEachReference(root, [&](const char* reference) {
        if (state.referencedUtf8.find(std::string_view(reference)) != state.referencedUtf8.end())
            return;
        state.referencedUtf8.emplace(reference);
        state.referenced.insert(text(reference));
    });
    if (state.counter && state.stories.contains(name))
        walkStoryText(root, *state.counter);
}

app::Result<Inspected<ColorInspection>> ColorsFromParts::finish()
{
    State& state = *m_state;
    if (state.reader.cancelled())
        return inspectionCancelled();
    const idml::IdmlDocument& document = state.reader.document();
    Inspected<ColorInspection> inspected;
    inspected.skipped = state.reader.warnings();
    for (const QString& name : partNames(document))
        if (const auto failed = state.unreadable.constFind(name); failed != state.unreadable.cend())
            inspected.skipped.append(*failed);

    QStringList pending;
    for (const Swatch& swatch : state.swatches.all())
        if (swatch.inPanel)
            pending += swatch.builtOn;
    pending += state.referenced.values();
    QSet<QString> used;
    while (!pending.isEmpty()) {
        const QString id = pending.takeLast();
        if (used.contains(id))
            continue;
        used.insert(id);
        if (const QStringList* refs = state.styleRefs.find(id))
            pending += *refs;
        else if (const Swatch* swatch = state.swatches.find(id))
            pending += swatch->builtOn;
    }

    ColorInspection& inspection = inspected.found;
    for (const Swatch* swatch : state.swatches.panelOrder(&document.designmap())) {
        const bool isUsed = swatch->special != Special::No || used.contains(swatch->id);
        QVariantMap record = colorRecord(*swatch, state.swatches, isUsed);
        if (!isUsed)
            inspection.namesOfUnusedColors.append(record.value(kColorNameKey).toString());
        inspection.records.append(record);
    }
    inspection.registrationInTextCount = state.counter ? state.counter->count() : 0;
    return inspected;
}

app::Result<Inspected<ColorInspection>> colorInspectionFromIdml(const idml::IdmlDocument& document,
                                                                const QString& registrationInTextFlag,
                                                                const app::CancelFlag* cancel)
{
    ColorsFromParts colors(document, registrationInTextFlag, cancel);
    document.visitParts({&colors}, cancel);
    return colors.finish();
}

} // namespace quillon::inspection
