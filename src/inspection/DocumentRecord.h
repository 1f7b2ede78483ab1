#pragma once

#include <QString>
#include <QStringList>

namespace quillon::inspection {

// What the host answers about the document to preflight. The counts and the version are kept as
// the host gave them: they are shown as they stand.
struct DocumentRecord {
    QString hfsPath; // empty for a host without HFS paths
    QString posixPath;
    QString fileName;
    QString pageCount;
    QString linkCount;
    QString InDesignVersion;

    // The host answered with nothing at all.
    bool isEmpty() const
    {
        return hfsPath.isEmpty() && posixPath.isEmpty() && fileName.isEmpty() && pageCount.isEmpty() &&
               linkCount.isEmpty() && InDesignVersion.isEmpty();
    }
    // The link count as a number (0 when it does not read as one).
    int numberOfLinks() const { return linkCount.toInt(); }
    // The six facts in the host's order, for the log.
    QString logText() const
    {
        return QStringList{hfsPath, posixPath, fileName, pageCount, linkCount, InDesignVersion}.join(
            QStringLiteral(", "));
    }
};

} // namespace quillon::inspection
