#include "CliRunner.h"
#include "JsonSchema.h"

#include "app/BuildInfo.h"
#include "support/IdmlFixtures.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>

using quillon::test::CliRun;
using quillon::test::repoPath;
using quillon::test::runQuillon;
using quillon::test::samplePath;

namespace {

QStringList idmlFilesBelow(const QString& folder)
{
    QStringList found;
    QDirIterator it(folder, {QStringLiteral("*.idml")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        found << it.next();
    found.sort();
    return found;
}

// Each test has user settings, presets and a temporary folder of its own; afterwards the
// temporary folder must hold nothing the command left.
class PreflightCommand : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_config.isValid() && m_tmp.isValid() && m_out.isValid()); }

    void TearDown() override
    {
        EXPECT_TRUE(QDir(m_tmp.path()).isEmpty())
            << QDir(m_tmp.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).join(u' ').toStdString();
    }

    QStringList environment() const
    {
        return {QStringLiteral("XDG_CONFIG_HOME=") + m_config.path(), QStringLiteral("TMPDIR=") + m_tmp.path(),
                QStringLiteral("LC_ALL=C"), QStringLiteral("TZ=UTC")};
    }

    CliRun preflight(QStringList arguments, int timeoutMs = 120000) const
    {
        arguments.prepend(QStringLiteral("preflight"));
        return runQuillon(arguments, environment(), timeoutMs);
    }

    // A preset that checks nothing.
    QString lenientPreset() const
    {
        const QString path = m_out.filePath(QStringLiteral("Lenient.qnfp"));
        quillon::test::writeAll(path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                                      "<key>name</key><string>Lenient</string></dict></plist>\n");
        return path;
    }

    QTemporaryDir m_config;
    QTemporaryDir m_tmp;
    QTemporaryDir m_out;
};

QString samplePreset()
{
    return repoPath(QStringLiteral("resources/sample/Sample Print Checks.qnfp"));
}

} // namespace

