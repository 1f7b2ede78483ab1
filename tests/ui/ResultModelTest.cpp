#include "ui/ResultLists.h"
#include "ui/SummaryModel.h"

#include <QAbstractItemModelTester>
#include <QColor>
#include <QIcon>

#include <gtest/gtest.h>

using namespace quillon::ui;

namespace {

QVariantMap linkRow(const QString& name, const QString& status, const QVariantMap& alerts = {})
{
    return {{"name", name},
            {"path", "/jobs/" + name},
            {"status", status},
            {"kind", "JPEG"},
            {"size", "12 KB"},
            {"sizebytes", 12000},
            {"alerts", alerts},
            {"statusImg", status},
            {"icon", "fileIcon"},
            {"epsfonts", "2"},
            {"epsfontlist", "Minion Pro\rMyriad E"}};
}

QVariantMap group(const QString& path, const QVariantList& children)
{
    return {{"docPath", path}, {"name", path.section('/', -1)}, {"isDock", 1}, {"children", children}};
}

bool isRed(const QVariant& colour)
{
    const QColor c = colour.value<QColor>();
    return c.isValid() && c.red() > 150 && c.green() < 80 && c.blue() < 80;
}

} // namespace

// Flat lists, document groups and the summary all keep Qt's model contract through resets and sorts.
TEST(ResultModels, PassTheModelTesterWithFlatAndGroupedRows)
{
    LinksModel links;
    QAbstractItemModelTester linksTester(&links, QAbstractItemModelTester::FailureReportingMode::Fatal);
    links.setRows({linkRow("b.jpg", "OK"), linkRow("a.jpg", "Missing")});
    links.setRows({group("/jobs/one.idml", {linkRow("c.jpg", "OK")}),
                   group("/jobs/two.idml", {linkRow("d.jpg", "OK"), linkRow("e.jpg", "Modified")})});
    links.sort(0, Qt::DescendingOrder);
    EXPECT_EQ(links.rowCount(links.index(0, 0)), 2); // "two.idml" first, with its two links
    EXPECT_EQ(links.index(1, 0, links.index(0, 0)).data().toString(), "e.jpg");
    EXPECT_EQ(links.rowCount(links.index(0, 3)), 0); // only the first column has children

    FontsModel fonts;
    QAbstractItemModelTester fontsTester(&fonts, QAbstractItemModelTester::FailureReportingMode::Fatal);
    fonts.setRows({QVariantMap{{"name", "Minion Pro"}, {"type", "OpenType"}, {"typeIcon", "fontOpenType"}}});
    ColorsModel colors;
    QAbstractItemModelTester colorsTester(&colors, QAbstractItemModelTester::FailureReportingMode::Fatal);
    colors.setRows({QVariantMap{{"name", "Blue"}, {"space", "RGB"}, {"colValuesList", QVariantList{0.0, 0.0, 1.0}}}});
    SummaryModel summary;
    QAbstractItemModelTester summaryTester(&summary, QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(summary.rowCount(), 4);
    EXPECT_EQ(summary.index(1, 0).data().toString(), "Fonts");
    EXPECT_EQ(summary.index(4, 0, summary.index(1, 0)).data().toString(), "Total");
}

// Alerts turn names and judged columns red, frame forbidden colour pictures, and fill tool tips;
// headers count rows and explain the picture columns.
TEST(ResultModels, RolesShowAlertsBordersToolTipsAndHeaders)
{
    LinksModel links;
    links.setRows({linkRow("ok.jpg", "OK"),
                   linkRow("low.jpg", "OK",
                           {{"eres", "Effective res < 300 dpi"}, {"name", QStringList{"Name contains \"low\""}}})});
    const int eres = links.columnOf("eres");
    EXPECT_FALSE(links.index(0, 0).data(Qt::ForegroundRole).isValid());
    EXPECT_TRUE(isRed(links.index(1, 0).data(Qt::ForegroundRole)));
    EXPECT_TRUE(isRed(links.index(1, eres).data(Qt::ForegroundRole)));
    EXPECT_FALSE(links.index(1, links.columnOf("kind")).data(Qt::ForegroundRole).isValid());
    const int alert = links.columnOf("alert");
    EXPECT_EQ(links.index(1, alert).data(Qt::ToolTipRole).toString(), "Effective res < 300 dpi\nName contains \"low\"");
    EXPECT_EQ(links.index(1, alert).data(ImageNameRole).toString(), "warning");
    EXPECT_EQ(links.index(0, alert).data(ImageNameRole).toString(), "");
    EXPECT_EQ(links.index(0, links.columnOf("statusImg")).data(ImageNameRole).toString(), "OK");
    EXPECT_EQ(links.index(0, links.columnOf("epsfonts")).data(PullDownItemsRole).toStringList(),
              (QStringList{"Minion Pro", "Myriad E"}));
    EXPECT_EQ(links.headerData(0, Qt::Horizontal).toString(), QString::fromUtf8("LINKS \u2022 2"));
    EXPECT_EQ(links.headerData(eres, Qt::Horizontal, Qt::ToolTipRole).toString(),
              "Effective resolution of image in InDesign");
    links.setRenamer([](const QModelIndex&, const QString&) { return true; });
    links.setRows({linkRow("here.jpg", "OK"), linkRow("gone.jpg", "Missing")});
    EXPECT_TRUE(links.flags(links.index(0, 0)) & Qt::ItemIsEditable);
    EXPECT_FALSE(links.flags(links.index(1, 0)) & Qt::ItemIsEditable);
    EXPECT_FALSE(links.flags(links.index(0, 2)) & Qt::ItemIsEditable);

    ColorsModel colors;
    colors.setRows({QVariantMap{{"name", "Web Blue"},
                                {"spot", "spot"},
                                {"space", "RGB"},
                                {"colValuesList", QVariantList{0.0, 0.0, 1.0}},
                                {"alerts", QVariantMap{{"space", "Color space is RGB"}}}}});
    const QModelIndex space = colors.index(0, colors.columnOf("space"));
    EXPECT_TRUE(isRed(space.data(BorderColorRole)));
    EXPECT_EQ(space.data(Qt::ToolTipRole).toString(), "Color space is RGB");
    EXPECT_FALSE(colors.index(0, colors.columnOf("spot")).data(BorderColorRole).isValid());
    EXPECT_EQ(colors.index(0, 0).data(Qt::DecorationRole).value<QColor>(), QColor(Qt::blue));
    EXPECT_EQ(colors.index(0, 0).data(Qt::ToolTipRole).toString(), "Color space is RGB");
    EXPECT_EQ(colors.headerData(0, Qt::Horizontal).toString(), QString::fromUtf8("COLORS \u2022 1"));

    FontsModel fonts;
    EXPECT_EQ(fonts.headerData(fonts.columnOf("statusIcon"), Qt::Horizontal, Qt::ToolTipRole).toString(),
              "Font status (OK, Missing, Fauxed or Substituted)");
}
