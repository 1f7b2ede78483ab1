#include "app/Records.h"

#include "app/Settings.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon::app;

namespace {
QVariantMap rec(const QString& name, const QVariant& status)
{
    return {{QStringLiteral("name"), name}, {QStringLiteral("status"), status}};
}
} // namespace

TEST(Records, NameLookupAndRemovalTakeTheFirstMatchOnly)
{
    QVariantList list{rec(QStringLiteral("A"), 1), QVariantMap{{QStringLiteral("other"), 1}}, rec(QStringLiteral("B"), 2),
                      rec(QStringLiteral("A"), 3)};
    ASSERT_TRUE(objectForName(list, QStringLiteral("A")).has_value());
    EXPECT_EQ(objectForName(list, QStringLiteral("A"))->value(QStringLiteral("status")).toInt(), 1);
    EXPECT_FALSE(objectForName(list, QStringLiteral("C")).has_value());
    EXPECT_TRUE(removeObjectForName(list, QStringLiteral("A")));
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(objectForName(list, QStringLiteral("A"))->value(QStringLiteral("status")).toInt(), 3);
    EXPECT_FALSE(removeObjectForName(list, QStringLiteral("C")));
    EXPECT_EQ(list.size(), 3);
}

TEST(Records, FilterByValueKeepsOrderAndTreatsMissingKeysAsUnequal)
{
    const QVariantList list{rec(QStringLiteral("a"), QStringLiteral("Missing")), rec(QStringLiteral("b"), QStringLiteral("OK")),
                            QVariantMap{{QStringLiteral("name"), QStringLiteral("c")}},
                            rec(QStringLiteral("d"), QStringLiteral("Missing"))};
    const QVariantList missing = everyDictWhoseValueForKey(list, QStringLiteral("status"), QStringLiteral("Missing"));
    ASSERT_EQ(missing.size(), 2);
    EXPECT_EQ(missing[1].toMap().value(QStringLiteral("name")).toString(), QStringLiteral("d"));
    const QVariantList others = everyDictWhoseValueForKeyIsNot(list, QStringLiteral("status"), QStringLiteral("Missing"));
    ASSERT_EQ(others.size(), 2);
    EXPECT_EQ(others[0].toMap().value(QStringLiteral("name")).toString(), QStringLiteral("b"));
    EXPECT_EQ(others[1].toMap().value(QStringLiteral("name")).toString(), QStringLiteral("c"));
}

TEST(Records, KeyPathAppliesTheFirstKeyTwice)
{
    const QVariantMap inner{{QStringLiteral("b"), QStringLiteral("deep")}};
    const QVariantMap a{{QStringLiteral("a"), inner}, {QStringLiteral("b"), QStringLiteral("shallow")}};
    const QVariantMap root{{QStringLiteral("a"), a}};
    EXPECT_EQ(valueForKeyAtPath(root, QStringLiteral("a.b")).toString(), QStringLiteral("deep"));
    // The ordinary reading (root.a.b == "shallow") is not what this lookup does.
    EXPECT_NE(valueForKeyAtPath(root, QStringLiteral("a.b")).toString(), QStringLiteral("shallow"));
    EXPECT_TRUE(valueForKeyAtPath(root, QStringLiteral("x.y")).isNull());
    EXPECT_TRUE(valueForKeyAtPath(QVariantMap{{QStringLiteral("a"), 5}}, QStringLiteral("a")).isNull());
    EXPECT_EQ(valueForKeyAtPath(QVariantMap{{QStringLiteral("a"), a}}, QStringLiteral("a")).toMap(), inner);
}

TEST(Records, NilValueFallsBack)
{
    QVariantMap r;
    setObjectForKeyValueIfNil(r, QStringLiteral("k"), QVariant(), QStringLiteral("?"));
    setObjectForKeyValueIfNil(r, QStringLiteral("j"), QStringLiteral(""), QStringLiteral("?"));
    EXPECT_EQ(r.value(QStringLiteral("k")).toString(), QStringLiteral("?"));
    EXPECT_EQ(r.value(QStringLiteral("j")).toString(), QString());
}

TEST(Settings, BoolForKeyWithNilValueAndTypedDefaults)
{
    QTemporaryDir dir;
    Settings s(dir.filePath(QStringLiteral("defaults.ini")));
    EXPECT_FALSE(s.boolForKey(QStringLiteral("flag"), false));
    EXPECT_TRUE(s.boolForKey(QStringLiteral("flag"), true));
    s.setValue(QStringLiteral("flag"), false);
    EXPECT_FALSE(s.boolForKey(QStringLiteral("flag"), true));
    s.setValue(QStringLiteral("flag"), QStringLiteral("YES"));
    EXPECT_TRUE(s.boolForKey(QStringLiteral("flag"), false));
    s.setValue(QStringLiteral("flag"), QStringLiteral("0"));
    EXPECT_FALSE(s.boolForKey(QStringLiteral("flag"), true));

    const SettingKey preset{"selectedPreset", QStringLiteral("[Default]")};
    EXPECT_EQ(s.string(preset), QStringLiteral("[Default]"));
    s.setValue(QStringLiteral("selectedPreset"), QStringLiteral("Print"));
    s.sync();
    Settings again(dir.filePath(QStringLiteral("defaults.ini")));
    EXPECT_EQ(again.string(preset), QStringLiteral("Print"));
}
