#include "ui/InformationPane.h"
#include "ui/MetadataPane.h"

#include "fileinspect/PXMetadataController.h"
#include "links/LinkRecordKeys.h"
#include "support/TestSupport.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTableView>
#include <QTimer>

#include <gtest/gtest.h>

using namespace quillon;

namespace {

// Runs the event loop until the pane's picture is read or `ms` have passed; true when read.
bool waitForPreview(ui::InformationPane& pane, int ms)
{
    QEventLoop loop;
    bool ready = false;
    QObject::connect(&pane, &ui::InformationPane::previewReady, &loop, [&] {
        ready = true;
        loop.quit();
    });
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
    return ready;
}

} // namespace

// The rows of a real file are shown in order; section headers span both columns and are
// marked; an empty path or no rows empties the table.
TEST(MetadataPane, ShowsRowsWithHeaderRowsApart)
{
    const QString path = test::samplePath(QStringLiteral("jpeg/GPS.jpg"));
    fileinspect::PXMetadataController controller;
    const QVariantList rows = controller.readFromURL(path);
    ASSERT_FALSE(rows.isEmpty());
    ui::MetadataPane pane;
    pane.setMetadataForFile(path, rows);
    const QList<QStringList> shown = pane.shownRows();
    ASSERT_EQ(shown.size(), rows.size());
    int headers = 0;
    for (int row = 0; row < rows.size(); ++row) {
        const QVariantMap given = rows.at(row).toMap();
        EXPECT_EQ(pane.isHeaderRow(row), fileinspect::isMetadataHeaderRow(given)) << row;
        headers += pane.isHeaderRow(row);
        EXPECT_EQ(shown.at(row).at(0), given.value(QStringLiteral("tag")).toString().trimmed());
        if (!pane.isHeaderRow(row)) {
            EXPECT_EQ(shown.at(row).at(1), fileinspect::metadataValueText(given.value(QStringLiteral("value"))));
        }
    }
    EXPECT_GE(headers, 2) << "EXIF and GPS sections";
    pane.setMetadataForFile(QString(), rows);
    EXPECT_TRUE(pane.shownRows().isEmpty());
    EXPECT_EQ(pane.table()->columnSpan(0, 0), 1) << "spans cleared with the rows";
    pane.setMetadataForFile(path, {});
    EXPECT_TRUE(pane.shownRows().isEmpty());
}

// The facts, a preview scaled into its box and a thumbnail come from the record's file; a
// record replaced before its picture is read never shows that picture; an empty record clears.
TEST(InformationPane, ShowsFactsAndPictureAndClears)
{
    const QString path = test::samplePath(QStringLiteral("tiff/hopper.tif"));
    const QVariantMap record{{links::kLinkPathKey, path},
                             {links::kLinkNameKey, QStringLiteral("hopper.tif")},
                             {links::kLinkKindKey, QStringLiteral("TIFF")},
                             {links::kLinkStatusKey, QStringLiteral("OK")}};
    ui::InformationPane pane;
    pane.setInfoForFile(record);
    ASSERT_TRUE(waitForPreview(pane, 10000));
    EXPECT_FALSE(pane.preview().isNull());
    EXPECT_LE(pane.preview().width(), 280);
    EXPECT_LE(pane.preview().height(), 220);
    EXPECT_LE(pane.thumbnail().width(), 48);
    QStringList labels;
    for (const auto& [label, value] : pane.shownFacts())
        labels.append(label);
    EXPECT_TRUE(labels.contains(QStringLiteral("Kind")) && labels.contains(QStringLiteral("Pixels")))
        << labels.join(',').toStdString();

    pane.setInfoForFile(record);
    pane.setInfoForFile({});
    EXPECT_FALSE(waitForPreview(pane, 500)) << "the replaced record's picture is dropped";
    EXPECT_TRUE(pane.preview().isNull());
    EXPECT_TRUE(pane.thumbnail().isNull());
    EXPECT_TRUE(pane.shownFacts().isEmpty());
}