// Every command's JSON of every sample follows the published schema, which `quillon schema` prints.
TEST_F(PreflightCommand, EverySampleInEveryCommandFollowsTheSchema)
{
    // The preflight of every sample is checked by the repeatability test.
    const QStringList documents = idmlFilesBelow(samplePath(QStringLiteral("idml")));
    const CliRun run = preflight({documents.first(), QStringLiteral("--format"), QStringLiteral("json")});
    EXPECT_EQ(quillon::test::jsonEntries(run.out).size(), 1);
    QStringList files;
    QDirIterator it(samplePath({}), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    for (const QStringList& command : {QStringList{QStringLiteral("info")}, QStringList{QStringLiteral("links")}})
        quillon::test::jsonEntries(runQuillon(command +
                                                  QStringList{QStringLiteral("--format"), QStringLiteral("json"),
                                                              QStringLiteral("/gone.idml")} +
                                                  documents,
                                              environment())
                                       .out);
    quillon::test::jsonEntries(runQuillon(QStringList{QStringLiteral("inspect"), QStringLiteral("--format"),
                                                      QStringLiteral("json"), QStringLiteral("/gone.tif")} +
                                              files,
                                          environment())
                                   .out);
    for (const char* file : {"jpeg/GPS.jpg", "other/PDF.pdf", "jpeg/gone.jpg"})
        quillon::test::jsonEntries(runQuillon({QStringLiteral("metadata"), QStringLiteral("--format"),
                                               QStringLiteral("json"), samplePath(QLatin1String(file))},
                                              environment())
                                       .out);
    EXPECT_EQ(runQuillon({QStringLiteral("schema")}).out,
              quillon::test::readAll(repoPath(QStringLiteral("schema/quillon-1.schema.json"))));

    // What a script could not rely on breaks it: a picture key, alerts as a dictionary, a text count.
    for (const auto& [from, to] : {std::pair{"\"alerts\": [", "\"statusImg\": \"OK\", \"alerts\": ["},
                                   std::pair{"\"alerts\": [", "\"alerts\": {}, \"x\": ["},
                                   std::pair{"\"total\": ", "\"total\": \"1\", \"x\": "}})
        EXPECT_FALSE(quillon::test::schemaViolations(QByteArray(run.out).replace(from, to)).isEmpty()) << to;
}

// Every command that prints results writes them to the file of --output instead, the same bytes
// with the same exit status; --quiet prints nothing; a file that cannot be made stops the command
// before it does anything, with status 2.
TEST_F(PreflightCommand, EveryCommandWritesToTheNamedFileAndQuietPrintsOnlyErrors)
{
    const QString interview = samplePath(QStringLiteral("idml/interview.idml"));
    const QString image = samplePath(QStringLiteral("jpeg/GPS.jpg"));
    const QString file = m_out.filePath(QStringLiteral("result.json"));
    const QStringList json{QStringLiteral("--format"), QStringLiteral("json")};
    const QList<QStringList> commands{
        QStringList{QStringLiteral("preflight"), interview} + json,
        QStringList{QStringLiteral("info"), interview} + json,
        QStringList{QStringLiteral("links"), interview, QStringLiteral("/gone.idml")} + json,
        QStringList{QStringLiteral("inspect"), image} + json,
        QStringList{QStringLiteral("metadata"), image},
        QStringList{QStringLiteral("presets"), QStringLiteral("show"), QStringLiteral("[Default]")} + json,
        QStringList{QStringLiteral("presets"), QStringLiteral("list")},
    };
    for (const QStringList& command : commands) {
        const std::string name = command.join(u' ').toStdString();
        quillon::test::writeAll(file, "an earlier result");
        const CliRun plain = runQuillon(command, environment());
        CliRun run = runQuillon(command + QStringList{QStringLiteral("--output"), file}, environment());
        EXPECT_EQ(run.exitCode, plain.exitCode) << name << run.err.toStdString();
        EXPECT_EQ(quillon::test::readAll(file), plain.out) << name;
        EXPECT_EQ(run.err, plain.err) << name;
        EXPECT_EQ(QDir(m_out.path()).entryList(QDir::Files), (QStringList{QStringLiteral("result.json")})) << name;
        if (command.first() != QLatin1String("preflight")) {
            EXPECT_TRUE(run.out.isEmpty()) << name << run.out.toStdString();
        }

        run = runQuillon(command + QStringList{QStringLiteral("--quiet")}, environment());
        EXPECT_EQ(run.exitCode, plain.exitCode) << name;
        EXPECT_TRUE(run.out.isEmpty()) << name << run.out.toStdString();
        EXPECT_EQ(run.err.isEmpty(), plain.exitCode != 2) << name << run.err.toStdString();

        // Only the refusal is said: the documents were never read.
        run = runQuillon(command + QStringList{QStringLiteral("--quiet"), QStringLiteral("--output"),
                                               m_out.filePath(QStringLiteral("no/x.json"))},
                         environment());
        EXPECT_EQ(run.exitCode, 2) << name;
        EXPECT_TRUE(run.err.contains("no/x.json: cannot be written") && run.err.count('\n') == 1)
            << name << run.err.toStdString();
    }
    // The preflight's summary still reaches the terminal.
    EXPECT_EQ(
        preflight({interview, QStringLiteral("--format"), QStringLiteral("json"), QStringLiteral("--output"), file})
            .out,
        preflight({interview}).out);
}

TEST_F(PreflightCommand, ExitStatusesAndADocumentThatCannotBePreflighted)
{
    const QString interview = samplePath(QStringLiteral("idml/interview.idml"));
    const QString missing = m_out.filePath(QStringLiteral("gone.idml"));
    const QString broken = m_out.filePath(QStringLiteral("broken.idml"));
    quillon::test::writeAll(broken, "PK\x03\x04 not really a zip");

    // A document with no alerts under a preset that checks nothing.
    CliRun run = preflight({interview, QStringLiteral("--preset-file"), lenientPreset()});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.startsWith("interview.idml\n")) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("  Preset:     Lenient\n  Result:     No errors found\n")) << run.out.toStdString();
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString(); // no progress line off a terminal

    // One that cannot be read stops nothing else; its message names it.
    run = preflight({missing, broken, interview, QStringLiteral("--format"), QStringLiteral("json"),
                     QStringLiteral("--jobs"), QStringLiteral("1")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(
        run.err.contains(QStringLiteral("quillon preflight: %1: the file does not exist").arg(missing).toUtf8()))
        << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QStringLiteral("quillon preflight: %1: ").arg(broken).toUtf8()));
    const QJsonArray documents = quillon::test::jsonEntries(run.out);
    ASSERT_EQ(documents.size(), 3);
    for (int i : {0, 1}) {
        const QJsonObject failed = documents.at(i).toObject();
        EXPECT_FALSE(failed.value(QStringLiteral("error")).toString().isEmpty());
        EXPECT_FALSE(failed.contains(QStringLiteral("links")));
    }
    EXPECT_TRUE(documents.at(2).toObject().contains(QStringLiteral("links")));

    // One whose archive cannot be unpacked says why, in the words of the unpacking's error.
    const QString climbing =
        quillon::test::rewritten(m_out, QStringLiteral("idml/helloworld-1.idml"),
                                 {QStringLiteral("../../../../escaped.txt"), QStringLiteral("outside")});
    run = preflight({climbing});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(
        run.err.contains(QStringLiteral("quillon preflight: %1: ../../../../escaped.txt: the archive holds an entry "
                                        "whose path leads outside its folder")
                             .arg(climbing)
                             .toUtf8()))
        << run.err.toStdString();

    // Refusals before any document is read.
    EXPECT_EQ(preflight({interview, QStringLiteral("--preset"), QStringLiteral("No Such Preset")}).exitCode, 2);
    EXPECT_EQ(preflight({interview, QStringLiteral("--links-dir"), missing}).exitCode, 2);
    EXPECT_EQ(preflight({interview, QStringLiteral("--preset-file"), broken}).exitCode, 2);
}

