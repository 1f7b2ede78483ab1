#include "inspection/ParaStylesSheet.h"

#include "idml/IdmlXml.h"
#include "inspection/FontColorParts.h"

#include <vector>

using namespace quillon::idml;

namespace quillon::inspection {

namespace {

const QString kNoParagraphStyleName = QStringLiteral("$ID/[No paragraph style]");
const QString kBasicParagraphName = QStringLiteral("$ID/NormalParagraphStyle");

// BasedOn chains longer than this are cycles or damage; the lookup stops there.
constexpr int kMaxChain = 64;

QString cacheKey(const QString& id, const char* property)
{
    return id + u'\x1f' + QLatin1String(property);
}

} // namespace

QString TextStyleSheet::localValue(pugi::xml_node node, const char* property)
{
    if (!node)
        return {};
    if (const pugi::xml_attribute attr = node.attribute(property))
        return QString::fromUtf8(attr.value());
    if (const pugi::xml_node child = node.child("Properties").child(property))
        return QString::fromUtf8(child.text().get());
    return {};
}

std::string TextStyleSheet::runKey(pugi::xml_node paragraphRange, pugi::xml_node characterRange,
                                   std::initializer_list<const char*> properties)
{
    auto local = [](pugi::xml_node node, const char* property) {
        if (const pugi::xml_attribute attr = node.attribute(property))
            return attr.value();
        return node.child("Properties").child(property).text().get();
    };
    std::string key;
    key.reserve(192); // asked for every run of text: grown once, not piece by piece
    key += paragraphRange.attribute("AppliedParagraphStyle").value();
    key += '\x1f';
    key += characterRange.attribute("AppliedCharacterStyle").value();
    for (const char* property : properties)
        for (const pugi::xml_node range : {paragraphRange, characterRange}) {
            key += '\x1f';
            key += local(range, property);
        }
    return key;
}

QString TextStyleSheet::displayName(const QString& storedName)
{
    if (storedName == kBasicParagraphName)
        return QStringLiteral("[Basic Paragraph]");
    if (storedName == kNoParagraphStyleName)
        return QStringLiteral("[No Paragraph Style]");
    return withoutIdPrefix(storedName);
}

void TextStyleSheet::collect(pugi::xml_node group, const char* styleElement, Kind& kind)
{
    // Depth-first in document order, however deep the groups nest; styles do not nest in styles.
    std::vector<pugi::xml_node> order;
    forEachElement(group, [&](pugi::xml_node node) {
        if (std::string_view(node.name()) == styleElement && std::string_view(node.parent().name()) != styleElement)
            order.push_back(node);
    });
    for (const pugi::xml_node node : order) {
        TextStyle style;
        style.id = QString::fromUtf8(node.attribute("Self").value());
        style.name = QString::fromUtf8(node.attribute("Name").value());
        style.node = node;
        if (style.id.isEmpty() || kind.byId.contains(style.id))
            continue;
        kind.byId.insert(style.id, kind.styles.size());
        kind.byName.insert(style.name, kind.styles.size());
        kind.styles.append(style);
    }
}

// BasedOn names its parent by Self ("ParagraphStyle/Body", type object) or by Name
// ("$ID/[No paragraph style]", type string).
void TextStyleSheet::resolveBasedOn(Kind& kind)
{
    for (TextStyle& style : kind.styles) {
        const QString basedOn = localValue(style.node, "BasedOn");
        if (basedOn.isEmpty() || basedOn == style.id || basedOn == style.name)
            continue;
        if (kind.byId.contains(basedOn))
            style.basedOnId = basedOn;
        else if (const auto it = kind.byName.constFind(basedOn); it != kind.byName.cend())
            style.basedOnId = kind.styles[*it].id;
    }
}

TextStyleSheet TextStyleSheet::fromDocuments(std::shared_ptr<const pugi::xml_document> styles,
                                             std::shared_ptr<const pugi::xml_document> preferences)
{
    TextStyleSheet sheet;
    sheet.m_styles = std::move(styles);
    sheet.m_preferences = std::move(preferences);
    if (sheet.m_styles) {
        const pugi::xml_node root = sheet.m_styles->document_element();
        collect(root.child("RootParagraphStyleGroup"), "ParagraphStyle", sheet.m_paragraph);
        collect(root.child("RootCharacterStyleGroup"), "CharacterStyle", sheet.m_character);
        resolveBasedOn(sheet.m_paragraph);
        resolveBasedOn(sheet.m_character);
        if (const auto root = sheet.m_paragraph.byName.constFind(kNoParagraphStyleName);
            root != sheet.m_paragraph.byName.cend())
            sheet.m_rootParagraphStyleId = sheet.m_paragraph.styles[*root].id;
    }
    if (sheet.m_preferences)
        sheet.m_textDefault = sheet.m_preferences->document_element().child("TextDefault");
    return sheet;
}

const TextStyle* TextStyleSheet::paragraphStyle(const QString& id) const
{
    const auto it = m_paragraph.byId.constFind(id);
    return it == m_paragraph.byId.cend() ? nullptr : &m_paragraph.styles[*it];
}

const TextStyle* TextStyleSheet::characterStyle(const QString& id) const
{
    const auto it = m_character.byId.constFind(id);
    return it == m_character.byId.cend() ? nullptr : &m_character.styles[*it];
}

QString TextStyleSheet::inheritedValue(const Kind& kind, const QString& styleId, const char* property)
{
    if (styleId.isEmpty())
        return {};
    const QString key = cacheKey(styleId, property);
    if (const auto cached = kind.cache.constFind(key); cached != kind.cache.cend())
        return *cached;
    QString value;
    QString id = styleId;
    for (int step = 0; step < kMaxChain && !id.isEmpty(); ++step) {
        const auto it = kind.byId.constFind(id);
        if (it == kind.byId.cend())
            break;
        const TextStyle& style = kind.styles[*it];
        value = localValue(style.node, property);
        if (!value.isEmpty())
            break;
        id = style.basedOnId;
    }
    kind.cache.insert(key, value);
    return value;
}

pugi::xml_node TextStyleSheet::paragraphPropertyElement(const QString& styleId, const char* property) const
{
    QString id = styleId;
    for (int step = 0; step < kMaxChain && !id.isEmpty(); ++step) {
        const TextStyle* style = paragraphStyle(id);
        if (!style)
            break;
        if (const pugi::xml_node element = style->node.child("Properties").child(property))
            return element;
        id = style->basedOnId;
    }
    return {};
}

QString TextStyleSheet::paragraphValue(const QString& styleId, const char* property) const
{
    return inheritedValue(m_paragraph, styleId, property);
}

QString TextStyleSheet::characterValue(const QString& styleId, const char* property) const
{
    return inheritedValue(m_character, styleId, property);
}

QString TextStyleSheet::defaultValue(const char* property) const
{
    QString value = inheritedValue(m_paragraph, m_rootParagraphStyleId, property);
    if (value.isEmpty())
        value = localValue(m_textDefault, property);
    return value;
}

QString TextStyleSheet::styledRunValue(const QString& paragraphStyleId, const QString& characterStyleId,
                                       const char* property) const
{
    QString value = characterValue(characterStyleId, property);
    if (value.isEmpty())
        value = paragraphValue(paragraphStyleId, property);
    if (value.isEmpty())
        value = defaultValue(property);
    return value;
}

QString TextStyleSheet::runValue(pugi::xml_node paragraphRange, pugi::xml_node characterRange,
                                 const char* property) const
{
    QString value = localValue(characterRange, property);
    if (value.isEmpty())
        value = characterValue(QString::fromUtf8(characterRange.attribute("AppliedCharacterStyle").value()), property);
    if (value.isEmpty())
        value = localValue(paragraphRange, property);
    if (value.isEmpty())
        value = paragraphValue(QString::fromUtf8(paragraphRange.attribute("AppliedParagraphStyle").value()), property);
    if (value.isEmpty())
        value = defaultValue(property);
    return value;
}

} // namespace quillon::inspection
