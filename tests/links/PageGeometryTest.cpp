#include "links/PageGeometry.h"

#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace quillon::links;

namespace {

struct Page {
    std::string name;
    double leftX;
    std::string bounds = "0 0 792 612";
};

std::string frameXml(double anchorX, double translateX)
{
    return "<Rectangle Self=\"uf\" ItemTransform=\"1 0 0 1 " + std::to_string(translateX) +
           " 0\"><Properties><PathGeometry><GeometryPathType><PathPointArray><PathPointType Anchor=\"" +
           std::to_string(anchorX) +
           " -20\"/><PathPointType Anchor=\"9999 0\"/></PathPointArray></GeometryPathType>"
           "</PathGeometry></Properties></Rectangle>";
}

std::string spreadXml(int pageCount, int binding, double y, const std::vector<Page>& pages)
{
    std::string xml = "<idPkg:Spread xmlns:idPkg=\"x\"><Spread Self=\"us\" PageCount=\"" + std::to_string(pageCount) +
                      "\" BindingLocation=\"" + std::to_string(binding) + "\" ItemTransform=\"1 0 0 1 0 " +
                      std::to_string(y) + "\"><FlattenerPreference/>";
    for (const Page& page : pages)
        xml += "<Page Self=\"p\" Name=\"" + page.name + "\" GeometricBounds=\"" + page.bounds +
               "\" ItemTransform=\"1 0 0 1 " + std::to_string(page.leftX) + " -396\"/>";
    return xml + "<Rectangle Self=\"after\"/></Spread></idPkg:Spread>";
}

// A geometry that has read one spread.
struct Reading {
    pugi::xml_document spread;
    PageGeometry geometry;

    explicit Reading(const std::string& xml, bool isMaster = false)
    {
        EXPECT_TRUE(spread.load_string(xml.c_str()));
        geometry.beginSpreadFile(isMaster);
        geometry.parseSpreadAndPagesInfoInRootNode(spread.document_element());
    }

    PageHit pageAt(double anchorX, double translateX = 0.0) const
    {
        pugi::xml_document frame;
        frame.load_string(frameXml(anchorX, translateX).c_str());
        return geometry.parentPageNameForGraphicNode(frame.document_element());
    }
};

} // namespace

TEST(PageGeometry, TwoFacingPagesSplitAtTheBindingWithZeroOnTheRight)
{
    Reading reading(spreadXml(2, 1, 1200, {{"2", -612}, {"3", 0}}));
    EXPECT_EQ(reading.geometry.pagesInSpreadCase(), PagesInSpreadCase::QNTwoFacingPages);
    EXPECT_EQ(reading.pageAt(-100).name, QStringLiteral("2"));
    EXPECT_EQ(*reading.pageAt(-100).sortOrder, 1200.0);
    EXPECT_EQ(reading.pageAt(0).name, QStringLiteral("3"));
    EXPECT_EQ(*reading.pageAt(0).sortOrder, 1201.0);
    // The frame's own translation counts: anchor -10 moved 20 to the right lands on the right page.
    EXPECT_EQ(reading.pageAt(-10, 20).name, QStringLiteral("3"));
}

TEST(PageGeometry, TwoPagesOnOneSideOfTheBindingUseTheGeneralCase)
{
    Reading right(spreadXml(2, 0, 0, {{"1", 0}, {"2", 612}}));
    EXPECT_EQ(right.geometry.pagesInSpreadCase(), PagesInSpreadCase::QNMultiPageSpread);
    EXPECT_EQ(right.geometry.indexesOfRightPages(), (std::vector<int>{1, 2}));
    EXPECT_TRUE(right.geometry.indexesOfLeftPages().empty());
    EXPECT_EQ(right.pageAt(100).name, QStringLiteral("1"));
    EXPECT_EQ(right.pageAt(612).name, QStringLiteral("2"));
    EXPECT_EQ(*right.pageAt(700).sortOrder, 2.0);

    Reading left(spreadXml(2, 2, 10, {{"A", -1224}, {"B", -612}}));
    EXPECT_EQ(left.geometry.indexesOfLeftPages(), (std::vector<int>{-2, -1}));
    EXPECT_EQ(left.pageAt(-1000).name, QStringLiteral("A"));
    EXPECT_EQ(*left.pageAt(-1000).sortOrder, 8.0);
    EXPECT_EQ(left.pageAt(-300).name, QStringLiteral("B"));
    // Nothing lies right of the binding: a graphic there has no page.
    EXPECT_EQ(left.pageAt(50).name, QStringLiteral("?"));
    EXPECT_FALSE(left.pageAt(50).sortOrder);
}

TEST(PageGeometry, PasteboardGraphicsBelongToTheOutermostPages)
{
    Reading reading(spreadXml(3, 1, 0, {{"1", -612}, {"2", 0}, {"3", 612}}));
    EXPECT_EQ(reading.pageAt(-5000).name, QStringLiteral("1"));
    EXPECT_EQ(reading.pageAt(5000).name, QStringLiteral("3"));
    EXPECT_EQ(*reading.pageAt(5000).sortOrder, 2.0);
    EXPECT_EQ(reading.pageAt(611.9).name, QStringLiteral("2"));
}

