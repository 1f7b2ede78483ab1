// Judging a large link list under a preset that uses every kind of link rule and threshold.
#include "results/LinkResults.h"
#include "results/Presets.h"

#include <QCoreApplication>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

namespace {

using quillon::results::QNLinksOutline;

QVariantMap rule(const char* attribute, const char* condition, const QVariant& value)
{
    return {{QStringLiteral("attribute"), QLatin1String(attribute)},
            {QStringLiteral("attributeKey"), QStringLiteral("name")},
            {QStringLiteral("condition"), QLatin1String(condition)},
            {QStringLiteral("value"), value}};
}

QVariantMap everyRuleKindPreset()
{
    const QVariantList rules{rule("Name", "contains", QStringLiteral("final")),
                             rule("Name", "doesn't contain", QStringLiteral("_v")),
                             rule("Kind", "is", QStringLiteral("TIFF LZW")),
                             rule("Kind", "contains", QStringLiteral("EPS")),
                             rule("Status", "is", 1),
                             rule("Status", "is", QStringLiteral("Missing")),
                             rule("Color Mode", "is", QStringLiteral("RGB")),
                             rule("Color Mode", "doesn't contain", QStringLiteral("CMYK")),
                             rule("ICC Profile", "doesn't contain", QStringLiteral("FOGRA")),
                             rule("Path", "contains", QStringLiteral("/Downloads/"))};
    const QVariantMap links{
        {QStringLiteral("conditions"), rules},
        {QStringLiteral("sizeBelowField"), QStringLiteral("10")},
        {QStringLiteral("sizeBelowBytes"),
         QVariant::fromValue(quillon::results::sizeLimitBytes(QStringLiteral("10"), QStringLiteral("KB")))},
        {QStringLiteral("sizeBelowUnitsPopup"), QStringLiteral("KB")},
        {QStringLiteral("sizeAboveField"), QStringLiteral("100")},
        {QStringLiteral("sizeAboveBytes"),
         QVariant::fromValue(quillon::results::sizeLimitBytes(QStringLiteral("100"), QStringLiteral("MB")))},
        {QStringLiteral("sizeAboveUnitsPopup"), QStringLiteral("MB")},
        {QStringLiteral("resBelowField"), QStringLiteral("250")},
        {QStringLiteral("resAboveField"), QStringLiteral("450")},
        {QStringLiteral("resBWBelowField"), QStringLiteral("800")},
        {QStringLiteral("resBWAboveField"), QStringLiteral("2400")},
        {QStringLiteral("fontsEpsBtn"), 1},
        {QStringLiteral("fontsEpsMtrx"), 1},
        {QStringLiteral("scaledNonPropBtn"), 1},
        {QStringLiteral("nonPrintBtn"), 1}};
    return {{QStringLiteral("name"), QStringLiteral("Every rule")}, {QStringLiteral("Links"), links}};
}

// Records shaped like the link analysis writes them, with enough variety that every rule and
// threshold both passes and fails somewhere in the list.
QVariantList linkRecords(int count)
{
    static const char* kinds[] = {"TIFF LZW", "Photoshop", "EPS DCS", "JPEG", "PDF (.ai)"};
    static const char* colors[] = {"CMYK", "RGB", "Black and White", "Grayscale", "CMYK + Spot"};
    static const char* statuses[] = {"OK", "Modified", "Missing", "Embedded"};
    QVariantList records;
    records.reserve(count);
    for (int i = 0; i < count; ++i) {
        const QString name = QStringLiteral("image_%1%2.tif").arg(i).arg(i % 7 == 0 ? "_final" : "_v2");
        records.append(QVariantMap{
            {QStringLiteral("id"), QString::number(400 + i)},
            {QStringLiteral("name"), name},
            {QStringLiteral("path"),
             (i % 11 == 0 ? QStringLiteral("/Users/me/Downloads/") : QStringLiteral("/Volumes/Jobs/Links/")) + name},
            {QStringLiteral("volume"), QStringLiteral("Jobs")},
            {QStringLiteral("kind"), QLatin1String(kinds[i % 5])},
            {QStringLiteral("status"), QLatin1String(statuses[i % 4])},
            {QStringLiteral("sizebytes"), QVariant::fromValue<quint64>(quint64(i) * 104729u % 300000000u)},
            {QStringLiteral("size"), QStringLiteral("12.3 MB")},
            {QStringLiteral("app"), QStringLiteral("Preview.app")},
            {QStringLiteral("docPath"), QStringLiteral("/Volumes/Jobs/brochure.indd")},
            {QStringLiteral("scale"), QStringLiteral("62.5")},
            {QStringLiteral("horScale"), QStringLiteral("62.5")},
            {QStringLiteral("vertScale"), i % 9 == 0 ? QStringLiteral("50") : QStringLiteral("62.5")},
            {QStringLiteral("eres"), QString::number(100 + (i * 37) % 2600)},
            {QStringLiteral("ares"), QStringLiteral("300")},
            {QStringLiteral("color"), QLatin1String(colors[i % 5])},
            {QStringLiteral("page"), QString::number(1 + i / 10)},
            {QStringLiteral("print"), i % 13 == 0 ? QStringLiteral("-") : QStringLiteral("√")},
            {QStringLiteral("parentID"), QString::number(900 + i)},
            {QStringLiteral("profile"),
             i % 3 ? QStringLiteral("Coated FOGRA39 (ISO 12647-2:2004)") : QStringLiteral("sRGB IEC61966-2.1")},
            {QStringLiteral("epscols"), QStringLiteral("-")},
            {QStringLiteral("epscollist"), QString()},
            {QStringLiteral("epsfonts"), i % 5 == 2 ? QStringLiteral("2") : QStringLiteral("-")},
            {QStringLiteral("epsfontlist"), i % 5 == 2 ? QStringLiteral("Helvetica E\rTimes") : QStringLiteral("-")}});
    }
    return records;
}

// The caller keeps its records: every record is copied before the display keys go in.
void BM_JudgeLinks(benchmark::State& state)
{
    const QVariantList records = linkRecords(static_cast<int>(state.range(0)));
    const QVariantMap preset = everyRuleKindPreset();
    for (auto _ : state) {
        QVariantList judged = QNLinksOutline::applyCurrPresetToArray(records, preset);
        benchmark::DoNotOptimize(judged);
        // Freeing the judged list belongs to whoever drops it, not to judging.
        state.PauseTiming();
        judged = QVariantList();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_JudgeLinks)->Arg(10000)->Arg(500)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

// The records are handed over, as the link list does with a data file it has just read: they
// take the display keys in place.
void BM_JudgeHandedOverLinks(benchmark::State& state)
{
    const QVariantList records = linkRecords(static_cast<int>(state.range(0)));
    const QVariantMap preset = everyRuleKindPreset();
    for (auto _ : state) {
        state.PauseTiming();
        QVariantList own;
        own.reserve(records.size());
        for (const QVariant& r : records) {
            QVariantMap copy = r.toMap();
            copy.detach();
            own.append(std::move(copy));
        }
        state.ResumeTiming();
        QVariantList judged = QNLinksOutline::applyCurrPresetToArray(std::move(own), preset);
        benchmark::DoNotOptimize(judged);
        state.PauseTiming();
        judged = QVariantList();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_JudgeHandedOverLinks)->Arg(10000)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

// The floor: copying every record and adding the six display keys, with no judging, on one thread.
void BM_CopyOnly(benchmark::State& state)
{
    const QVariantList records = linkRecords(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        QVariantList judged;
        judged.reserve(records.size());
        for (const QVariant& r : records) {
            QVariantMap m = r.toMap();
            m.insert(QStringLiteral("icon"), QStringLiteral("blank"));
            m.insert(QStringLiteral("statusImg"), QStringLiteral("blank"));
            m.insert(QStringLiteral("badfolder"), QStringLiteral("blank"));
            m.insert(QStringLiteral("alerts"), QVariantMap());
            m.insert(QStringLiteral("alert"), QStringLiteral("blank"));
            m.insert(QStringLiteral("alertName"), QString());
            judged.append(std::move(m));
        }
        benchmark::DoNotOptimize(judged);
    }
}
BENCHMARK(BM_CopyOnly)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    return quillon::bench::runBenchmarks(argc, argv);
}
