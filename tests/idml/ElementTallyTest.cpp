#include "idml/ElementTally.h"
#include "idml/IdmlDocument.h"
#include "idml/XmlPath.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>

using namespace quillon;
using namespace quillon::idml;

namespace {

const std::vector<ElementQuery> kQueries{{"Page", {}, {}}, {"Link", "LinkResourceURI", "file:"}};

// The counts the parser's tree gives, or nullopt when it refuses the text.
std::optional<std::vector<qint64>> parsedCounts(const QByteArray& text)
{
    XmlPart part;
    if (!part.parse(text, QStringLiteral("part.xml")))
        return std::nullopt;
    std::vector<qint64> counts(2, 0);
    forEachElement(part.document(), [&](const pugi::xml_node element) {
        counts[0] += std::strcmp(element.name(), "Page") == 0;
        counts[1] += std::strcmp(element.name(), "Link") == 0 &&
                     std::strncmp(element.attribute("LinkResourceURI").value(), "file:", 5) == 0;
    });
    return counts;
}

std::optional<std::vector<qint64>> tally(const QByteArray& text)
{
    return tallyElements(std::string_view(text.constData(), static_cast<size_t>(text.size())), kQueries);
}

} // namespace

// What the scan counts it counts as the parser does; what it cannot read the way the parser would,
// or what the parser refuses, it leaves to the parser.
TEST(ElementTally, CountsAsTheParserDoesAndLeavesTheRestToIt)
{
    const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
    const std::vector<std::pair<QByteArray, std::optional<std::vector<qint64>>>> cases{
        {head + "<Spread><Page Self=\"p1\"/><Page>x</Page><idPkg:Page/><Pages/>"
                "<Link LinkResourceURI=\"file:/a.tif\"/><Link LinkResourceURI = 'file:b'></Link>"
                "<Link LinkResourceURI=\"http://c\"/><Link/><Link A=\"file:\" LinkResourceURI=\"file:x\" "
                "LinkResourceURI=\"y\"/>\n<Content>a &amp; b &gt; c</Content></Spread >\n",
         std::vector<qint64>{2, 3}},
        {"<Story><Link\nLinkResourceURI=\"file:x\"\t/></Story>", std::vector<qint64>{0, 1}},
        // Left to the parser, whatever it makes of them.
        {"<Story><!-- <Link LinkResourceURI=\"file:x\"/> --></Story>", std::nullopt},
        {"<Story><![CDATA[<Page/>]]></Story>", std::nullopt},
        {"<Story><Link LinkResourceURI=\"&#102;ile:x\"/></Story>", std::nullopt},
        {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><Story/>", std::nullopt},
        {"\xEF\xBB\xBF<Story/>", std::nullopt},
        {"<Story><?aid x?></Story>", std::nullopt},
        {QByteArray("<Story><Page/>\0<Page/></Story>", 30), std::nullopt},
        // Refused by the parser.
        {"<Story><Page></Story>", std::nullopt},
        {"<Story><Page/>", std::nullopt},
        {"<Story></Story><Page/>", std::nullopt},
        {"<Story><Link LinkResourceURI=\"file:x/></Story>", std::nullopt},
        {"<Story><Link LinkResourceURI/></Story>", std::nullopt},
        {"<Story><1/></Story>", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, expected] : cases) {
        const std::optional<std::vector<qint64>> counted = tally(text);
        EXPECT_EQ(counted, expected) << text.toStdString();
        if (counted) {
            EXPECT_EQ(counted, parsedCounts(text)) << text.toStdString();
        }
    }
    // Beyond the bounds the parser refuses at, the scan does not count either.
    XmlPartLimits limits;
    limits.maxMarkup = 3;
    EXPECT_FALSE(tallyElements("<a><b/><c/></a>", kQueries, limits));
}

// Every part of the sample documents the scan reads gives the parser's counts, and it reads the
// ordinary parts of exported documents rather than leaving them all to the parser.
TEST(ElementTally, SampleDocumentsCountAsParsed)
{
    int scanned = 0;
    const QDir samples(test::samplePath(QStringLiteral("idml")));
    for (const QString& file : samples.entryList({QStringLiteral("*.idml")}, QDir::Files)) {
        QTemporaryDir work;
        app::Result<std::shared_ptr<IdmlDocument>> document = IdmlDocument::open(samples.filePath(file), work.path());
        ASSERT_TRUE(document) << file.toStdString();
        for (const QString& name : (*document)->spreadFiles() + (*document)->storyFiles()) {
            const app::Result<QByteArray> text = (*document)->partText(name);
            ASSERT_TRUE(text) << name.toStdString();
            if (const std::optional<std::vector<qint64>> counted = tally(*text); counted) {
                ++scanned;
                EXPECT_EQ(counted, parsedCounts(*text)) << file.toStdString() << " " << name.toStdString();
            }
        }
    }
    EXPECT_GT(scanned, 100);
}
