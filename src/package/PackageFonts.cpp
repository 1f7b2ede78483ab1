#include "package/PackageFonts.h"

#include "inspection/FontRecordKeys.h"

#include <QDir>
#include <QFileInfo>

namespace quillon::package {

namespace {

const QStringList kType1Companions{QStringLiteral("pfm"), QStringLiteral("afm"), QStringLiteral("pfb"),
                                   QStringLiteral("inf")};

// The font file and the Type 1 files that belong with it, each once.
QStringList filesOfFont(const QFileInfo& fontFile)
{
    QStringList files{fontFile.absoluteFilePath()};
    const QDir folder = fontFile.absoluteDir();
    for (const QString& extension : kType1Companions)
        for (const QString& spelled : {extension, extension.toUpper()}) {
            const QString companion = folder.filePath(fontFile.completeBaseName() + u'.' + spelled);
            if (!files.contains(companion) && QFileInfo(companion).isFile())
                files << companion;
        }
    return files;
}

} // namespace

FontFilesCopied copyFontFilesOfRecords(const QVariantList& fontRecords, const QString& fontsFolder,
                                       ExistingDestination existing, QSet<QString>& alreadyCopied,
                                       const app::CancelFlag* cancel)
{
    FontFilesCopied result;
    for (const QVariant& entry : fontRecords) {
        const QVariantMap record = entry.toMap();
        const QString name = record.value(inspection::kFontNameKey).toString();
        const QString path = record.value(inspection::kFontPathKey).toString();
        if (path.contains(inspection::kFontAdobeFontsMarker)) {
            result.notCopied << FontNotCopied{name, QStringLiteral("activated from Adobe Fonts")};
            continue;
        }
        if (path.isEmpty() || path == inspection::kFontNoPath) {
            result.notCopied << FontNotCopied{name, QStringLiteral("no font file found")};
            continue;
        }
        const QFileInfo fontFile(path);
        if (!fontFile.isFile()) {
            result.notCopied << FontNotCopied{name, QStringLiteral("the font file is gone: %1").arg(path)};
            continue;
        }
        if (!QDir().mkpath(fontsFolder)) {
            result.warnings << app::makeError(QStringLiteral("the fonts folder cannot be made"), fontsFolder);
            return result;
        }
        for (const QString& file : filesOfFont(fontFile)) {
            const QString destination = QDir(fontsFolder).filePath(QFileInfo(file).fileName());
            if (alreadyCopied.contains(destination))
                continue;
            FileCopyOptions options;
            options.existing = existing;
            options.cancel = cancel;
            const app::Result<CopiedFile> copied = copyFile(file, destination, options);
            if (!copied) {
                result.warnings << copied.error();
                continue;
            }
            alreadyCopied.insert(destination);
            result.copied << copied->destination;
        }
    }
    return result;
}

} // namespace quillon::package
