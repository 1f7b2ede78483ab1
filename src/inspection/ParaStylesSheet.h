#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <pugixml.hpp>

#include <initializer_list>
#include <memory>
#include <string>

namespace quillon::inspection {

// One paragraph or character style of a document.
struct TextStyle {
    QString id;        // its Self, e.g. "ParagraphStyle/Body"
    QString name;      // its Name as stored ("$ID/NormalParagraphStyle", "Heads:H1")
    QString basedOnId; // the Self of the style it is based on; empty at the root
    pugi::xml_node node;
};

// The paragraph and character styles of an IDML package (Resources/Styles.xml) and its text
// defaults (TextDefault in Resources/Preferences.xml), answering which value a style or a text run
// takes for a text property. A property is either an attribute ("FontStyle", "PointSize",
// "FillColor") or a child of <Properties> ("AppliedFont", "Leading", "BasedOn"). Answers are
// cached, so one sheet serves one thread.
class TextStyleSheet {
public:
    // From the parts Resources/Styles.xml and Resources/Preferences.xml; either may be null (a
    // package without that part, or one that could not be read).
    static TextStyleSheet fromDocuments(std::shared_ptr<const pugi::xml_document> styles,
                                        std::shared_ptr<const pugi::xml_document> preferences);

    // Paragraph styles in the order the file holds them (groups flattened).
    const QList<TextStyle>& paragraphStyles() const { return m_paragraph.styles; }
    const TextStyle* paragraphStyle(const QString& id) const;
    const TextStyle* characterStyle(const QString& id) const;

    // The value the style or the nearest style it is based on sets; empty when none does.
    QString paragraphValue(const QString& styleId, const char* property) const;
    QString characterValue(const QString& styleId, const char* property) const;
    // The document's default: what the root style "[No paragraph style]" sets, else the text
    // defaults. Text whose style chain breaks (a style based on nothing or on a missing style, a
    // run outside any paragraph range) takes it.
    QString defaultValue(const char* property) const;

    // The <Properties> child element of that name in the paragraph style or the nearest style it
    // is based on (list-valued properties such as "AllNestedStyles"); null when none has one.
    pugi::xml_node paragraphPropertyElement(const QString& styleId, const char* property) const;

    // A text run's value: set on its character range, by its character style, on its paragraph
    // range, by its paragraph style, or by the text defaults, in that order. Either range may be
    // null.
    QString runValue(pugi::xml_node paragraphRange, pugi::xml_node characterRange, const char* property) const;

    // The same without the ranges' own overrides: what the applied styles alone give.
    QString styledRunValue(const QString& paragraphStyleId, const QString& characterStyleId,
                           const char* property) const;

    // What decides a run's values of these properties: its two styles and what its ranges set
    // themselves. Runs with equal keys take equal values, so a key stands for the lookup.
    static std::string runKey(pugi::xml_node paragraphRange, pugi::xml_node characterRange,
                              std::initializer_list<const char*> properties);

    // The value set on one element itself, attribute first; empty when it sets none.
    static QString localValue(pugi::xml_node node, const char* property);

    // A style name as the panels show it: "[Basic Paragraph]" for the built-in base style,
    // "[No Paragraph Style]" for the root, the "$ID/" prefix dropped elsewhere.
    static QString displayName(const QString& storedName);

private:
    struct Kind {
        QList<TextStyle> styles;
        QHash<QString, qsizetype> byId;
        QHash<QString, qsizetype> byName;
        mutable QHash<QString, QString> cache; // id + '\x1f' + property -> inherited value
    };

    static void collect(pugi::xml_node group, const char* styleElement, Kind& kind);
    static void resolveBasedOn(Kind& kind);
    static QString inheritedValue(const Kind& kind, const QString& styleId, const char* property);

    std::shared_ptr<const pugi::xml_document> m_styles;
    std::shared_ptr<const pugi::xml_document> m_preferences;
    pugi::xml_node m_textDefault;
    QString m_rootParagraphStyleId;
    Kind m_paragraph;
    Kind m_character;
};

} // namespace quillon::inspection