// The JSON of a document of thousands of links is made a batch of records at a time on several
// threads, and that of a small one before it reaches the printer: both come out whole, in order.
TEST_F(PreflightCommand, ThousandsOfRecordsComeOutWholeAndInOrder)
{
    constexpr int kLinks = 2500;
    QByteArray images;
    for (int i = 0; i < kLinks; ++i)
        images += QStringLiteral("<Rectangle Self=\"r%1\" ItemTransform=\"1 0 0 1 0 0\"><Image Self=\"i%1\" "
                                 "ItemTransform=\"1 0 0 1 0 0\"><Link Self=\"l%1\" LinkResourceURI=\"file:%2/"
                                 "image_%3.tif\" StoredState=\"Normal\"/></Image></Rectangle>\n")
                      .arg(i)
                      .arg(m_out.path())
                      .arg(i, 5, 10, QLatin1Char('0'))
                      .toUtf8();
    quillon::test::ArchiveEntries entries = quillon::test::minimalIdml();
    entries.back().second = quillon::test::spreadXml({QStringLiteral("0 0 792 612")}, images);
    const QString many = m_out.filePath(QStringLiteral("many.idml"));
    quillon::test::writeIdml(many, entries);

    const CliRun run = preflight({many, samplePath(QStringLiteral("idml/interview.idml")), QStringLiteral("--format"),
                                  QStringLiteral("json"), QStringLiteral("--jobs"), QStringLiteral("2")});
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString(); // every link is missing
    const QJsonArray documents = quillon::test::jsonEntries(run.out);
    ASSERT_EQ(documents.size(), 2);
    const QJsonArray links = documents.at(0).toObject().value(QStringLiteral("links")).toArray();
    ASSERT_EQ(links.size(), kLinks);
    for (int i = 0; i < kLinks; ++i)
        ASSERT_EQ(links.at(i).toObject().value(QStringLiteral("name")).toString(),
                  QStringLiteral("image_%1.tif").arg(i, 5, 10, QLatin1Char('0')))
            << "link " << i;
    EXPECT_FALSE(documents.at(1).toObject().value(QStringLiteral("fonts")).toArray().isEmpty());
}

