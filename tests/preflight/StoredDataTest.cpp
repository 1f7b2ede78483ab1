#include "preflight/StoredData.h"

#include "app/AppPaths.h"
#include "app/PropertyList.h"
#include "inspection/ColorRecordKeys.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::preflight;
using namespace quillon::inspection;

namespace {

// Each test gets an application-support folder of its own.
class StoredData : public testing::Test {
protected:
    void SetUp() override
    {
        m_saved = qgetenv("QUILLON_SUPPORT_DIR");
        qputenv("QUILLON_SUPPORT_DIR", QFile::encodeName(m_support.filePath(QStringLiteral("Quillon"))));
    }
    void TearDown() override { qputenv("QUILLON_SUPPORT_DIR", m_saved); }

    QString file(const char* name) const { return QDir(app::applicationSupportFolder()).filePath(QLatin1String(name)); }

private:
    QTemporaryDir m_support;
    QByteArray m_saved;
};

QVariantMap rec(const char* name)
{
    return {{QStringLiteral("name"), QString::fromUtf8(name)}};
}

} // namespace

TEST_F(StoredData, StoringAppendsToEachFileAndSkipsEmptyArrays)
{
    EXPECT_EQ(getStoredData(), (QVariantList{QVariantList{}, QVariantList{}, QVariantList{}}));
    ASSERT_TRUE(storeDataForFonts({rec("F1")}, {}, {rec("L1")}).ok());
    ASSERT_TRUE(storeDataForFonts({rec("F2")}, {rec("C1")}, {}).ok());
    deleteStoredData(); // keeps everything
    const QVariantList data = getStoredData();
    EXPECT_EQ(data[0].toList(), (QVariantList{rec("F1"), rec("F2")}));
    EXPECT_EQ(data[1].toList(), QVariantList{rec("C1")});
    EXPECT_EQ(data[2].toList(), QVariantList{rec("L1")});
}

TEST_F(StoredData, AnUnreadableFileIsNeverOverwritten)
{
    QDir().mkpath(app::applicationSupportFolder());
    test::writeAll(file("font_data.plist"), "<?xml version=\"1.0\"?><plist><array><string>cut");
    ASSERT_TRUE(app::writePropertyListFile(QVariantMap{{QStringLiteral("a"), 1}}, file("color_data.plist")).ok());

    const app::Status status = storeDataForFonts({rec("F")}, {rec("C")}, {rec("L")});
    ASSERT_FALSE(status.ok());
    EXPECT_TRUE(status.error().text().contains(QStringLiteral("font_data.plist")));
    EXPECT_EQ(test::readAll(file("font_data.plist")), QByteArray("<?xml version=\"1.0\"?><plist><array><string>cut"));
    EXPECT_TRUE(app::readPropertyListFile(file("color_data.plist"))->toMap().contains(QStringLiteral("a")));
    // The readable file is still written.
    EXPECT_EQ(getStoredData()[2].toList(), QVariantList{rec("L")});
    EXPECT_TRUE(getStoredData()[0].toList().isEmpty());
}

TEST_F(StoredData, DataFilesHoldOneEntryPerDocument)
{
    QTemporaryDir data;
    const QString folder = data.filePath(QStringLiteral("run 1"));
    ASSERT_TRUE(writeFontDataFile(folder, QStringLiteral("/Jobs/A.indd"), {rec("Minion")}).ok());
    ASSERT_TRUE(writeFontDataFile(folder, QStringLiteral("/Jobs/B.indd"), {rec("Myriad")}).ok());
    ASSERT_TRUE(writeFontDataFile(folder, QStringLiteral("/Jobs/A.indd"), {rec("Arial")}).ok());
    auto root = app::readPropertyListDictionary(QDir(folder).filePath(QStringLiteral("qnf_tmpFontData.plist")));
    ASSERT_TRUE(root.ok());
    ASSERT_EQ(root->keys(), (QStringList{"/Jobs/A.indd", "/Jobs/B.indd"}));
    const QVariantMap a = root->value(QStringLiteral("/Jobs/A.indd")).toMap();
    EXPECT_EQ(a.value(QStringLiteral("children")).toList(), QVariantList{rec("Arial")});

    // A damaged data file is replaced: it is the program's own scratch file.
    const QString colors = QDir(folder).filePath(QStringLiteral("qnf_tmpColorData.plist"));
    test::writeAll(colors, "garbage");
    ColorInspection inspection;
    inspection.records = {rec("Black")};
    inspection.namesOfUnusedColors = {QStringLiteral("Black")};
    inspection.registrationInTextCount = 2;
    ASSERT_TRUE(writeColorDataFile(folder, QStringLiteral("/Jobs/A.indd"), inspection).ok());
    const QVariantMap entry = app::readPropertyListDictionary(colors)->value(QStringLiteral("/Jobs/A.indd")).toMap();
    EXPECT_EQ(entry.value(kColorDocUnusedNamesKey).toStringList(), QStringList{QStringLiteral("Black")});
    EXPECT_EQ(entry.value(kColorDocRegistrationInTextCountKey).toInt(), 2);
}
