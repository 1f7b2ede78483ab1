// Every sample document through the three inspections, unpacked once.
#include "inspection/ColorRecordKeys.h"
#include "inspection/ColorsFromIdml.h"
#include "inspection/FontFiles.h"
#include "inspection/FontRecordKeys.h"
#include "inspection/FontsFromIdml.h"
#include "inspection/ParaStylesFromIdml.h"

#include "support/IdmlFixtures.h"
#include "support/TestSupport.h"

#include <QDirIterator>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::inspection;

TEST(FontColorSamples, EverySampleGivesRecordsWithEveryKeyFilled)
{
    QDirIterator it(test::samplePath(QStringLiteral("idml")), {QStringLiteral("*.idml")}, QDir::Files,
                    QDirIterator::Subdirectories);
    int documents = 0;
    int withFonts = 0;
    while (it.hasNext()) {
        const QString path = it.next();
        SCOPED_TRACE(path.toStdString());
        const auto document = test::readPackage(path); // straight from the archive
        ++documents;

        FontFileFinder finder(path);
        const auto fonts = fontRecordsFromIdml(*document, finder);
        ASSERT_TRUE(fonts.ok()) << fonts.error().text().toStdString();
        EXPECT_TRUE(fonts->skipped.isEmpty());
        withFonts += fonts->found.isEmpty() ? 0 : 1;
        for (const QVariant& value : fonts->found) {
            const QVariantMap record = value.toMap();
            for (const QString& key : {kFontNameKey, kFontTypeKey, kFontStatusKey, kFontPathKey, kFontEmbedKey})
                EXPECT_FALSE(record.value(key).toString().isEmpty()) << key.toStdString();
            EXPECT_TRUE(QStringList({"installed", "missing", "fauxed", "substituted"})
                            .contains(record.value(kFontStatusKey).toString()));
        }

        const auto colors = colorInspectionFromIdml(*document, QStringLiteral("1"));
        ASSERT_TRUE(colors.ok()) << colors.error().text().toStdString();
        EXPECT_TRUE(colors->skipped.isEmpty());
        QStringList names;
        QStringList unused;
        for (const QVariant& value : colors->found.records) {
            const QVariantMap record = value.toMap();
            const QString name = record.value(kColorNameKey).toString();
            names.append(name);
            EXPECT_FALSE(name.isEmpty());
            if (name != QLatin1String("None")) {
                EXPECT_FALSE(record.value(kColorModelKey).toString().isEmpty()) << name.toStdString();
                EXPECT_FALSE(record.value(kColorSpaceKey).toString().isEmpty()) << name.toStdString();
                EXPECT_FALSE(record.value(kColorValuesListKey).toList().isEmpty()) << name.toStdString();
            }
            const QString used = record.value(kColorUsedKey).toString();
            EXPECT_TRUE(used == QStringLiteral("-") || used == QStringLiteral("\u221A"));
            if (used == QLatin1String("-"))
                unused.append(name);
        }
        EXPECT_EQ(colors->found.namesOfUnusedColors, unused);
        for (const char* special : {"Paper", "Registration"})
            EXPECT_TRUE(names.contains(QLatin1String(special))) << special;

        const auto styles = paraStyleUsesFromIdml(*document);
        ASSERT_TRUE(styles.ok()) << styles.error().text().toStdString();
        EXPECT_FALSE(styles->found.isEmpty());
    }
    EXPECT_EQ(documents, 17);
    EXPECT_EQ(withFonts, 16); // placeholders.idml has no stories
}
