#include "app/Alerts.h"

#include "app/Company.h"

#include <QObject>

#include <gtest/gtest.h>

using namespace quillon::app;

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
    EXPECT_EQ(runAlert(sink, QStringLiteral("Title"), QString(), std::nullopt, false), kAlertSecondButton);
    EXPECT_EQ(runAlert(sink, QStringLiteral("Title"), QStringLiteral("m"), QStringList{}, true), kAlertFirstButton);
    const auto r = sink.requests();
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(*r[0].buttons, QStringList{QStringLiteral("OK")});
    EXPECT_EQ(r[0].message, QString());
    EXPECT_FALSE(r[0].critical);
    EXPECT_TRUE(r[1].buttons->isEmpty());
    EXPECT_TRUE(r[1].critical);
}

TEST(Alerts, RequestDictionaryHasTheDocumentedKeysAndDefaults)
{
    const QVariantMap d = alertRequestDict(QStringLiteral("T"), QStringLiteral("M"), std::nullopt, true);
    EXPECT_EQ(d.value(QStringLiteral("alert")).toString(), QStringLiteral("T"));
    EXPECT_EQ(d.value(QStringLiteral("message")).toString(), QStringLiteral("M"));
    EXPECT_TRUE(d.value(QStringLiteral("buttons")).toStringList().isEmpty());
    EXPECT_TRUE(d.value(QStringLiteral("asCritical")).toBool());
    EXPECT_EQ(d.value(QStringLiteral("propertyNameForAlertReturn")).toString(), QStringLiteral("lastAlertButtonReturn"));
}

TEST(Alerts, AnswerLandsInTheNamedPropertyOrIsLostQuietly)
{
    Asker asker;
    ScriptedAlertSink sink({kAlertSecondButton, kAlertThirdButton, kAlertSecondButton});
    runAlertOnMainThread(sink, &asker, QStringLiteral("Replace?"), QString(),
                         QStringList{QStringLiteral("Keep"), QStringLiteral("Replace")}, false);
    EXPECT_EQ(asker.lastAlertButtonReturn, kAlertSecondButton);

    runAlertOnMainThread(sink, &asker, QStringLiteral("Again?"), QString(), std::nullopt, false,
                         QStringLiteral("overwriteAnswer"));
    EXPECT_EQ(asker.overwriteAnswer, kAlertThirdButton);
    EXPECT_EQ(asker.lastAlertButtonReturn, kAlertSecondButton);

    // An unknown slot loses the answer without failing; the call still reports it.
    EXPECT_EQ(runAlertOnMainThread(sink, &asker, QStringLiteral("x"), QString(), std::nullopt, false,
                                   QStringLiteral("noSuchProperty")),
              kAlertSecondButton);
    EXPECT_EQ(asker.lastAlertButtonReturn, kAlertSecondButton);
    EXPECT_EQ(asker.overwriteAnswer, kAlertThirdButton);
    EXPECT_EQ(runAlertOnMainThread(sink, nullptr, QStringLiteral("x"), QString(), std::nullopt, false), kAlertFirstButton);
}

TEST(Alerts, PanelFunctionDropsEmptyButtonTitles)
{
    ScriptedAlertSink sink;
    TNRunAlertPanel(sink, QStringLiteral("T"), QStringLiteral("M"), QStringLiteral("OK"), QString(), QStringLiteral("Cancel"), false);
    TNRunAlertPanel(sink, QStringLiteral("T"), QStringLiteral("M"), QString(), QString(), QString(), true);
    const auto r = sink.requests();
    EXPECT_EQ(*r[0].buttons, (QStringList{QStringLiteral("OK"), QStringLiteral("Cancel")}));
    EXPECT_EQ(*r[1].buttons, QStringList{QStringLiteral("OK")});
}

TEST(Alerts, SupportLineIsAppended)
{
    EXPECT_EQ(withSupportContact(QStringLiteral("Failed.")),
              QStringLiteral("Failed.\n\nWith any questions, contact support@tornvale.com"));
}

#include "AlertsTest.moc"
