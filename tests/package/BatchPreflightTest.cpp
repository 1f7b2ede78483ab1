#include "package/PreflightToPackageController.h"

#include "app/Alerts.h"
#include "host/OfflineIdmlHost.h"
#include "support/QtPrinters.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace quillon;
using namespace quillon::package;

namespace {

class BarValues : public app::ProgressSink {
public:
    QList<double> values;
    void setValue(double value) override { values << value; }
};

} // namespace

TEST(BatchPreflight, SevenDocumentsEndAt98AndSharedLinkNamesCountOnce)
{
    QTemporaryDir dir;
    const QString set = test::samplePath(u"idml/sets/simpleidml/tests/regressiontests/IDML"_s);
    QList<TNFileItem> documents;
    for (int i = 0; i < 7; ++i) {
        // Two copies place the same default.jpg; the others have no links.
        const QString path = dir.filePath(u"doc%1.idml"_s.arg(i));
        QFile::copy(i < 2 ? set + u"/article-1photo.idml"_s : test::samplePath(u"idml/interview.idml"_s), path);
        documents << TNFileItem::fileItemWithPath(path);
    }
    host::OfflineIdmlHost host;
    app::ScriptedAlertSink alerts;
    BarValues bar;
    QNPreflightToPackageController batch(host, alerts, bar);
    BatchPreflightOptions options{.linkFolders = {set + u"/media"_s}, .workFolder = dir.filePath(u"work"_s)};
    ASSERT_TRUE(batch.preflightForPackaging(documents, PackageMode::Unified, options));
    EXPECT_EQ(batch.progressSegmentForDoc(), 14);
    EXPECT_EQ(bar.values.last(), 98);
    ASSERT_EQ(batch.preflightDataOfProcessedDocs().size(), 7);
    EXPECT_EQ(batch.preflightDataOfProcessedDocs().first().links().size(), 1);
    ASSERT_EQ(batch.linksWithoutDuplicates().size(), 1);
    EXPECT_EQ(batch.sizeOfLinksWithoutDuplicates(), 27644);
    EXPECT_TRUE(host.openDocuments().isEmpty()); // each closed after its preflight
    const qint64 documentBytes = batch.sizeOfInDesignDocs();
    EXPECT_EQ(batch.calculateTotalSizeToPackage({}).sizeBytes, 27644 + documentBytes);
    // Separate packages count each document's copy of the file.
    ASSERT_TRUE(batch.preflightForPackaging(documents.mid(0, 2), PackageMode::Separate, options));
    EXPECT_EQ(batch.sizeOfLinks(), 2 * 27644);

    // A document that cannot be opened ends the batch with the open alert.
    documents.insert(1, TNFileItem::fileItemWithPath(dir.filePath(u"gone.idml"_s)));
    EXPECT_FALSE(batch.preflightForPackaging(documents, PackageMode::Unified, options));
    EXPECT_EQ(batch.preflightDataOfProcessedDocs().size(), 1);
    EXPECT_EQ(alerts.requests().back().title, u"Cannot open document"_s);
    EXPECT_FALSE(batch.preflightForPackaging({}, PackageMode::Unified, options));
    EXPECT_EQ(alerts.requests().back().title, u"No files to preflight"_s);
}
