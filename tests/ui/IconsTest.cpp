#include "ui/Icons.h"

#include "inspection/ColorRecordKeys.h"
#include "inspection/FontRecordKeys.h"
#include "links/LinkRecordKeys.h"
#include "package/Delivery.h"
#include "results/ColorResults.h"
#include "results/FontResults.h"
#include "results/LinkResults.h"
#include "results/ResultKeys.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace quillon;
using ui::namedIcon;

namespace {

// Whether the drawing leaves any pixel at 16 points.
bool drawsSomething(const QIcon& icon)
{
    const QImage image = icon.pixmap(16, 16).toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 0)
                return true;
    return false;
}

} // namespace

// Every image name the result lists and the delivery settings can put in a record has a drawing
// that renders; the names are taken from the code that chooses them. Unknown names give nothing.
TEST(Icons, EveryImageNameTheRecordsUseHasADrawing)
{
    using results::QNColorsOutlineController;
    using results::QNFontsOutlineController;
    using results::QNLinksOutline;
    QStringList names{results::kImageWarning,
                      results::kImageFileIcon,
                      QStringLiteral("quillon"),
                      QStringLiteral("switch-on"),
                      QStringLiteral("switch-off"),
                      QStringLiteral("ok-header"),
                      QStringLiteral("HeaderTriangle"),
                      QStringLiteral("pdf-embed-header"),
                      QStringLiteral("color-spot-header"),
                      QStringLiteral("color-mode-header")};
    for (const QString& type : {inspection::kFontTypeOpenTypeMarker, inspection::kFontTypeType1,
                                inspection::kFontTypeTrueType, inspection::kFontTypeBitmap})
        names.append(QNFontsOutlineController::iconForFontType(type));
    for (const QString& status : {inspection::kFontStatusInstalled, inspection::kFontStatusMissing,
                                  inspection::kFontStatusFauxed, inspection::kFontStatusSubstituted})
        names.append(QNFontsOutlineController::iconForFontStatus(status));
    for (const QString& model :
         {inspection::kColorModelProcess, inspection::kColorModelSpot, inspection::kColorModelMixedInk})
        names.append(QNColorsOutlineController::imageForSpotValue(model));
    for (const QString& space : {inspection::kColorSpaceCMYK, inspection::kColorSpaceRGB, inspection::kColorSpaceLAB,
                                 inspection::kColorSpaceRegistration})
        names.append(QNColorsOutlineController::imageForColorSpace(space));
    for (const QString& status :
         {links::kLinkStatusOK, links::kLinkStatusModified, links::kLinkStatusMissing, links::kLinkStatusEmbedded})
        names.append(QNLinksOutline::statusImage(status));
    for (const char* type : {"FTP Server", "SFTP Server", "Local Disk", "Amazon S3", "WebDAV Server",
                             "Secure WebDAV Server", "AFP Server"})
        names.append(package::imageForDestType(QLatin1String(type)));

    for (const QString& name : names) {
        EXPECT_NE(name, results::kImageBlank) << "a known value chose no picture";
        EXPECT_TRUE(drawsSomething(namedIcon(name))) << name.toStdString();
    }
    // "blank" is a drawing too, but an empty one.
    ASSERT_FALSE(namedIcon(results::kImageBlank).isNull());
    EXPECT_FALSE(drawsSomething(namedIcon(results::kImageBlank)));
    EXPECT_TRUE(namedIcon(QStringLiteral("no-such-picture")).isNull());
    EXPECT_TRUE(namedIcon(QString()).isNull());
}
