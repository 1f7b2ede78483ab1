// The link analysis of a large document: the shared generator's 1,000 spreads with 10 placed
// images each, every linked file present on disk (in the document's Links folder, where the
// analysis finds files recorded on another computer), files read included. Peak memory is the
// counter "maxRSS_MB". QUILLON_BENCH_DOC=<folder> keeps the generated document between runs.

#include "IdmlGenerator.h"

#include "idml/IdmlArchive.h"
#include "links/QNIDMLLinksProcessor.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <cstdint>
#include <iostream>

namespace {

using namespace quillon;
using namespace quillon::idml;
using namespace quillon::links;

constexpr int kSpreads = 1000;
constexpr int kLinksPerSpread = 10;

void put(QByteArray& bytes, int offset, std::uint32_t value, int size, bool bigEndian)
{
    for (int i = 0; i < size; ++i)
        bytes[offset + i] = static_cast<char>(value >> (8 * (bigEndian ? size - 1 - i : i)));
}

// A small display profile whose description tag names it.
QByteArray iccProfile(const QByteArray& name)
{
    QByteArray desc = "desc" + QByteArray(8, '\0') + name + '\0' + QByteArray(78, '\0');
    put(desc, 8, static_cast<std::uint32_t>(name.size() + 1), 4, true);
    while (desc.size() % 4)
        desc += '\0';
    QByteArray profile(144, '\0');
    put(profile, 0, static_cast<std::uint32_t>(144 + desc.size()), 4, true);
    put(profile, 8, 0x02100000, 4, true);
    profile.replace(12, 12, "mntrRGB XYZ ");
    profile.replace(36, 4, "acsp");
    put(profile, 68, 0xF6D6, 4, true); // D50
    put(profile, 72, 0x10000, 4, true);
    put(profile, 76, 0xD32D, 4, true);
    put(profile, 128, 1, 4, true);
    profile.replace(132, 4, "desc");
    put(profile, 136, 144, 4, true);
    put(profile, 140, static_cast<std::uint32_t>(desc.size()), 4, true);
    return profile + desc;
}

// A little-endian LZW RGB TIFF of 16 x 16 pixels carrying a profile.
QByteArray tiffFile()
{
    const QByteArray icc = iccProfile("Generated TIFF Profile");
    struct Entry {
        std::uint16_t tag, type;
        std::uint32_t count, value;
    };
    constexpr int entries = 8;
    constexpr std::uint32_t iccOffset = 8 + 2 + entries * 12 + 4;
    const auto dataOffset = static_cast<std::uint32_t>(iccOffset + icc.size());
    const Entry table[entries] = {{256, 3, 1, 16},  {257, 3, 1, 16},
                                  {258, 3, 1, 8},   {259, 3, 1, 5},
                                  {262, 3, 1, 2},   {273, 4, 1, dataOffset},
                                  {279, 4, 1, 768}, {34675, 7, static_cast<std::uint32_t>(icc.size()), iccOffset}};
    QByteArray bytes(static_cast<qsizetype>(iccOffset), '\0');
    bytes.replace(0, 4, QByteArray("II*\0", 4));
    put(bytes, 4, 8, 4, false);
    put(bytes, 8, entries, 2, false);
    for (int i = 0; i < entries; ++i) {
        const int at = 10 + i * 12;
        put(bytes, at, table[i].tag, 2, false);
        put(bytes, at + 2, table[i].type, 2, false);
        put(bytes, at + 4, table[i].count, 4, false);
        put(bytes, at + 8, table[i].value, table[i].type == 3 ? 2 : 4, false);
    }
    return bytes + icc + QByteArray(768, '\x20');
}

struct LargeDocument {
    QString documentPath;
    QString packageFolder;
    int links = 0;
};

// Generates the document, unpacks it and writes every file its links name into "Links".
LargeDocument writeLargeDocument(const QString& root)
{
    LargeDocument doc{root + QStringLiteral("/Catalogue.idml"), root + QStringLiteral("/Catalogue.idml.folder"), 0};
    bench::IdmlShape shape;
    shape.spreads = kSpreads;
    shape.linksPerSpread = kLinksPerSpread;
    if (bench::writeGeneratedIdml(doc.documentPath, shape).entries == 0)
        return doc;
    auto archive = idml::IdmlArchive::open(doc.documentPath);
    if (!archive || !archive->extractTo(doc.packageFolder))
        return doc;
    const QString links = root + QStringLiteral("/Links");
    QDir().mkpath(links);
    const QByteArray tiff = tiffFile();
    static const QRegularExpression uri(QStringLiteral("LinkResourceURI=\"file:[^\"]*/([^\"/]+)\""));
    QFileInfoList parts = QDir(doc.packageFolder + QStringLiteral("/MasterSpreads")).entryInfoList(QDir::Files);
    parts += QDir(doc.packageFolder + QStringLiteral("/Spreads")).entryInfoList(QDir::Files);
    for (const QFileInfo& spread : parts) {
        QFile file(spread.filePath());
        file.open(QIODevice::ReadOnly);
        const QString xml = QString::fromUtf8(file.readAll());
        for (auto match = uri.globalMatch(xml); match.hasNext();) {
            QFile linked(links + u'/' + match.next().captured(1));
            if (linked.open(QIODevice::WriteOnly) && linked.write(tiff) == tiff.size())
                ++doc.links;
        }
    }
    return doc;
}

const LargeDocument& largeDocument()
{
    static QTemporaryDir temporary;
    static const LargeDocument doc = [] {
        const QString kept = qEnvironmentVariable("QUILLON_BENCH_DOC");
        const QString root = kept.isEmpty() ? temporary.path() : kept;
        QDir().mkpath(root);
        const QString count = root + QStringLiteral("/.links");
        QFile done(count);
        if (!kept.isEmpty() && done.open(QIODevice::ReadOnly))
            return LargeDocument{root + QStringLiteral("/Catalogue.idml"),
                                 root + QStringLiteral("/Catalogue.idml.folder"), done.readAll().toInt()};
        const LargeDocument written = writeLargeDocument(root);
        if (done.open(QIODevice::WriteOnly))
            done.write(QByteArray::number(written.links));
        return written;
    }();
    return doc;
}

double maxRssMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

double processCpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Argument: the threads that read linked files (0: one per core).
void BM_AnalyseLargeDocument(benchmark::State& state)
{
    const LargeDocument& doc = largeDocument();
    if (doc.links < kSpreads * kLinksPerSpread) {
        state.SkipWithError("the generated document could not be written");
        return;
    }
    links::LinksController controller;
    controller.numberOfLinksInDoc = doc.links;
    controller.fileThreads = static_cast<int>(state.range(0));
    qsizetype records = 0;
    const double cpuBefore = processCpuSeconds();
    for (auto _ : state) {
        links::QNIDMLLinksProcessor processor(controller);
        records = processor.processLinksInIDMLFolder(doc.packageFolder, doc.documentPath).size();
        benchmark::DoNotOptimize(records);
    }
    state.counters["records"] = static_cast<double>(records);
    state.counters["cpu_ms_all_threads"] =
        (processCpuSeconds() - cpuBefore) * 1000.0 / static_cast<double>(state.iterations());
    state.counters["maxRSS_MB"] = maxRssMegabytes();
}
BENCHMARK(BM_AnalyseLargeDocument)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    return quillon::bench::runBenchmarks(
        argc, argv, [] { std::cerr << "document: " << largeDocument().links << " linked files\n"; });
}
