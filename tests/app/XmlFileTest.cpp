#include "app/XmlFile.h"

#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon::app;

TEST(XmlFile, ErrorsNameTheFileAndTheLine)
{
    QTemporaryDir dir;
    const QString missing = dir.filePath(QStringLiteral("Story_u1.xml"));
    const auto gone = loadXmlFile(missing);
    ASSERT_FALSE(gone.ok());
    EXPECT_EQ(gone.error().file, missing);
    EXPECT_TRUE(gone.error().message.contains(QStringLiteral("does not exist")));

    const QString broken = dir.filePath(QStringLiteral("Styles.xml"));
    quillon::test::writeAll(broken, "<?xml version=\"1.0\"?>\n<Styles>\n  <Style Name=\"a\">\n</Styles>\n");
    const auto bad = loadXmlFile(broken);
    ASSERT_FALSE(bad.ok());
    EXPECT_EQ(bad.error().file, broken);
    EXPECT_EQ(bad.error().where, QStringLiteral("line 4"));

    EXPECT_FALSE(parseXml("", QStringLiteral("empty")).ok());
    EXPECT_FALSE(parseXml("just text", QStringLiteral("text")).ok());
}

TEST(XmlFile, KeepsBlankTextAndProcessingInstructions)
{
    const auto doc = parseXml("<Story><Content> </Content><Content><?ACE 18?></Content></Story>", QStringLiteral("s"));
    ASSERT_TRUE(doc.ok());
    const pugi::xml_node blank = (*doc)->document_element().first_child();
    EXPECT_STREQ(blank.text().get(), " ");
    EXPECT_EQ(blank.next_sibling().first_child().type(), pugi::node_pi);
}