TEST_F(PreflightCommand, ReportsGoToStandardOutputAndIntoTheReportFolder)
{
    const QString interview = samplePath(QStringLiteral("idml/interview.idml"));
    const QString copy = m_out.filePath(QStringLiteral("again/interview.idml"));
    QDir().mkpath(QFileInfo(copy).path());
    ASSERT_TRUE(QFile::copy(interview, copy));
    const QString reports = m_out.filePath(QStringLiteral("reports"));

    CliRun run = preflight({interview, copy, QStringLiteral("--format"), QStringLiteral("tab"),
                            QStringLiteral("--jobs"), QStringLiteral("2"), QStringLiteral("--report-dir"), reports,
                            QStringLiteral("--preset-file"), lenientPreset()});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList written = QDir(reports).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(written, (QStringList{QStringLiteral("interview.idml_Quillon_Report.txt"),
                                    QStringLiteral("interview.idml_Quillon_Report_1.txt")}));
    const QByteArray first = quillon::test::readAll(QDir(reports).filePath(written.at(0)));
    const QByteArray second = quillon::test::readAll(QDir(reports).filePath(written.at(1)));
    EXPECT_EQ(run.out, first + "\n\n" + second + "\n");
    EXPECT_TRUE(first.contains("\nCOLORS\nName\tValue\tProcess/Spot\tSpace\tUsed\n")) << first.toStdString();
    EXPECT_TRUE(second.contains(("Path: " + copy + "\n").toUtf8()));

    // A file already there is kept and the new report numbered; --overwrite replaces it. The
    // summary with a report folder writes the regular report.
    const QString mine = QDir(reports).filePath(written.at(0));
    quillon::test::writeAll(mine, "my notes");
    run = preflight(
        {interview, QStringLiteral("--report-dir"), reports, QStringLiteral("--preset-file"), lenientPreset()});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(quillon::test::readAll(mine), QByteArray("my notes"));
    EXPECT_TRUE(quillon::test::readAll(QDir(reports).filePath(QStringLiteral("interview.idml_Quillon_Report_2.txt")))
                    .contains("\n\nCOLORS\n\nName: "));
    run = preflight({interview, QStringLiteral("--report-dir"), reports, QStringLiteral("--overwrite"),
                     QStringLiteral("--preset-file"), lenientPreset()});
    ASSERT_EQ(run.exitCode, 0);
    EXPECT_TRUE(quillon::test::readAll(mine).startsWith("-----------------Quillon Report"));
    EXPECT_EQ(QDir(reports).entryList(QDir::Files | QDir::Hidden).size(), 3) << "no temporary file is left";

    // A report that cannot be written is an output lost: exit 2, naming it.
    QDir(reports).mkdir(QStringLiteral("in the way.idml_Quillon_Report.txt"));
    const QString inTheWay = m_out.filePath(QStringLiteral("in the way.idml"));
    ASSERT_TRUE(QFile::copy(interview, inTheWay));
    run = preflight({inTheWay, QStringLiteral("--report-dir"), reports, QStringLiteral("--overwrite"),
                     QStringLiteral("--preset-file"), lenientPreset()});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("a folder of that name is in the way")) << run.err.toStdString();

    // The PDF reports go into the report folder, which they need; the summary is printed.
    EXPECT_EQ(preflight({interview, QStringLiteral("--format"), QStringLiteral("pdf")}).exitCode, 64);
    run = preflight({interview, QStringLiteral("--format"), QStringLiteral("pdf"), QStringLiteral("--report-dir"),
                     reports, QStringLiteral("--preset-file"), lenientPreset()});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("Result:     No errors found")) << run.out.toStdString();
    EXPECT_TRUE(quillon::test::readAll(QDir(reports).filePath(QStringLiteral("interview.idml_Quillon_Report.pdf")))
                    .startsWith("%PDF-"));
}

