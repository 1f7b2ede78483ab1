#include "app/XmlFile.h"

#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon::app;

TEST(XmlFile, ErrorsNameTheFileAndTheLine)
{
    QTemporaryDir dir;
    const QString missing = dir.filePath(u"Story_u1.xml"_s);
    const auto gone = loadXmlFile(missing);
    ASSERT_FALSE(gone.ok());
    EXPECT_EQ(gone.error().file, missing);
    EXPECT_TRUE(gone.error().message.contains(u"does not exist"_s));

    const QString broken = dir.filePath(u"Styles.xml"_s);
    quillon::test::writeAll(broken, "<?xml version=\"1.0\"?>\n<Styles>\n  <Style Name=\"a\">\n</Styles>\n");
    const auto bad = loadXmlFile(broken);
    ASSERT_FALSE(bad.ok());
    EXPECT_EQ(bad.error().file, broken);
    EXPECT_EQ(bad.error().where, u"line 4"_s);

    EXPECT_FALSE(parseXml("", u"empty"_s).ok());
    EXPECT_FALSE(parseXml("just text", u"text"_s).ok());
}

TEST(XmlFile, KeepsBlankTextAndProcessingInstructions)
{
    const auto doc = parseXml("<Story><Content> </Content><Content><?ACE 18?></Content></Story>", u"s"_s);
    ASSERT_TRUE(doc.ok());
    const pugi::xml_node blank = (*doc)->document_element().first_child();
    EXPECT_STREQ(blank.text().get(), " ");
    EXPECT_EQ(blank.next_sibling().first_child().type(), pugi::node_pi);
}
