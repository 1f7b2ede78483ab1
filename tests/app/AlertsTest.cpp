#include "app/Alerts.h"

#include "app/Company.h"

#include <QObject>

#include <gtest/gtest.h>

using namespace quillon::app;
using namespace Qt::StringLiterals;

namespace {

class Asker : public QObject {
    Q_OBJECT
    Q_PROPERTY(int lastAlertButtonReturn MEMBER lastAlertButtonReturn)
    Q_PROPERTY(int overwriteAnswer MEMBER overwriteAnswer)
public:
    int lastAlertButtonReturn = 0;
    int overwriteAnswer = 0;
};

} // namespace

TEST(Alerts, NilButtonsGiveOneOkAndEmptyButtonsAreLeftToTheSink)
{
    ScriptedAlertSink sink({kAlertSecondButton});
    EXPECT_EQ(runAlert(sink, u"Title"_s, QString(), std::nullopt, false), kAlertSecondButton);
    EXPECT_EQ(runAlert(sink, u"Title"_s, u"m"_s, QStringList{}, true), kAlertFirstButton);
    const auto r = sink.requests();
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(*r[0].buttons, QStringList{u"OK"_s});
    EXPECT_EQ(r[0].message, QString());
    EXPECT_FALSE(r[0].critical);
    EXPECT_TRUE(r[1].buttons->isEmpty());
    EXPECT_TRUE(r[1].critical);
}

TEST(Alerts, RequestDictionaryHasTheDocumentedKeysAndDefaults)
{
    const QVariantMap d = alertRequestDict(u"T"_s, u"M"_s, std::nullopt, true);
    EXPECT_EQ(d.value(u"alert"_s).toString(), u"T"_s);
    EXPECT_EQ(d.value(u"message"_s).toString(), u"M"_s);
    EXPECT_TRUE(d.value(u"buttons"_s).toStringList().isEmpty());
    EXPECT_TRUE(d.value(u"asCritical"_s).toBool());
    EXPECT_EQ(d.value(u"propertyNameForAlertReturn"_s).toString(), u"lastAlertButtonReturn"_s);
}

TEST(Alerts, AnswerLandsInTheNamedPropertyOrIsLostQuietly)
{
    Asker asker;
    ScriptedAlertSink sink({kAlertSecondButton, kAlertThirdButton, kAlertSecondButton});
    runAlertOnMainThread(sink, &asker, u"Replace?"_s, QString(), QStringList{u"Keep"_s, u"Replace"_s}, false);
    EXPECT_EQ(asker.lastAlertButtonReturn, kAlertSecondButton);

    runAlertOnMainThread(sink, &asker, u"Again?"_s, QString(), std::nullopt, false, u"overwriteAnswer"_s);
    EXPECT_EQ(asker.overwriteAnswer, kAlertThirdButton);
    EXPECT_EQ(asker.lastAlertButtonReturn, kAlertSecondButton);

    // An unknown slot loses the answer without failing; the call still reports it.
    EXPECT_EQ(runAlertOnMainThread(sink, &asker, u"x"_s, QString(), std::nullopt, false, u"noSuchProperty"_s),
              kAlertSecondButton);
    EXPECT_EQ(asker.lastAlertButtonReturn, kAlertSecondButton);
    EXPECT_EQ(asker.overwriteAnswer, kAlertThirdButton);
    EXPECT_EQ(runAlertOnMainThread(sink, nullptr, u"x"_s, QString(), std::nullopt, false), kAlertFirstButton);
}

TEST(Alerts, PanelFunctionDropsEmptyButtonTitles)
{
    ScriptedAlertSink sink;
    TNRunAlertPanel(sink, u"T"_s, u"M"_s, u"OK"_s, QString(), u"Cancel"_s, false);
    TNRunAlertPanel(sink, u"T"_s, u"M"_s, QString(), QString(), QString(), true);
    const auto r = sink.requests();
    EXPECT_EQ(*r[0].buttons, (QStringList{u"OK"_s, u"Cancel"_s}));
    EXPECT_EQ(*r[1].buttons, QStringList{u"OK"_s});
}

TEST(Alerts, SupportLineIsAppended)
{
    EXPECT_EQ(withSupportContact(u"Failed."_s), u"Failed.\n\nWith any questions, contact support@tornvale.com"_s);
}

#include "AlertsTest.moc"
