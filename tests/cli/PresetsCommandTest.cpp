#include "CliRunner.h"
#include "JsonSchema.h"

#include "app/PropertyList.h"
#include "app/Settings.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quillon::test {
namespace {

// Each test has a presets folder and user settings of its own.
class PresetsCommand : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_config.isValid() && m_target.isValid());
        qputenv("XDG_CONFIG_HOME", m_config.path().toUtf8());
        m_presets = qEnvironmentVariable("QUILLON_SUPPORT_DIR") + QStringLiteral("/Presets");
        QDir(m_presets).removeRecursively();
    }

    CliRun presets(QStringList arguments) const
    {
        arguments.prepend(QStringLiteral("presets"));
        return runQuillon(arguments);
    }

    QString presetFile(const QString& name) const { return m_presets + u'/' + name + QStringLiteral(".qnfp"); }

    app::Settings userSettings() const
    {
        return app::Settings(m_config.filePath(QStringLiteral("Tornvale/Quillon.conf")));
    }

    QTemporaryDir m_config;
    QTemporaryDir m_target;
    QString m_presets;
};

TEST_F(PresetsCommand, ListAddAndShow)
{
    CliRun run = presets({QStringLiteral("list")});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QByteArray("[Default]\n"));
    EXPECT_TRUE(QFileInfo::exists(presetFile(QStringLiteral("[Default]"))));

    EXPECT_EQ(presets({QStringLiteral("new")}).out, QByteArray("New Preset 1\n"));
    ASSERT_TRUE(app::writePropertyListFile(
                    QVariantMap{{QStringLiteral("name"), QStringLiteral("Print")},
                                {QStringLiteral("Links"),
                                 QVariantMap{{QStringLiteral("sizeBelowField"), QStringLiteral("1.5")},
                                             {QStringLiteral("sizeBelowUnitsPopup"), QStringLiteral("MB")},
                                             {QStringLiteral("resBelowField"), QStringLiteral("250")},
                                             {QStringLiteral("nonPrintBtn"), 1}}},
                                {QStringLiteral("Colors"), QVariantMap{{QStringLiteral("LAB"), 1}}}},
                    presetFile(QStringLiteral("Print")))
                    .ok());
    EXPECT_EQ(presets({QStringLiteral("new"), QStringLiteral("--from"), QStringLiteral("Print")}).out,
              QByteArray("New Preset 2\n"));
    EXPECT_EQ(presets({QStringLiteral("list")}).out, QByteArray("[Default]\nNew Preset 1\nNew Preset 2\nPrint\n"));

    run = presets({QStringLiteral("show"), QStringLiteral("New Preset 2")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.out.contains("Size below: 1.5 MB (1572864 bytes)")) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("Effective resolution: min 250, max - dpi")) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("Non-printing: on"));
    EXPECT_TRUE(run.out.contains("Lab: on"));

    run = presets({QStringLiteral("show"), QStringLiteral("Nothing")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("No checkup preset named \"Nothing\"."));
}