TEST_F(PreflightCommand, AStaleOrBrokenPresetJudgesNothingAndSaysSo)
{
    const QString interview = samplePath(QStringLiteral("idml/interview.idml"));
    QDir(m_config.path()).mkdir(QStringLiteral("Tornvale"));
    quillon::test::writeAll(m_config.filePath(QStringLiteral("Tornvale/Quillon.conf")),
                            "[General]\nselectedPreset=Gone Preset\n");
    CliRun run = preflight({interview});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.out.isEmpty()) << run.out.toStdString();
    EXPECT_TRUE(run.err.contains("\"Gone Preset\" could not be found")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("--preset NAME") && run.err.contains("quillon presets list"));

    const struct {
        const char* links;
        const char* key;
    } broken[] = {
        {"<key>conditions</key><string>Status is Missing</string>", "(Links/conditions): must be a list of rules"},
        {"<key>conditions</key><array><dict><key>attribute</key><string>Status</string></dict></array>",
         "(Links/conditions/0/condition): must be text"},
        {"<key>sizeBelowField</key><string>-5</string>", "(Links/sizeBelowField)"},
        {"<key>sizeAboveBytes</key><integer>-1</integer>", "(Links/sizeAboveBytes)"},
    };
    const QString path = m_out.filePath(QStringLiteral("Broken.qnfp"));
    for (const auto& b : broken) {
        quillon::test::writeAll(path, QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">"
                                                 "<dict><key>Links</key><dict>") +
                                          b.links + "</dict></dict></plist>\n");
        run = preflight({interview, QStringLiteral("--preset-file"), path});
        EXPECT_EQ(run.exitCode, 2) << b.key;
        EXPECT_TRUE(run.err.contains((path + QLatin1String(" ") + QLatin1String(b.key)).toUtf8()))
            << run.err.toStdString();
    }
    // A symlink loop is said to be one, not a file that does not exist.
    const QString loop = m_out.filePath(QStringLiteral("loop.qnfp"));
    ASSERT_TRUE(QFile::link(loop, loop));
    run = preflight({interview, QStringLiteral("--preset-file"), loop});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("too many levels of symbolic links")) << run.err.toStdString();
}

TEST_F(PreflightCommand, CtrlCCancelsAndLeavesNothingBehind)
{
    // Enough work to be interrupted: the largest sample, many times over, one at a time.
    const QString manual = samplePath(QStringLiteral("idml/manual_template_test2.idml"));
    QStringList arguments{QStringLiteral("preflight"), QStringLiteral("--jobs"), QStringLiteral("1"),
                          QStringLiteral("--format"), QStringLiteral("json")};
    for (int i = 0; i < 60; ++i)
        arguments << manual;
    QProcess process;
    process.setWorkingDirectory(repoPath(QString()));
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString& variable : environment())
        env.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(QUILLON_CLI_PATH), arguments);
    ASSERT_TRUE(process.waitForStarted());
    // Interrupt as soon as the run has made its temporary folder: the documents are under way.
    QElapsedTimer waited;
    waited.start();
    while (QDir(m_tmp.path()).isEmpty() && waited.elapsed() < 30000)
        QThread::msleep(2);
    QThread::msleep(100);
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    const QByteArray err = process.readAllStandardError();
    EXPECT_EQ(process.exitCode(), 130) << err.toStdString();
    // The run stops at its next step and still writes what it has; on a loaded machine the step may
    // outlast the grace, and the forced end says so instead, its output cut where it was. Either
    // way nothing is left behind.
    if (err.contains("quillon: stopped"))
        return;
    const QByteArray out = process.readAllStandardOutput();
    const QJsonArray documents = quillon::test::jsonEntries(out);
    EXPECT_EQ(documents.size(), 60) << out.left(400).toStdString();
    EXPECT_EQ(documents.last().toObject().value(QStringLiteral("error")).toString(),
              QStringLiteral("the preflight was cancelled"));
}

