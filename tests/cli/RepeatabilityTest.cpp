#include "CliRunner.h"
#include "JsonSchema.h"

#include "support/TestSupport.h"

#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

using quillon::test::CliRun;
using quillon::test::runQuillon;
using quillon::test::samplePath;

namespace {

// The sanitizers keep freed memory out of reuse, which hides results that depend on where an
// object happened to live; the optimised build reuses it at once, so it repeats the run more.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kRuns = 2;
#else
constexpr int kRuns = 10;
#endif

// The run's output without what is meant to change: a link whose import time cannot be read is
// dated at the moment of the run.
QByteArray withoutRunDates(const QByteArray& json)
{
    QJsonObject envelope = QJsonDocument::fromJson(json).object();
    QJsonArray documents = envelope.value(QStringLiteral("documents")).toArray();
    for (QJsonValueRef document : documents) {
        QJsonObject object = document.toObject();
        QJsonArray links = object.value(QStringLiteral("links")).toArray();
        for (QJsonValueRef link : links) {
            QJsonObject record = link.toObject();
            record.remove(QStringLiteral("date"));
            link = record;
        }
        object.insert(QStringLiteral("links"), links);
        document = object;
    }
    envelope.insert(QStringLiteral("documents"), documents);
    return QJsonDocument(envelope).toJson(QJsonDocument::Compact);
}

} // namespace

TEST(Repeatability, EverySampleGivesTheSameJsonRunAfterRun)
{
    QStringList documents;
    QDirIterator it(samplePath(QStringLiteral("idml")), {QStringLiteral("*.idml")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        documents << it.next();
    documents.sort();
    ASSERT_GE(documents.size(), 13);

    QTemporaryDir config;
    QTemporaryDir tmp;
    ASSERT_TRUE(config.isValid() && tmp.isValid());
    const QStringList environment{QStringLiteral("XDG_CONFIG_HOME=") + config.path(),
                                  QStringLiteral("TMPDIR=") + tmp.path(), QStringLiteral("LC_ALL=C"),
                                  QStringLiteral("TZ=UTC")};
    const QStringList arguments = QStringList{QStringLiteral("preflight"), QStringLiteral("--format"),
                                              QStringLiteral("json"), QStringLiteral("--jobs"), QStringLiteral("2")} +
                                  documents;

    const CliRun first = runQuillon(arguments, environment, 180000);
    ASSERT_TRUE(first.exitCode == 0 || first.exitCode == 1) << first.exitCode << first.err.toStdString();
    // Two jobs set at most twice the cores to work; besides them live the signal watch and, for
    // each document at once, the thread that waits on its driver and the link data writer.
    EXPECT_LE(first.peakThreads, 2 * QThread::idealThreadCount() + 1 + 2 * 2);
    EXPECT_EQ(quillon::test::jsonEntries(first.out).size(), documents.size()) << "each follows the schema";
    const QByteArray expected = withoutRunDates(first.out);
    ASSERT_GT(expected.size(), 1000);
    for (int run = 1; run < kRuns; ++run) {
        const CliRun again = runQuillon(arguments, environment, 180000);
        EXPECT_EQ(again.exitCode, first.exitCode) << "run " << run;
        ASSERT_EQ(withoutRunDates(again.out), expected) << "run " << run << " differs from the first";
    }
}