TEST_F(PresetsCommand, RefusalsExitWithTheirMessage)
{
    ASSERT_EQ(presets({QStringLiteral("new")}).exitCode, 0);
    CliRun run = presets({QStringLiteral("rename"), QStringLiteral("New Preset 1"), QStringLiteral("Café")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("Preset names cannot contain the following characters")) << run.err.toStdString();
    run = presets({QStringLiteral("delete"), QStringLiteral("[Default]")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("Default preflight preset cannot be deleted"));
    EXPECT_EQ(presets({QStringLiteral("list")}).out, QByteArray("[Default]\nNew Preset 1\n"));
}

TEST_F(PresetsCommand, TheCurrentPresetFollowsARenameAndFallsBackOnDelete)
{
    ASSERT_EQ(presets({QStringLiteral("new")}).exitCode, 0);
    userSettings().setValue(QStringLiteral("selectedPreset"), QStringLiteral("New Preset 1"));
    ASSERT_EQ(presets({QStringLiteral("rename"), QStringLiteral("New Preset 1"), QStringLiteral("Print")}).exitCode, 0);
    EXPECT_EQ(userSettings().value(QStringLiteral("selectedPreset")).toString(), QStringLiteral("Print"));
    EXPECT_EQ(
        app::readPropertyListDictionary(presetFile(QStringLiteral("Print")))->value(QStringLiteral("name")).toString(),
        QStringLiteral("Print"));
    ASSERT_EQ(presets({QStringLiteral("delete"), QStringLiteral("Print")}).exitCode, 0);
    EXPECT_FALSE(userSettings().contains(QStringLiteral("selectedPreset")));
    EXPECT_FALSE(QFileInfo::exists(presetFile(QStringLiteral("Print"))));
}

TEST_F(PresetsCommand, ConflictsNeedAFlag)
{
    ASSERT_EQ(presets({QStringLiteral("export"), m_target.path()}).exitCode, 0);
    EXPECT_TRUE(QFileInfo::exists(m_target.filePath(QStringLiteral("Default.qnfp"))));
    ASSERT_EQ(presets({QStringLiteral("new")}).exitCode, 0);
    // Default.qnfp is there now: a clash like any other.
    ASSERT_EQ(presets({QStringLiteral("export"), m_target.path(), QStringLiteral("--replace")}).exitCode, 0);

    CliRun run = presets({QStringLiteral("export"), m_target.path(), QStringLiteral("--keep-both")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(QFileInfo::exists(m_target.filePath(QStringLiteral("New Preset 1 copy 1.qnfp"))));
    EXPECT_NE(
        presets({QStringLiteral("export"), m_target.path(), QStringLiteral("--keep-both"), QStringLiteral("--replace")})
            .exitCode,
        0);

    const QString incoming = m_target.filePath(QStringLiteral("New Preset 1.qnfp"));
    run = presets({QStringLiteral("import"), incoming});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("--keep-both"));
    ASSERT_EQ(presets({QStringLiteral("import"), incoming, QStringLiteral("--keep-both")}).exitCode, 0);
    ASSERT_EQ(presets({QStringLiteral("import"), incoming, QStringLiteral("--replace")}).exitCode, 0);
    EXPECT_EQ(presets({QStringLiteral("list")}).out, QByteArray("[Default]\nNew Preset 1\nNew Preset 1 copy 1\n"));

    run = presets({QStringLiteral("import"), m_target.filePath(QStringLiteral("absent.qnfp"))});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("presets could not be imported"));
}

TEST_F(PresetsCommand, NoUserFileIsLostOrHalfRenamed)
{
    // A user's Default.qnfp in the target folder survives an export without flags.
    const QString theirs = m_target.filePath(QStringLiteral("Default.qnfp"));
    ASSERT_TRUE(
        app::writePropertyListFile(QVariantMap{{QStringLiteral("name"), QStringLiteral("theirs")}}, theirs).ok());
    CliRun run = presets({QStringLiteral("export"), m_target.path()});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("--replace")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(m_target.path().toUtf8())) << "the message names the folder";
    EXPECT_EQ(app::readPropertyListDictionary(theirs)->value(QStringLiteral("name")).toString(),
              QStringLiteral("theirs"));

    // A name too long for a file name is refused before anything moves.
    ASSERT_EQ(presets({QStringLiteral("new")}).exitCode, 0);
    run = presets({QStringLiteral("rename"), QStringLiteral("New Preset 1"), QString(250, u'x')});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("too long")) << run.err.toStdString();
    EXPECT_EQ(presets({QStringLiteral("list")}).out, QByteArray("[Default]\nNew Preset 1\n"));
    EXPECT_EQ(app::readPropertyListDictionary(presetFile(QStringLiteral("New Preset 1")))
                  ->value(QStringLiteral("name"))
                  .toString(),
              QStringLiteral("New Preset 1"));

    // Import takes the name rules and the extension of presets; nothing refused is copied.
    for (const char* name : {"notes.txt", ".hidden.qnfp", "a:b.qnfp", "Caf\u00e9.qnfp"}) {
        const QString file = m_target.filePath(QString::fromUtf8(name));
        ASSERT_TRUE(QFile::copy(presetFile(QStringLiteral("New Preset 1")), file));
        run = presets({QStringLiteral("import"), file});
        EXPECT_EQ(run.exitCode, 2) << name;
        EXPECT_TRUE(run.err.contains("presets could not be imported")) << name << run.err.toStdString();
    }
    EXPECT_EQ(QDir(m_presets).entryList(QDir::Files | QDir::Hidden).size(), 2);

    // A preset whose values have the wrong types is refused, naming the file and the key.
    test::writeAll(presetFile(QStringLiteral("Broken")),
                   "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>Fonts</key>"
                   "<dict><key>conditions</key><integer>3</integer></dict></dict></plist>\n");
    run = presets({QStringLiteral("show"), QStringLiteral("Broken")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains((presetFile(QStringLiteral("Broken")) + " (Fonts/conditions)").toUtf8()))
        << run.err.toStdString();
}

TEST_F(PresetsCommand, UseSetAndShowAsJson)
{
    ASSERT_EQ(presets({QStringLiteral("new")}).exitCode, 0);
    const QString name = QStringLiteral("New Preset 1");
    EXPECT_EQ(presets({QStringLiteral("use"), QStringLiteral("Nothing")}).exitCode, 2);
    EXPECT_FALSE(userSettings().contains(QStringLiteral("selectedPreset")));
    ASSERT_EQ(presets({QStringLiteral("use"), name}).exitCode, 0);
    EXPECT_EQ(userSettings().value(QStringLiteral("selectedPreset")).toString(), name);

    CliRun run =
        presets(QStringLiteral("set|New Preset 1|resBelowField=150|sizeAboveField=1.5|RGB=on|Document.minBleed=3mm|"
                               "Document.samePageSize=on|Document.maxPages=1|Document.minSlug=0.5in|Document.minSlug=|"
                               "--remove-font-rule|Status|is|Missing|--add-font-rule|Type|is|TrueType|"
                               "--add-link-rule|Kind|contains|EPS")
                    .split(u'|'));
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    run = presets({QStringLiteral("show"), name, QStringLiteral("--format"), QStringLiteral("json")});
    EXPECT_EQ(schemaViolations(run.out), QString()) << run.out.toStdString();
    const QJsonArray shown = QJsonDocument::fromJson(run.out).object().value(QStringLiteral("presets")).toArray();
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0].toObject().value(QStringLiteral("file")).toString(), presetFile(name));
    EXPECT_TRUE(shown[0].toObject().value(QStringLiteral("current")).toBool());
    const QJsonObject preset = shown[0].toObject().value(QStringLiteral("preset")).toObject();
    // Points with the unit last given; an empty value takes the check out.
    EXPECT_EQ(preset.value(QStringLiteral("Document")).toObject(),
              (QJsonObject{{QStringLiteral("minBleed"), 8.50394},
                           {QStringLiteral("samePageSize"), 1},
                           {QStringLiteral("maxPages"), 1},
                           {QStringLiteral("unit"), QStringLiteral("in")}}));
    const QJsonObject links = preset.value(QStringLiteral("Links")).toObject();
    EXPECT_EQ(links.value(QStringLiteral("resBelowField")).toString(), QStringLiteral("150"));
    EXPECT_EQ(links.value(QStringLiteral("sizeAboveBytes")).toInteger(), 1572864) << "bytes follow the field";
    EXPECT_EQ(links.value(QStringLiteral("conditions")).toArray().size(), 2);
    EXPECT_EQ(links.value(QStringLiteral("conditions")).toArray()[1].toObject().value(QStringLiteral("attributeKey")),
              QStringLiteral("kind"));
    const QJsonArray fontRules =
        preset.value(QStringLiteral("Fonts")).toObject().value(QStringLiteral("conditions")).toArray();
    ASSERT_EQ(fontRules.size(), 1);
    EXPECT_EQ(fontRules[0].toObject().value(QStringLiteral("value")).toString(), QStringLiteral("TrueType"));
    EXPECT_EQ(preset.value(QStringLiteral("Colors")).toObject().value(QStringLiteral("RGB")).toInt(), 1);

    // Each refusal is a usage error that leaves every preset file as it was, with nothing beside them.
    const QByteArray before = readAll(presetFile(name));
    const QByteArray defaultBefore = readAll(presetFile(QStringLiteral("[Default]")));
    const QList<QStringList> refused{
        {QStringLiteral("[Default]"), QStringLiteral("RGB=on")},
        {name},
        {name, QStringLiteral("resBelowField=-1")},
        {name, QStringLiteral("resBelowField=300"), QStringLiteral("frob=1")},
        {name, QStringLiteral("sizeAboveUnitsPopup=TB")},
        {name, QStringLiteral("nonPrintBtn=maybe")},
        {name, QStringLiteral("--add-font-rule"), QStringLiteral("Type"), QStringLiteral("is"),
         QStringLiteral("Gothic")},
        {name, QStringLiteral("--add-link-rule"), QStringLiteral("Size"), QStringLiteral("is"), QStringLiteral("big")},
        {name, QStringLiteral("--remove-link-rule"), QStringLiteral("Kind"), QStringLiteral("contains"),
         QStringLiteral("PSD")},
        {name, QStringLiteral("Document.minBleed=3")},
        {name, QStringLiteral("Document.minBleed=-3mm")},
        {name, QStringLiteral("Document.pageWidth=210 px")},
        {name, QStringLiteral("Document.maxPages=1.5")},
        {name, QStringLiteral("Document.unit=px")},
        {name, QStringLiteral("Document.bleed=3mm")},
    };
    for (const QStringList& arguments : refused) {
        run = presets(QStringList{QStringLiteral("set")} + arguments);
        EXPECT_EQ(run.exitCode, 64) << arguments.join(u' ').toStdString() << run.err.toStdString();
        EXPECT_TRUE(run.err.startsWith("quillon presets set: ")) << run.err.toStdString();
    }
    EXPECT_EQ(readAll(presetFile(name)), before);
    EXPECT_EQ(readAll(presetFile(QStringLiteral("[Default]"))), defaultBefore);
    EXPECT_EQ(QDir(m_presets).entryList(QDir::Files | QDir::Hidden).size(), 2);

    // The list holds every preset, the current one marked.
    run = presets({QStringLiteral("list"), QStringLiteral("--format"), QStringLiteral("json")});
    EXPECT_EQ(schemaViolations(run.out), QString()) << run.out.toStdString();
    const QJsonArray listed = QJsonDocument::fromJson(run.out).object().value(QStringLiteral("presets")).toArray();
    ASSERT_EQ(listed.size(), 2);
    EXPECT_EQ(listed[0].toObject().value(QStringLiteral("name")).toString(), QStringLiteral("[Default]"));
    EXPECT_FALSE(listed[0].toObject().value(QStringLiteral("current")).toBool());
    EXPECT_EQ(listed[1].toObject().value(QStringLiteral("preset")).toObject(), preset);
}