TEST_F(PreflightCommand, TheBundledSampleRaisesTheProblemsItWasMadeFor)
{
    // A copy whose linked files carry the time the document recorded, as the demo restores it.
    const QString sample = m_out.filePath(QStringLiteral("sample"));
    QDir().mkpath(sample + QStringLiteral("/Links"));
    const QString source = repoPath(QStringLiteral("resources/sample"));
    ASSERT_TRUE(QFile::copy(source + QStringLiteral("/sample-brochure.idml"),
                            sample + QStringLiteral("/sample-brochure.idml")));
    const QDateTime placed(QDate(2026, 1, 15), QTime(10, 0), Qt::UTC);
    for (const QString& name : QDir(source + QStringLiteral("/Links")).entryList(QDir::Files)) {
        const QString copy = sample + QStringLiteral("/Links/") + name;
        ASSERT_TRUE(QFile::copy(source + QStringLiteral("/Links/") + name, copy));
        QFile file(copy);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(placed, QFileDevice::FileModificationTime));
    }

    const CliRun run =
        preflight({sample + QStringLiteral("/sample-brochure.idml"), QStringLiteral("--preset-file"), samplePreset()});
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString();
    for (const char* line : {"  Preset:     Sample Print Checks\n",
                             "  Result:     5 errors found: Fonts: 1 \u2022 Colors: 2 \u2022 Links: 2\n",
                             "    Garamond Premier Pro Italic: Status is \"Missing\"\n",
                             "    Web Blue: Color space is RGB\n    Sea Green: Unused color\n",
                             "  Links: 6, 2 with alerts\n    poster-rgb.png (page 2): Effective res 18 ppi < 150 dpi\n"
                             "    harbour-map.tif (page 3): Status is \"Missing\"\n"})
        EXPECT_TRUE(run.out.contains(line)) << line << "\n" << run.out.toStdString();
    EXPECT_FALSE(run.out.contains("DejaVu")) << "an installed font raises nothing";
    EXPECT_FALSE(run.out.contains("Document:")) << "a preset without document checks shows none";

    // The links recorded on another computer are found beside the document, unchanged.
    const QJsonObject document =
        quillon::test::jsonEntries(preflight({sample + QStringLiteral("/sample-brochure.idml"),
                                              QStringLiteral("--format"), QStringLiteral("json")})
                                       .out)
            .at(0)
            .toObject();
    QStringList statuses;
    for (const QJsonValue& link : document.value(QStringLiteral("links")).toArray())
        statuses << link.toObject().value(QStringLiteral("name")).toString() + u' ' +
                        link.toObject().value(QStringLiteral("status")).toString();
    EXPECT_EQ(statuses, (QStringList{QStringLiteral("logo-spot.eps OK"), QStringLiteral("photo-cmyk.psd OK"),
                                     QStringLiteral("poster-rgb.png OK"), QStringLiteral("scan-gray.tif OK"),
                                     QStringLiteral("harbour-map.tif Missing"), QStringLiteral("poster-rgb.png OK")}));
}

namespace {

// A real document and its linked file copied where their times are known: the document's
// modification date, and a link that differs from the date it was placed with ("Modified").
struct PinnedDocument {
    QTemporaryDir dir;
    QString document = dir.filePath(QStringLiteral("IDML/article-1photo.idml"));
    QString media = dir.filePath(QStringLiteral("media"));

    PinnedDocument()
    {
        const QString set = samplePath(QStringLiteral("idml/sets/simpleidml/tests/regressiontests/IDML"));
        QDir().mkpath(QFileInfo(document).path());
        QDir().mkpath(media);
        const QString image = media + QStringLiteral("/default.jpg");
        EXPECT_TRUE(QFile::copy(set + QStringLiteral("/article-1photo.idml"), document));
        EXPECT_TRUE(QFile::copy(set + QStringLiteral("/media/default.jpg"), image));
        const QDateTime when(QDate(2001, 2, 3), QTime(4, 5, 6), Qt::UTC);
        for (const QString& path : {document, image}) {
            QFile file(path);
            EXPECT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(when, QFileDevice::FileModificationTime));
        }
    }

    // The report with what depends on the machine and the hour replaced by markers.
    QString normalised(QString report) const
    {
        report.replace(dir.path(), QStringLiteral("@DIR@"));
        static const QRegularExpression dates(QStringLiteral("^(Report date|Creation Date): .*$"),
                                              QRegularExpression::MultilineOption);
        report.replace(dates, QStringLiteral("\\1: @DATE@"));
        static const QRegularExpression volume(QStringLiteral("^Volume: .*$"), QRegularExpression::MultilineOption);
        report.replace(volume, QStringLiteral("Volume: @VOLUME@"));
        static const QRegularExpression volumeColumn(QStringLiteral("^(default\\.jpg\\t[^\\t]*\\t1\\t)[^\\t]*"),
                                                     QRegularExpression::MultilineOption);
        return report.replace(volumeColumn, QStringLiteral("\\1@VOLUME@"));
    }
};

const char* const kPinnedHeader = "-----------------Quillon Report-----------------\n"
                                  "Created with Quillon @VERSION@\n"
                                  "Tornvale\n"
                                  "https://www.tornvale.com  |  support@tornvale.com\n"
                                  "\n"
                                  "Report date: @DATE@\n"
                                  "\n"
                                  "Document: article-1photo.idml\n"
                                  "Path: @DIR@/IDML/article-1photo.idml\n"
                                  "Creation Date: @DATE@\n"
                                  "Modification Date: 3 Feb 2001 04:05:06\n"
                                  "\n\n\n";

