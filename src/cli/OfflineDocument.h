#pragma once

#include "app/Result.h"
#include "inspection/DocumentRecord.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace quillon::cli {

// A document read the way a preflight reads it, without InDesign: its record from the offline
// host, and its IDML copied into the work folder and unpacked there.
struct UnpackedDocument {
    inspection::DocumentRecord record;
    QString folder;        // the unpacked package; removed with the object
    bool repaired = false; // read from a repaired copy of a damaged archive
    // What the reading met without failing: parts that could not be read, a repaired archive, a
    // document without pages.
    QList<app::Error> warnings;

    UnpackedDocument() = default;
    UnpackedDocument(UnpackedDocument&& other) noexcept;
    UnpackedDocument& operator=(UnpackedDocument&&) = delete;
    ~UnpackedDocument();
};

// Errors name the document and the problem (missing, not an IDML package, damaged beyond repair).
// The copy and the unpacked package go into `workFolder`.
app::Result<UnpackedDocument> unpackDocument(const QString& path, const QString& workFolder);

// A private work folder for one run of a command, so that parallel runs never share (or remove)
// each other's files; removed with everything in it when the object goes, or by the
// interruption's forced end.
class PrivateWorkFolder {
public:
    explicit PrivateWorkFolder(const QString& command);
    ~PrivateWorkFolder();
    PrivateWorkFolder(const PrivateWorkFolder&) = delete;
    PrivateWorkFolder& operator=(const PrivateWorkFolder&) = delete;

    // False, after printing why, when no folder could be made.
    bool isValid() const;
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

} // namespace quillon::cli
