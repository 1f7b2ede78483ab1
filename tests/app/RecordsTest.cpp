#include "app/Records.h"

#include "app/Settings.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon::app;

namespace {
QVariantMap rec(const QString& name, const QVariant& status)
{
    return {{u"name"_s, name}, {u"status"_s, status}};
}
} // namespace

TEST(Records, NameLookupAndRemovalTakeTheFirstMatchOnly)
{
    QVariantList list{rec(u"A"_s, 1), QVariantMap{{u"other"_s, 1}}, rec(u"B"_s, 2), rec(u"A"_s, 3)};
    ASSERT_TRUE(objectForName(list, u"A"_s).has_value());
    EXPECT_EQ(objectForName(list, u"A"_s)->value(u"status"_s).toInt(), 1);
    EXPECT_FALSE(objectForName(list, u"C"_s).has_value());
    EXPECT_TRUE(removeObjectForName(list, u"A"_s));
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(objectForName(list, u"A"_s)->value(u"status"_s).toInt(), 3);
    EXPECT_FALSE(removeObjectForName(list, u"C"_s));
    EXPECT_EQ(list.size(), 3);
}

TEST(Records, FilterByValueKeepsOrderAndTreatsMissingKeysAsUnequal)
{
    const QVariantList list{rec(u"a"_s, u"Missing"_s), rec(u"b"_s, u"OK"_s), QVariantMap{{u"name"_s, u"c"_s}},
                            rec(u"d"_s, u"Missing"_s)};
    const QVariantList missing = everyDictWhoseValueForKey(list, u"status"_s, u"Missing"_s);
    ASSERT_EQ(missing.size(), 2);
    EXPECT_EQ(missing[1].toMap().value(u"name"_s).toString(), u"d"_s);
    const QVariantList others = everyDictWhoseValueForKeyIsNot(list, u"status"_s, u"Missing"_s);
    ASSERT_EQ(others.size(), 2);
    EXPECT_EQ(others[0].toMap().value(u"name"_s).toString(), u"b"_s);
    EXPECT_EQ(others[1].toMap().value(u"name"_s).toString(), u"c"_s);
}

TEST(Records, KeyPathAppliesTheFirstKeyTwice)
{
    const QVariantMap inner{{u"b"_s, u"deep"_s}};
    const QVariantMap a{{u"a"_s, inner}, {u"b"_s, u"shallow"_s}};
    const QVariantMap root{{u"a"_s, a}};
    EXPECT_EQ(valueForKeyAtPath(root, u"a.b"_s).toString(), u"deep"_s);
    EXPECT_TRUE(valueForKeyAtPath(root, u"x.y"_s).isNull());
    EXPECT_TRUE(valueForKeyAtPath(QVariantMap{{u"a"_s, 5}}, u"a"_s).isNull());
    EXPECT_EQ(valueForKeyAtPath(QVariantMap{{u"a"_s, a}}, u"a"_s).toMap(), inner);
}

TEST(Records, NilValueFallsBack)
{
    QVariantMap r;
    setObjectForKeyValueIfNil(r, u"k"_s, QVariant(), u"?"_s);
    setObjectForKeyValueIfNil(r, u"j"_s, u""_s, u"?"_s);
    EXPECT_EQ(r.value(u"k"_s).toString(), u"?"_s);
    EXPECT_EQ(r.value(u"j"_s).toString(), QString());
}

TEST(Settings, BoolForKeyWithNilValueAndTypedDefaults)
{
    QTemporaryDir dir;
    Settings s(dir.filePath(u"defaults.ini"_s));
    EXPECT_FALSE(s.boolForKey(u"flag"_s, false));
    EXPECT_TRUE(s.boolForKey(u"flag"_s, true));
    s.setValue(u"flag"_s, false);
    EXPECT_FALSE(s.boolForKey(u"flag"_s, true));
    s.setValue(u"flag"_s, u"YES"_s);
    EXPECT_TRUE(s.boolForKey(u"flag"_s, false));
    s.setValue(u"flag"_s, u"0"_s);
    EXPECT_FALSE(s.boolForKey(u"flag"_s, true));

    const SettingKey preset{"selectedPreset", u"[Default]"_s};
    EXPECT_EQ(s.string(preset), u"[Default]"_s);
    s.setValue(u"selectedPreset"_s, u"Print"_s);
    s.sync();
    Settings again(dir.filePath(u"defaults.ini"_s));
    EXPECT_EQ(again.string(preset), u"Print"_s);
}
