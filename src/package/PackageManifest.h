#pragma once

#include "package/FileCopy.h"

#include "app/Progress.h"
#include "app/Result.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace quillon::package {

// The file in every package folder that lists what the package holds.
inline constexpr const char* kManifestFileName = "package-manifest.json";

// What a copy learnt of the file it placed.
struct CopiedFileRecord {
    QString source;
    QByteArray sha256; // hex
    FileStamp stamp;   // of the copy when it was hashed
};
// Absolute path of the copy -> its record.
using CopiedFileRecords = QHash<QString, CopiedFileRecord>;

struct ManifestDocument {
    QString source;   // the document as the user gave it
    QString packaged; // its copy in the package
    QString summary;  // the preflight's status line
};

struct ManifestHeader {
    QString preset;
    QList<ManifestDocument> documents; // those packaged into this folder
};

// Writes the manifest of `folder`: every file under it with its path relative to the folder, size,
// modification time, SHA-256 and the source it came from. A copy that is still as it was placed
// keeps the hash computed while copying; every other file (the relinked document, reports, fonts)
// is hashed now, being final. Written through a temporary file renamed into place, so a manifest
// is whole or absent.
app::Status writePackageManifest(const QString& folder, const ManifestHeader& header, const CopiedFileRecords& copies,
                                 const app::CancelFlag* cancel = nullptr);

struct ChangedFile {
    QString path;
    QString reason;
};

// What a package holds against its manifest.
struct PackageCheck {
    int filesListed = 0;
    QStringList missing;
    QList<ChangedFile> changed;
    QStringList unexpected;
    bool intact() const { return missing.isEmpty() && changed.isEmpty() && unexpected.isEmpty(); }
};

// Re-reads every file of the package and compares it with the manifest. An error when the
// manifest is missing or cannot be read as one.
app::Result<PackageCheck> verifyPackage(const QString& folder);

} // namespace quillon::package
