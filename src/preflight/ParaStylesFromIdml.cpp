#include "preflight/ParaStylesFromIdml.h"

#include "app/XmlFile.h"
#include "preflight/FontColorParts.h"
#include "preflight/ParaStylesSheet.h"
#include "preflight/ParaStylesStories.h"

#include <QHash>
#include <QUrl>

namespace quillon::preflight {

namespace {

const QString kNoParagraphStyleId = QStringLiteral("ParagraphStyle/$ID/[No paragraph style]");
const QString kIdPrefix = QStringLiteral("$ID/");

class ParagraphCounter final : public StoryTextVisitor {
public:
    const QHash<QString, int>& counts() const { return m_counts; }
    const QStringList& order() const { return m_order; }

    void characters(pugi::xml_node, pugi::xml_node) override {}

    void paragraphEnded(std::string_view paragraphStyle) override
    {
        const QString id = QString::fromUtf8(paragraphStyle.data(), static_cast<qsizetype>(paragraphStyle.size()));
        auto it = m_counts.find(id);
        if (it == m_counts.end()) {
            m_order.append(id);
            it = m_counts.insert(id, 0);
        }
        ++*it;
    }

private:
    QHash<QString, int> m_counts;
    QStringList m_order;
};

QString withoutIdPrefix(QString text)
{
    if (text.startsWith(kIdPrefix))
        text.remove(0, kIdPrefix.size());
    return text;
}

ParaStyleUse describe(const TextStyleSheet& sheet, const TextStyle& style)
{
    auto value = [&](const char* property) {
        QString v = sheet.paragraphValue(style.id, property);
        return v.isEmpty() ? sheet.defaultValue(property) : v;
    };
    ParaStyleUse use;
    use.name = TextStyleSheet::displayName(style.name);
    if (const TextStyle* parent = sheet.paragraphStyle(style.basedOnId))
        use.basedOn = TextStyleSheet::displayName(parent->name);
    const QString family = withoutIdPrefix(value("AppliedFont"));
    const QString fontStyle = withoutIdPrefix(value("FontStyle"));
    use.font = fontStyle.isEmpty() ? family : family + u' ' + fontStyle;
    const QString size = value("PointSize");
    use.size = pointsText(size);
    use.leading = leadingText(value("Leading"), size, value("AutoLeading"));
    return use;
}

// "ParagraphStyle/Heads%3aH1" gives "Heads:H1".
QString nameFromReference(const QString& id)
{
    const qsizetype slash = id.indexOf(u'/');
    return QUrl::fromPercentEncoding(id.mid(slash + 1).toUtf8());
}

} // namespace

app::Result<QList<ParaStyleUse>> paraStyleUsesFromIdml(const QString& idmlFolder)
{
    auto parts = readIdmlParts(idmlFolder);
    if (!parts)
        return parts.error();
    auto sheet = TextStyleSheet::load(parts->styles, parts->preferences);
    if (!sheet)
        return sheet.error();

    ParagraphCounter counter;
    for (const QString& storyPath : std::as_const(parts->stories)) {
        auto story = app::loadXmlFile(storyPath);
        if (!story)
            return story.error();
        if (app::Status walked = walkStoryText((*story)->document_element(), counter, storyPath); !walked)
            return walked.error();
    }

    QList<ParaStyleUse> uses;
    for (const TextStyle& style : sheet->paragraphStyles()) {
        const int paragraphs = counter.counts().value(style.id);
        if (style.id == kNoParagraphStyleId && paragraphs == 0)
            continue;
        ParaStyleUse use = describe(*sheet, style);
        use.paragraphs = paragraphs;
        uses.append(use);
    }
    for (const QString& id : counter.order()) {
        if (sheet->paragraphStyle(id))
            continue;
        ParaStyleUse use;
        use.name = nameFromReference(id);
        use.paragraphs = counter.counts().value(id);
        uses.append(use);
    }
    return uses;
}

} // namespace quillon::preflight
