#pragma once

#include "app/Result.h"
#include "inspection/DocumentRecord.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace quillon::idml {
class IdmlDocument;
} // namespace quillon::idml

namespace quillon::cli {

// A document read the way a preflight reads it, without InDesign: its parts straight from the
// archive (a damaged one repaired in the work folder), and its record counted from them.
struct OfflineDocument {
    inspection::DocumentRecord record;
    std::shared_ptr<const idml::IdmlDocument> parts;
    bool repaired = false; // read from a repaired copy of a damaged archive
    // What the reading met without failing: parts that could not be read, a repaired archive, a
    // document without pages.
    QList<app::Error> warnings;
};

// Errors name the document and the problem (missing, not an IDML package, damaged beyond repair).
// A repaired copy goes into `workFolder`.
app::Result<OfflineDocument> readOfflineDocument(const QString& path, const QString& workFolder);

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
