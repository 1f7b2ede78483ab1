#include "results/DocumentChecks.h"

#include "inspection/PageSizes.h"
#include "support/IdmlFixtures.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quillon::results {
namespace {

// The document information of a real sample as a preflight has it.
inspection::QNDocInfo sampleInfo(const QString& name, const QString& pages)
{
    const QString path = test::samplePath(u"idml/"_s + name);
    inspection::QNDocInfo info = inspection::QNDocInfo::docInfoWithDocument(path, pages, u"20.0"_s);
    const auto document = test::readPackage(path);
    EXPECT_TRUE(info.parseDocInfoInDocument(*document).ok());
    info.setDocPageSizesDict(inspection::pageSizesInDocument(*document));
    return info;
}

QStringList texts(const DocumentJudgement& judgement)
{
    QStringList all;
    for (const DocumentAlert& alert : judgement.alerts)
        all << alert.rule + u": "_s + alert.text;
    return all + judgement.warnings;
}

TEST(DocumentChecks, RaiseAndClearOnRealSamplesAtTheirBoundaries)
{
    // Bleed 3 mm on every side, one page of 148 x 210 mm (419.5276 x 595.2756 pt).
    const inspection::QNDocInfo bleed3mm = sampleInfo(u"parser.idml"_s, u"1"_s);
    // No preferences (bleed unknown), 60 pages of A4 and US Letter.
    const inspection::QNDocInfo mixed =
        sampleInfo(u"Minimalist Magazine Layout (link without StoredState).idml"_s, u"60"_s);
    const struct {
        const inspection::QNDocInfo& info;
        QVariantMap checks;
        QStringList expected;
    } cases[] = {
        {bleed3mm, {}, {}},
        // Equal bleed clears though 3 mm is written rounded; a hair more raises, in the unit asked for.
        {bleed3mm, {{u"minBleed"_s, 8.50394}, {u"unit"_s, u"mm"_s}}, {}},
        {bleed3mm, {{u"minBleed"_s, 8.52}, {u"unit"_s, u"mm"_s}}, {u"minBleed: Bleed 3 mm < 3.01 mm"_s}},
        {bleed3mm,
         {{u"minBleed"_s, 9}, {u"minSlug"_s, 1}},
         {u"minBleed: Bleed 8.5 pt < 9 pt"_s, u"minSlug: Slug 0 pt < 1 pt"_s}},
        // The page size within its tolerance, and just outside it.
        {bleed3mm, {{u"pageWidth"_s, 420.5276}, {u"pageHeight"_s, 595}, {u"pageSizeTolerance"_s, 1}}, {}},
        {bleed3mm,
         {{u"pageWidth"_s, 420.5276}, {u"pageHeight"_s, 595}, {u"pageSizeTolerance"_s, 0.9}},
         {u"pageSize: Page size 419.53 x 595.28 pt (1 page) \u2260 420.53 x 595 pt \u00b1 0.9 pt"_s}},
        {bleed3mm, {{u"samePageSize"_s, 1}, {u"minPages"_s, 1}, {u"maxPages"_s, 1}}, {}},
        {mixed,
         {{u"samePageSize"_s, true}, {u"maxPages"_s, 59}, {u"unit"_s, u"mm"_s}, {u"minBleed"_s, 1}},
         {u"samePageSize: Mixed page sizes: 210 x 297 mm (30 pages), 215.9 x 279.4 mm (30 pages)"_s,
          u"maxPages: Pages 60 > 59"_s, u"Document/minBleed not checked: the document's bleed could not be read"_s}},
        {bleed3mm, {{u"minPages"_s, 2}}, {u"minPages: Pages 1 < 2"_s}},
        // Malformed values are never a silent pass.
        {bleed3mm,
         {{u"minBleed"_s, u"3 mm"_s}, {u"minPages"_s, 1.5}, {u"maxPages"_s, -1}, {u"minBleeed"_s, 3}},
         {u"Document/minBleeed not checked: no document check has this name"_s,
          u"Document/minBleed not checked: \"3 mm\" is no length in points (0 or more)"_s,
          u"Document/minPages not checked: \"1.5\" is no page count (0 or more)"_s,
          u"Document/maxPages not checked: \"-1\" is no page count (0 or more)"_s}},
        {bleed3mm,
         {{u"pageWidth"_s, 420}, {u"unit"_s, u"furlong"_s}, {u"samePageSize"_s, u"yes"_s}},
         {u"Document/unit not checked: \"furlong\" is none of pt, mm, cm, in; shown in pt"_s,
          u"Document/samePageSize not checked: \"yes\" is not a state (0 or 1)"_s,
          u"Document/pageWidth not checked: pageWidth and pageHeight are given together"_s}},
        {bleed3mm,
         {{u"minPages"_s, 3}, {u"maxPages"_s, 2}},
         {u"Document/minPages not checked: minPages is above maxPages"_s}},
    };
    for (const auto& c : cases) {
        const DocumentJudgement judgement = judgeDocument(c.checks, c.info);
        EXPECT_EQ(judgement.checked, !c.checks.isEmpty());
        EXPECT_EQ(texts(judgement), c.expected) << texts(judgement).join(u'\n').toStdString();
    }
}

} // namespace
} // namespace quillon::results
