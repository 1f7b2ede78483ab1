#include "results/TextMatching.h"

#include <gtest/gtest.h>

namespace quillon::results {
namespace {

TEST(TextMatching, ContainsIgnoresCaseAndDiacritics)
{
    EXPECT_TRUE(containsIgnoringCaseAndDiacritics(QStringLiteral("Café Noir"), QStringLiteral("CAFE")));
    EXPECT_TRUE(containsIgnoringCaseAndDiacritics(QStringLiteral("Cafe Noir"), QStringLiteral("café")));
    // Composed and decomposed accents are the same letter.
    EXPECT_TRUE(containsIgnoringCaseAndDiacritics(QStringLiteral("Ange\u0301lique"), QStringLiteral("ANGÉL")));
    EXPECT_FALSE(containsIgnoringCaseAndDiacritics(QStringLiteral("Helvetica"), QStringLiteral("Arial")));
}

TEST(TextMatching, PatternIsWholeTextCaseInsensitiveDiacriticSensitive)
{
    EXPECT_TRUE(matchesPatternIgnoringCase(QStringLiteral("arial bold"), QStringLiteral("Arial*")));
    EXPECT_FALSE(matchesPatternIgnoringCase(QStringLiteral("missing font"), QStringLiteral("Missing")));
    EXPECT_FALSE(matchesPatternIgnoringCase(QStringLiteral("Café"), QStringLiteral("cafe")));
    EXPECT_TRUE(matchesPatternIgnoringCase(QStringLiteral("Café"), QStringLiteral("CAFÉ")));
    EXPECT_TRUE(matchesPatternIgnoringCase(QStringLiteral("type 1"), QStringLiteral("Type ?")));
    EXPECT_FALSE(matchesPatternIgnoringCase(QStringLiteral("type 12"), QStringLiteral("Type ?")));
    EXPECT_TRUE(matchesPatternIgnoringCase(QStringLiteral("a\U0001F600b"), QStringLiteral("a?b")));
    EXPECT_TRUE(matchesPatternIgnoringCase(QStringLiteral("abcabd"), QStringLiteral("*ab?")));
    EXPECT_TRUE(matchesPatternIgnoringCase(QStringLiteral("x"), QStringLiteral("**x**")));
    EXPECT_FALSE(matchesPatternIgnoringCase(QStringLiteral("x"), QString()));
    EXPECT_TRUE(matchesPatternIgnoringCase(QString(), QStringLiteral("*")));
}

TEST(TextMatching, PatternWithManyStarsStaysFast)
{
    // Backtracking over stars must not explode on a long text that almost matches.
    const QString text = QString(5000, u'a');
    EXPECT_FALSE(matchesPatternIgnoringCase(text, QStringLiteral("*a*a*a*a*a*a*a*a*b")));
}

} // namespace
} // namespace quillon::results
