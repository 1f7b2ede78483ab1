#pragma once

#include "package/FileCopy.h"

#include "app/Result.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace quillon::package {

// A font of the document whose file is not in the package, and why.
struct FontNotCopied {
    QString name;
    QString reason;
};

struct FontFilesCopied {
    QStringList copied; // the files written, companions included
    QList<FontNotCopied> notCopied;
    QList<app::Error> warnings; // files that could not be copied
};

// Where the host's own package command does not gather fonts (the offline host), the package
// does: into `fontsFolder`, each file the font records' "path" names, with the Type 1 files of
// the same base name beside it (.pfm, .afm, .pfb, .inf). Fonts without a known file ("?", "")
// and fonts activated from Adobe Fonts (whose licence keeps them out of packages) are listed as
// not copied. `alreadyCopied` holds the destinations copied earlier in the run; they are not
// copied again.
FontFilesCopied copyFontFilesOfRecords(const QVariantList& fontRecords, const QString& fontsFolder,
                                       ExistingDestination existing, QSet<QString>& alreadyCopied,
                                       const app::CancelFlag* cancel);

} // namespace quillon::package