TEST(PageGeometry, ABindingBeyondThePageCountPutsEveryPageLeft)
{
    Reading reading(spreadXml(2, 5, 0, {{"x", -1224}, {"y", -612}}));
    EXPECT_EQ(reading.pageAt(-2000).name, QStringLiteral("x"));
    EXPECT_EQ(*reading.pageAt(-2000).sortOrder, -5.0);
    EXPECT_EQ(reading.pageAt(-100).name, QStringLiteral("y"));
    // Hostile figures neither hang nor take memory.
    Reading huge(spreadXml(2, 2'000'000'000, 0, {{"x", 0}, {"y", 0}}));
    EXPECT_EQ(huge.geometry.indexesOfLeftPages().size(), 2U);
    Reading negative(spreadXml(2, -7, 0, {{"x", 0}, {"y", 612}}));
    EXPECT_EQ(negative.pageAt(700).name, QStringLiteral("y"));
}

TEST(PageGeometry, MasterGraphicsGetTheMasterNameAndNoSortOrder)
{
    const std::string master = "<idPkg:MasterSpread><MasterSpread Self=\"ua\" Name=\"A-Master\" PageCount=\"2\">"
                               "<Page Name=\"L\" GeometricBounds=\"0 0 10 10\"/></MasterSpread></idPkg:MasterSpread>";
    Reading reading(master, true);
    EXPECT_EQ(reading.geometry.pagesInSpreadCase(), PagesInSpreadCase::QNSinglePage);
    EXPECT_EQ(reading.geometry.yOffsetOfSpreadInDoc(), -1.0);
    EXPECT_EQ(reading.pageAt(-300).name, QStringLiteral("A-Master"));
    EXPECT_FALSE(reading.pageAt(-300).sortOrder);
    // Master pages are neither measured nor sorted.
    EXPECT_TRUE(reading.geometry.docPageSizes().empty());
    EXPECT_FALSE(reading.geometry.sortOrderForPageName(QStringLiteral("L")));
}

TEST(PageGeometry, PageSizesGroupPageNamesByTheirFormattedSize)
{
    PageGeometry geometry;
    pugi::xml_document one;
    one.load_string(spreadXml(2, 1, 0, {{"1", -612, "0 0 792 612"}, {"2", 0, "10 20 802 632"}}).c_str());
    geometry.beginSpreadFile(false);
    geometry.parseSpreadAndPagesInfoInRootNode(one.document_element());
    pugi::xml_document two;
    two.load_string(spreadXml(1, 0, 900, {{"3", 0, "0 0 841.88976377952 595.2755905511812"}}).c_str());
    geometry.beginSpreadFile(false);
    geometry.parseSpreadAndPagesInfoInRootNode(two.document_element());

    const PageSizes& sizes = geometry.docPageSizes();
    ASSERT_EQ(sizes.size(), 2);
    EXPECT_EQ(sizes.value({QStringLiteral("612"), QStringLiteral("792")}),
              (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
    EXPECT_EQ(sizes.value({QStringLiteral("595.2756"), QStringLiteral("841.8898")}), QStringList{QStringLiteral("3")});
    // The table sorts its sizes; the order they were met in is kept beside it.
    EXPECT_EQ(geometry.docPageSizeOrder(),
              (QList<QStringList>{{QStringLiteral("612"), QStringLiteral("792")},
                                  {QStringLiteral("595.2756"), QStringLiteral("841.8898")}}));
    EXPECT_EQ(*geometry.sortOrderForPageName(QStringLiteral("3")), 900.0);
    EXPECT_TRUE(pageSizeKeyFromGeometricBounds("0 0 792").isEmpty());
}

TEST(PageGeometry, BrokenSpreadsLeaveNoPagesAndNoCrash)
{
    // The first element is not a spread: the page table stays empty.
    Reading notSpread("<idPkg:Spread><Story Self=\"x\"/></idPkg:Spread>");
    EXPECT_EQ(notSpread.pageAt(0).name, QStringLiteral("?"));

    // A spread without pages keeps its header but matches no page.
    Reading noPages(
        "<r><Spread PageCount=\"2\" BindingLocation=\"1\" ItemTransform=\"1 0 0 1 0 44\"><F/></Spread></r>");
    EXPECT_EQ(noPages.geometry.yOffsetOfSpreadInDoc(), 44.0);
    EXPECT_EQ(noPages.pageAt(-10).name, QStringLiteral("?"));
    EXPECT_EQ(noPages.pageAt(10).name, QStringLiteral("?"));

    // Missing attributes read as 0; a page count of 2 with one page still answers.
    Reading bare("<r><Spread><F/><Page Name=\"only\"/></Spread></r>");
    EXPECT_EQ(bare.geometry.pagesInSpreadCase(), PagesInSpreadCase::QNMultiPageSpread);
    EXPECT_EQ(bare.pageAt(3).name, QStringLiteral("only"));
    Reading half(spreadXml(2, 1, 0, {{"left", -612}}));
    EXPECT_EQ(half.pageAt(-1).name, QStringLiteral("left"));
    EXPECT_EQ(half.pageAt(1).name, QStringLiteral("?"));

    // Pages end at the first other element after them; the first child is never a page.
    Reading firstChild("<r><Spread PageCount=\"1\"><Page Name=\"skipped\"/><X/><Page Name=\"taken\"/><Y/>"
                       "<Page Name=\"late\"/></Spread></r>");
    EXPECT_EQ(firstChild.pageAt(0).name, QStringLiteral("taken"));
}

TEST(PageGeometry, PageIndexComesFromTheFifthDescriptorItem)
{
    pugi::xml_document page;
    page.load_string("<Page><Properties><Descriptor><ListItem>a</ListItem><ListItem/><ListItem/><ListItem/>"
                     "<ListItem type=\"long\">12</ListItem></Descriptor></Properties></Page>");
    EXPECT_EQ(PageGeometry::pageIndexInDocForPageNode(page.document_element()), 12);
    pugi::xml_document bare;
    bare.load_string("<Page/>");
    EXPECT_EQ(PageGeometry::pageIndexInDocForPageNode(bare.document_element()), 0);
}
