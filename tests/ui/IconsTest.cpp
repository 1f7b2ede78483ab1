#include "ui/Icons.h"

#include <gtest/gtest.h>

using quillon::ui::namedIcon;

// The drawings are compiled in and render on the offscreen platform; unknown names give nothing.
TEST(Icons, NamedDrawingsRenderAndUnknownNamesAreEmpty)
{
    const QIcon warning = namedIcon(QStringLiteral("warning"));
    ASSERT_FALSE(warning.isNull());
    EXPECT_FALSE(warning.pixmap(16, 16).isNull());
    EXPECT_TRUE(namedIcon(QStringLiteral("no-such-picture")).isNull());
    EXPECT_TRUE(namedIcon(QString()).isNull());
}
