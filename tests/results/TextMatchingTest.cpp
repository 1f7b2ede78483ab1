#include "results/TextMatching.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quillon::results {
namespace {

TEST(TextMatching, ContainsIgnoresCaseAndDiacritics)
{
    EXPECT_TRUE(containsIgnoringCaseAndDiacritics(u"Café Noir"_s, u"CAFE"_s));
    EXPECT_TRUE(containsIgnoringCaseAndDiacritics(u"Cafe Noir"_s, u"café"_s));
    // Composed and decomposed accents are the same letter.
    EXPECT_TRUE(containsIgnoringCaseAndDiacritics(u"Ange\u0301lique"_s, u"ANGÉL"_s));
    EXPECT_FALSE(containsIgnoringCaseAndDiacritics(u"Helvetica"_s, u"Arial"_s));
}

TEST(TextMatching, PatternIsWholeTextCaseInsensitiveDiacriticSensitive)
{
    EXPECT_TRUE(matchesPatternIgnoringCase(u"arial bold"_s, u"Arial*"_s));
    EXPECT_FALSE(matchesPatternIgnoringCase(u"missing font"_s, u"Missing"_s));
    EXPECT_FALSE(matchesPatternIgnoringCase(u"Café"_s, u"cafe"_s));
    EXPECT_TRUE(matchesPatternIgnoringCase(u"Café"_s, u"CAFÉ"_s));
    EXPECT_TRUE(matchesPatternIgnoringCase(u"type 1"_s, u"Type ?"_s));
    EXPECT_FALSE(matchesPatternIgnoringCase(u"type 12"_s, u"Type ?"_s));
    EXPECT_TRUE(matchesPatternIgnoringCase(u"a\U0001F600b"_s, u"a?b"_s));
    EXPECT_TRUE(matchesPatternIgnoringCase(u"abcabd"_s, u"*ab?"_s));
    EXPECT_TRUE(matchesPatternIgnoringCase(u"x"_s, u"**x**"_s));
    EXPECT_FALSE(matchesPatternIgnoringCase(u"x"_s, QString()));
    EXPECT_TRUE(matchesPatternIgnoringCase(QString(), u"*"_s));
}

TEST(TextMatching, PatternWithManyStarsStaysFast)
{
    // Backtracking over stars must not explode on a long text that almost matches.
    const QString text = QString(5000, u'a');
    EXPECT_FALSE(matchesPatternIgnoringCase(text, u"*a*a*a*a*a*a*a*a*b"_s));
}

} // namespace
} // namespace quillon::results
