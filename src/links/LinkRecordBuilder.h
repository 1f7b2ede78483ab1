#pragma once

#include "links/PageGeometry.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>
#include <string>

namespace quillon::app {
class AlertSink;
}

namespace quillon::links {

class DefaultApplications;
class LinkedFileReader;

// What the package says about one placed file: the texts of its Link element, of the graphic
// element holding the link and of the frame around that graphic, and the page found for it.
// Gathered while the XML is read; everything that needs the file on disk is left to
// LinkRecordBuilder, so that work can run apart from the reading.
struct LinkSource {
    // Link element
    QString self;
    QString resourceURI;
    QString storedState;
    QString resourceFormat;
    QString resourceSize;
    QString importModificationTime;
    QString importStamp;
    // graphic element (Image, EPS, PDF, ...)
    QString graphicSelf;
    QString itemTransform;
    QString effectivePpi;
    QString actualPpi;
    QString space;
    bool graphicNonprinting = false;
    // the frame holding the graphic
    bool frameNonprinting = false;
    // the graphic's XMP packet, when it has a metadata packet preference
    bool hasMetadataPacket = false;
    std::string metadataPacket;
    // found in a story rather than on a spread
    bool isAnchored = false;
    PageHit page;
};

// Turns a LinkSource into a link record, looking at the linked file on disk as needed: status,
// volume, default application, profile and the file's own facts. Const and thread-safe, so
// records can be built on several threads at once.
class LinkRecordBuilder {
public:
    struct Context {
        QString documentPath;          // the document's path, the records' "docPath"
        QStringList linkSearchFolders; // where links missing at their recorded path are looked for
        const LinkedFileReader* reader = nullptr;
        const DefaultApplications* defaultApps = nullptr;
        app::AlertSink* alerts = nullptr; // for the readers' "could not be parsed" alerts; may be null
        QDateTime now;                    // the date of a link whose recorded date does not read
    };

    explicit LinkRecordBuilder(Context context);

    // The record of a file link; an empty map when the link is not a file link (it is skipped).
    QVariantMap build(const LinkSource& source) const;

    // The status of the file at `path` against the link's date: "Missing", "<unknown>" when the
    // file's date cannot be read, else "OK" or "Modified".
    static QString statusOfLinkAtPath(const QString& path, const QDateTime& linkDate);

    // What one look at a path tells: whether something is there and its modification time in
    // milliseconds since the epoch (none when it cannot be read).
    struct FileStat {
        bool exists = false;
        std::optional<qint64> modifiedMSecs;
    };
    static FileStat statPath(const QString& path);

private:
    bool parseLinkNode(const LinkSource& source, QVariantMap& record, QString& path, bool& exists) const;
    void parseParentNode(const LinkSource& source, QVariantMap& record, const QString& path, bool exists) const;
    void readFileFacts(const LinkSource& source, QVariantMap& record, const QString& path, bool exists) const;
    QString linkPath(const QString& uri, const QString& storedState, FileStat& stat) const;
    static QString statusFromStat(const QString& path, const FileStat& stat, qint64 linkMSecs);

    Context m_context;
    QString m_documentFolder;
};

} // namespace quillon::links