QString pinned(const char* sections)
{
    QString text = QString::fromUtf8(kPinnedHeader) + QString::fromUtf8(sections);
    return text.replace(QStringLiteral("@VERSION@"), QLatin1String(quillon::app::kQuillonVersion));
}

// Compares line by line, so that a failure names the first line that differs.
void expectSameLines(const QString& actual, const QString& expected)
{
    const QStringList actualLines = actual.split(u'\n');
    const QStringList expectedLines = expected.split(u'\n');
    for (qsizetype i = 0; i < std::max(actualLines.size(), expectedLines.size()); ++i)
        ASSERT_EQ(actualLines.value(i).toStdString(), expectedLines.value(i).toStdString()) << "line " << i + 1;
}

} // namespace

TEST_F(PreflightCommand, TheRegularReportOfARealDocumentLineByLine)
{
    const PinnedDocument doc;
    // A links folder before the document: the option takes one folder, not what follows.
    const CliRun run = preflight(
        {QStringLiteral("--links-dir"), doc.media, doc.document, QStringLiteral("--format"), QStringLiteral("text")});
    ASSERT_EQ(run.exitCode, 1) << run.err.toStdString();
    const QString expected =
        pinned("FONTS\n\n"
               "Name: Minion Pro Bold\nType: OpenType CFF\nStatus: Missing\n"
               "PostScript font name: MinionPro-Bold\nPDF embedding allowed: ?\n\n"
               "Name: Minion Pro Italic\nType: OpenType CFF\nStatus: Missing\n"
               "PostScript font name: MinionPro-It\nPDF embedding allowed: ?\n\n"
               "Name: Minion Pro Regular\nType: OpenType CFF\nStatus: Missing\n"
               "PostScript font name: MinionPro-Regular\nPDF embedding allowed: ?\n\n\n"
               "COLORS\n\n"
               "Name: Registration\nValue: \nProcess: ?\nSpace: registration\nUsed: √\n\n"
               "Name: Paper\nValue: 0  0  0  0\nProcess: ?\nSpace: \nUsed: √\n\n"
               "Name: Black\nValue: 0  0  0  100\nProcess: Process\nSpace: CMYK\nUsed: √\n\n"
               "Name: C=0 M=0 Y=100 K=0\nValue: 0  0  100  0\nProcess: Process\nSpace: CMYK\nUsed: -\n\n"
               "Name: C=0 M=100 Y=0 K=0\nValue: 0  100  0  0\nProcess: Process\nSpace: CMYK\nUsed: -\n\n"
               "Name: C=100 M=0 Y=0 K=0\nValue: 100  0  0  0\nProcess: Process\nSpace: CMYK\nUsed: -\n\n"
               "Name: C=100 M=90 Y=10 K=0\nValue: 100  90  10  0\nProcess: Process\nSpace: CMYK\n"
               "Used: -\n\n"
               "Name: C=15 M=100 Y=100 K=0\nValue: 15  100  100  0\nProcess: Process\nSpace: CMYK\n"
               "Used: -\n\n"
               "Name: C=75 M=5 Y=100 K=0\nValue: 75  5  100  0\nProcess: Process\nSpace: CMYK\n"
               "Used: -\n\n\n"
               "LINKS\n\n"
               "Name: default.jpg\nPath: @DIR@/media/default.jpg\nPage: 1\nVolume: @VOLUME@\n"
               "Kind: JPEG\nSize: 27 KB\nColor: RGB\nICC Profile: \nScale: 85.4\nActual Res: 72\n"
               "Effective Res: 84\nFonts: ?\nSpot colors: ?\nStatus: Modified\nPrintable: √\n");
    expectSameLines(doc.normalised(QString::fromUtf8(run.out)), expected);
}

