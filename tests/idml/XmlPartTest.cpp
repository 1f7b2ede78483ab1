#include "idml/XmlPart.h"
#include "app/ParallelFor.h"
#include "idml/IdmlDocument.h"

#include "support/IdmlFixtures.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::idml;

TEST(XmlPart, PartsBeyondTheirBoundsAreRefusedNamingThePartAndTheBound)
{
    XmlPartLimits limits;
    limits.maxBytes = 10'000;
    limits.maxMarkup = 20;
    limits.maxAttributes = 20;
    limits.maxAttributeBytes = 2000;
    const QString name = QStringLiteral("Stories/Story_u1.xml");
    const std::vector<std::pair<QByteArray, QString>> cases{
        {"<Story><Content>text</Content></Story>", QString()},
        {"<Story><Content>text</Story>", QStringLiteral("not readable XML at byte 22")},
        {QByteArray(12'000, ' '), QStringLiteral("too large to read (12 KB; a part may hold at most 10 KB)")},
        {QByteArray("<a/>").repeated(21),
         QStringLiteral("too many elements to read (21 tags; a part may hold at most 20)")},
        {"<a " + QByteArray("b=\"\" ").repeated(21) + "/>",
         QStringLiteral("too many attributes to read (21; a part may hold at most 20)")},
        {"<Story><Link URI=\"" + QByteArray(3000, 'x') + "\"/></Story>",
         QStringLiteral("the attribute URI of a Link element is too long to read (3 KB; an attribute may hold at most "
                        "2 KB)")},
    };
    for (const auto& [bytes, message] : cases) {
        XmlPart part;
        const app::Status parsed = part.parse(bytes, name, kPartParseOptions, limits);
        EXPECT_EQ(parsed.ok() ? QString() : parsed.error().text(),
                  message.isEmpty() ? QString() : name + QStringLiteral(": ") + message)
            << bytes.left(40).toStdString();
        EXPECT_EQ(bool(part.root()), message.isEmpty());
    }

    // A file larger than the bound is refused before it is read; a missing one is named.
    QTemporaryDir dir;
    test::writeAll(dir.filePath(QStringLiteral("big.xml")), QByteArray(20'000, ' '));
    XmlPart part;
    EXPECT_EQ(part.read(dir.filePath(QStringLiteral("big.xml")), name, kPartParseOptions, limits).error().message,
              QStringLiteral("too large to read (20 KB; a part may hold at most 10 KB)"));
    EXPECT_EQ(part.read(dir.filePath(QStringLiteral("none.xml")), name).error().text(),
              name + QStringLiteral(": missing from the package"));
}

TEST(IdmlDocument, EachPartIsParsedOnceHoweverManyReadersAskAndABrokenOneIsNamedToEach)
{
    QTemporaryDir dir;
    test::ArchiveEntries entries = test::minimalIdml();
    const QStringList parts{QStringLiteral("Resources/Preferences.xml"), QStringLiteral("Spreads/Spread_s1.xml"),
                            QStringLiteral("Stories/Story_b.xml")};
    entries[0].second = test::designmapXml(parts);
    entries.emplace_back(parts[2], "<Story><Broken");
    const QString path = dir.filePath(QStringLiteral("Doc.idml"));
    test::writeIdml(path, entries);
    const auto document = IdmlDocument::open(path, dir.path());
    ASSERT_TRUE(document.ok()) << document.error().text().toStdString();
    EXPECT_EQ((*document)->storyFiles(), QStringList{parts[2]});

    // Eight readers on several threads ask for every part.
    QList<QString> storyErrors(8);
    app::ParallelOptions options;
    options.maxThreads = 4;
    app::parallelFor(8, options, [&](int, qsizetype reader) {
        for (const QString& name : parts)
            if (const auto part = (*document)->part(name); !part)
                storyErrors[reader] = part.error().text();
    });
    EXPECT_EQ((*document)->parseCount(), 3);
    EXPECT_EQ(storyErrors.count(QStringLiteral("Stories/Story_b.xml: not readable XML at byte 13")), 8)
        << storyErrors.join(u'\n').toStdString();
    (*document)->release({parts[1]});
    EXPECT_TRUE((*document)->part(parts[1]).ok());
    EXPECT_EQ((*document)->parseCount(), 4);

    // A package whose parts' text together passes the kept-text limit keeps none, not even one
    // that would fit: its reader holds it, the next parses it again.
    (*document)->release(parts);
    const auto first = (*document)->part(parts[0]);
    ASSERT_TRUE(first.ok());
    (*document)->release(parts);
    (*document)->setKeptTextLimit((*first)->textSize());
    const auto again = (*document)->part(parts[0]);
    ASSERT_TRUE(again.ok());
    EXPECT_TRUE((*again)->root());
    const int parses = (*document)->parseCount();
    EXPECT_NE((*document)->part(parts[0])->get(), again->get());
    EXPECT_EQ((*document)->parseCount(), parses + 1);

    // Visited in order a window at a time, a part beyond the limit is parsed once however often
    // the visit asks for it, and let go after its window.
    QStringList visited;
    const int beforeVisit = (*document)->parseCount();
    (*document)->forEachPart(parts, nullptr, [&](const QString& name) {
        visited << name;
        EXPECT_EQ((*document)->part(name).ok(), (*document)->part(name).ok());
    });
    EXPECT_EQ(visited, parts);
    EXPECT_EQ((*document)->parseCount(), beforeVisit + 3);
    EXPECT_TRUE((*document)->part(parts[1]).ok());
    EXPECT_EQ((*document)->parseCount(), beforeVisit + 4);

    // One pass for two readers: the first reader's order, then the parts only the second names;
    // each reader is handed its own parts (an unreadable one as an error), each parsed once.
    struct Reader final : PartVisitor {
        QStringList names, met;
        QStringList partNames(const IdmlDocument&) const override { return names; }
        void visit(const QString& name, const app::Result<std::shared_ptr<const XmlPart>>& part) override
        {
            met << (part ? name : name + u'!');
        }
    };
    Reader stories;
    Reader others;
    stories.names = {parts[2], parts[1]};
    others.names = {parts[0], parts[2]};
    (*document)->release(parts);
    const int beforePass = (*document)->parseCount();
    (*document)->visitParts({&stories, &others}, nullptr);
    EXPECT_EQ(stories.met, (QStringList{parts[2] + u'!', parts[1]}));
    EXPECT_EQ(others.met, (QStringList{parts[2] + u'!', parts[0]}));
    EXPECT_EQ((*document)->parseCount(), beforePass + 3);
}
