#include "inspection/ParaStylesFromIdml.h"

#include "idml/IdmlDocument.h"
#include "inspection/FontColorParts.h"
#include "inspection/FontRecords.h"
#include "inspection/ParaStylesSheet.h"
#include "inspection/ParaStylesStories.h"

#include <QHash>
#include <QUrl>

namespace quillon::inspection {

namespace {

const QString kNoParagraphStyleId = QStringLiteral("ParagraphStyle/$ID/[No paragraph style]");
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
    use.font = fontDisplayName(family, fontStyle);
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

app::Result<Inspected<QList<ParaStyleUse>>> paraStyleUsesFromIdml(const idml::IdmlDocument& document,
                                                                  const app::CancelFlag* cancel)
{
    PartReader reader(document, cancel);
    const auto sheet =
        TextStyleSheet::fromDocuments(reader.read(document.styles()), reader.read(document.preferences()));

    ParagraphCounter counter;
    walkStories(document.stories(), counter, reader);
    if (reader.cancelled())
        return inspectionCancelled();

    Inspected<QList<ParaStyleUse>> inspected;
    QList<ParaStyleUse>& uses = inspected.found;
    for (const TextStyle& style : sheet.paragraphStyles()) {
        const int paragraphs = counter.counts().value(style.id);
        if (style.id == kNoParagraphStyleId && paragraphs == 0)
            continue;
        ParaStyleUse use = describe(sheet, style);
        use.paragraphs = paragraphs;
        uses.append(use);
    }
    for (const QString& id : counter.order()) {
        if (sheet.paragraphStyle(id))
            continue;
        ParaStyleUse use;
        use.name = nameFromReference(id);
        use.paragraphs = counter.counts().value(id);
        uses.append(use);
    }
    inspected.skipped = reader.warnings();
    return inspected;
}

} // namespace quillon::inspection