TEST_F(PreflightCommand, TheTabDelimitedReportOfARealDocumentLineByLine)
{
    const PinnedDocument doc;
    const CliRun run = preflight(
        {doc.document, QStringLiteral("--links-dir"), doc.media, QStringLiteral("--format"), QStringLiteral("tab")});
    ASSERT_EQ(run.exitCode, 1) << run.err.toStdString();
    const QString expected = pinned(
        "FONTS\n"
        "Name\tType\tStatus\tPS Name\tPDF Embedding\n"
        "Minion Pro Bold\tOpenType CFF\tMissing\tMinionPro-Bold\t?\n"
        "Minion Pro Italic\tOpenType CFF\tMissing\tMinionPro-It\t?\n"
        "Minion Pro Regular\tOpenType CFF\tMissing\tMinionPro-Regular\t?\n\n\n"
        "COLORS\n"
        "Name\tValue\tProcess/Spot\tSpace\tUsed\n"
        "Registration\t\t?\tregistration\t√\n"
        "Paper\t0  0  0  0\t?\t\t√\n"
        "Black\t0  0  0  100\tProcess\tCMYK\t√\n"
        "C=0 M=0 Y=100 K=0\t0  0  100  0\tProcess\tCMYK\t-\n"
        "C=0 M=100 Y=0 K=0\t0  100  0  0\tProcess\tCMYK\t-\n"
        "C=100 M=0 Y=0 K=0\t100  0  0  0\tProcess\tCMYK\t-\n"
        "C=100 M=90 Y=10 K=0\t100  90  10  0\tProcess\tCMYK\t-\n"
        "C=15 M=100 Y=100 K=0\t15  100  100  0\tProcess\tCMYK\t-\n"
        "C=75 M=5 Y=100 K=0\t75  5  100  0\tProcess\tCMYK\t-\n\n\n"
        "LINKS\n"
        "Name\tPath\tPage\tVolume\tKind\tSize\tColor Mode\tICC Profile\tScale\tActual Res\tEffective Res\tFonts\t"
        "Spot Colors\tStatus\tPrintable\n"
        "default.jpg\t@DIR@/media/default.jpg\t1\t@VOLUME@\tJPEG\t27 KB\tRGB\t\t85.4\t72\t84\t?\t?\tModified\t√\n");
    expectSameLines(doc.normalised(QString::fromUtf8(run.out)), expected);
}

TEST_F(PreflightCommand, DocumentChecksAndTheTriageSummaryOnRealSamples)
{
    // 3 mm minimum bleed, one page size, one page, and the links' Status-is-Missing rule.
    const QString preset = m_out.filePath(QStringLiteral("Checks.qnfp"));
    quillon::test::writeAll(
        preset, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                "<key>Links</key><dict><key>conditions</key><array><dict><key>attribute</key><string>Status</string>"
                "<key>condition</key><string>is</string><key>value</key><string>Missing</string></dict></array>"
                "</dict><key>Document</key><dict><key>minBleed</key><real>8.50394</real><key>samePageSize</key>"
                "<integer>1</integer><key>maxPages</key><integer>1</integer><key>unit</key><string>mm</string>"
                "</dict></dict></plist>\n");
    // Bleed equal to the minimum clears; the embedded link raises nothing.
    CliRun run = preflight({samplePath(QStringLiteral("idml/parser.idml")), QStringLiteral("--preset-file"), preset});
    EXPECT_TRUE(run.exitCode == 0 && run.out.contains("  Result:     No errors found\n\n  Document: no alerts\n\n"))
        << run.out.toStdString();

    // No bleed and two pages raise; one graphic placed 78 times on the masters is one line; each
    // list stops at --max-items.
    run = preflight({samplePath(QStringLiteral("idml/manual_template_example_mixed_ink.idml")),
                     QStringLiteral("--preset-file"), preset, QStringLiteral("--max-items"), QStringLiteral("1")});
    EXPECT_EQ(run.exitCode, 1);
    for (const char* line :
         {"  Result:     80 errors found: Document: 2 \u2022 Links: 78\n\n  Document: 2 alerts\n    Bleed 0 mm < 3 mm\n"
          "    \u2026 and 1 more\n",
          "  Links: 78, 78 with alerts\n    tab_gradient_v2.00.ai \u00d778 (pages S3-RPN and the stack, S4-DM32 menus, "
          "S5-Entering and displaying numbers, S6-Variables, S7-Overview of math functions, \u2026 22 more): Status is "
          "\"Missing\"\n"})
        EXPECT_TRUE(run.out.contains(line)) << line << "\n" << run.out.toStdString();
}