// Document checks set here raise alerts in the preflight's JSON on real samples, and clear on a
// document that meets them.
TEST_F(PresetsCommand, DocumentChecksRaiseAlertsInThePreflightsJson)
{
    ASSERT_EQ(presets({QStringLiteral("new")}).exitCode, 0);
    ASSERT_EQ(presets({QStringLiteral("set"), QStringLiteral("New Preset 1"), QStringLiteral("Document.minBleed=3mm"),
                       QStringLiteral("Document.samePageSize=on")})
                  .exitCode,
              0);
    const QList<std::pair<const char*, QStringList>> expected{
        {"idml/parser.idml", {}},
        {"idml/manual_template_example_mixed_ink.idml", {QStringLiteral("minBleed: Bleed 0 mm < 3 mm")}},
        {"idml/Minimalist Magazine Layout (link without StoredState).idml",
         {QStringLiteral("samePageSize: Mixed page sizes: 210 x 297 mm (30 pages), 215.9 x 279.4 mm (30 pages)")}},
    };
    for (const auto& [sample, alerts] : expected) {
        const CliRun run =
            runQuillon({QStringLiteral("preflight"), samplePath(QLatin1String(sample)), QStringLiteral("--preset"),
                        QStringLiteral("New Preset 1"), QStringLiteral("--format"), QStringLiteral("json")});
        const QJsonArray documents = jsonEntries(run.out);
        ASSERT_EQ(documents.size(), 1) << sample;
        const QJsonObject document = documents[0].toObject();
        QStringList shown;
        for (const QJsonValue& alert :
             document.value(QStringLiteral("document")).toObject().value(QStringLiteral("alerts")).toArray())
            shown << alert[QStringLiteral("rule")].toString() + QStringLiteral(": ") +
                         alert[QStringLiteral("text")].toString();
        EXPECT_EQ(shown, alerts) << sample;
        EXPECT_EQ(document.value(QStringLiteral("counts"))[QStringLiteral("document")].toInt(), alerts.size())
            << sample;
    }
}

} // namespace
} // namespace quillon::test
