#include "preflight/LinkAnalysis.h"
#include "support/IdmlFixtures.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;

// Whether the analysis found links is read through a one-byte truth value, as its callers have
// always read the count: 256 links read as none, 257 as some. The page sizes come with it.
TEST(LinkAnalysis, FoundLinksIsTheLowByteOfTheCount)
{
    QTemporaryDir folder;
    inspection::DocPageSizes pageSizes;
    const auto foundLinks = [&](int count) {
        QByteArray frames;
        for (int i = 0; i < count; ++i) {
            const QByteArray n = QByteArray::number(i);
            frames += "<Rectangle Self=\"r" + n + "\"><Image Self=\"i" + n + "\"><Link Self=\"l" + n +
                      "\" LinkResourceURI=\"file:/missing/" + n + ".tif\"/></Image></Rectangle>";
        }
        const QString path = folder.filePath(QStringLiteral("Links%1.idml").arg(count));
        test::writeIdml(
            path, {{QStringLiteral("designmap.xml"), test::designmapXml({QStringLiteral("Spreads/Spread_1.xml")})},
                   {QStringLiteral("Spreads/Spread_1.xml"), test::spreadXml({QStringLiteral("0 0 792 612")}, frames)}});
        preflight::LinkAnalysisRequest request;
        request.document = test::readPackage(path);
        request.documentPath = path;
        const preflight::LinkAnalysisOutcome outcome = preflight::analyseLinksInIdml(request);
        pageSizes = outcome.pageSizes;
        return outcome.foundLinks;
    };
    EXPECT_TRUE(foundLinks(255));
    ASSERT_EQ(pageSizes.size(), 1);
    EXPECT_FALSE(foundLinks(256));
    EXPECT_TRUE(foundLinks(257));
    EXPECT_FALSE(foundLinks(0));
}
