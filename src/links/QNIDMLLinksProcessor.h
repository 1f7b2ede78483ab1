#pragma once

#include "app/Result.h"
#include "links/LinkRecordBuilder.h"
#include "links/PageGeometry.h"
#include "links/StoryFramePages.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <vector>

namespace quillon::app {
class AlertSink;
class CancelFlag;
class ProgressSink;
} // namespace quillon::app

namespace quillon::idml {
class XmlPart;
} // namespace quillon::idml

namespace quillon::links {

class AnchoredLinkPageSource;
class DefaultApplications;
class LinkedFileReader;

// What a links run needs from the preflight that starts it. Every pointer may be null.
struct LinksController {
    app::ProgressSink* progress = nullptr; // status texts ("Preflighting links: Spread 3")
    app::CancelFlag* cancel = nullptr;     // checked between files; a cancelled run writes no data file
    app::AlertSink* alerts = nullptr;      // the file readers' "could not be parsed" alerts
    bool isBatchPreflight = false;         // a batch shows no per-file status
    // The document's link count as the host reported it. When the spreads hold fewer links, or
    // the count is not known (negative), the stories are read for anchored ones.
    int numberOfLinksInDoc = -1;
    // Folder that receives "qnf_tmpLinkData.plist" (each run of a batch may have its own); empty:
    // the data file is not written.
    QString dataFileFolder;
    // Folders searched by file name for links missing at their recorded path, after the
    // document's folder and its "Links" folder.
    QStringList linkFolders;
    // The page of anchored links; null: the package's own text frames tell it.
    AnchoredLinkPageSource* anchoredLinkPages = nullptr;
    // Reads linked files; null: the readers of the file-inspection layer.
    const LinkedFileReader* fileReader = nullptr;
    // The desktop's default applications; null: this session's.
    const DefaultApplications* defaultApps = nullptr;
    // Threads that read linked files; 0: one per core.
    int fileThreads = 0;
};

// Turns the placed graphics of an unpacked IDML package into link records: master spreads
// first, then spreads, then, when the document has more links than the spreads hold, the
// stories (anchored graphics). Records keep that order, and document order within a file.
//
// One processor per run, used by one thread; linked files are read on worker threads.
// Nothing here aborts the run: a part that cannot be read yields no records and a warning naming
// it, a link that is not a file link is skipped, missing attributes fall back to "?", "-", "   -"
// or "".
class QNIDMLLinksProcessor {
public:
    explicit QNIDMLLinksProcessor(LinksController controller);
    ~QNIDMLLinksProcessor();

    // Runs the analysis and returns the low eight bits of the record count as a truth value,
    // so that exactly 256, 512, ... records read as false: the callers have always tested it so.
    // `docPageSizes`, when given, receives the document's page sizes.
    static bool processLinksInIDMLFolderAtPath(const QString& packageFolder, const QString& origInDesignDocPath,
                                               const LinksController& controller, PageSizes* docPageSizes = nullptr);

    // The records ("children") of the document; also writes the data file when a folder is set.
    QVariantList processLinksInIDMLFolder(const QString& packageFolder, const QString& origInDesignDocPath);

    // One spread or master-spread file, one story file, and the whole story folder. The spread
    // form reads the page geometry first; call it in the order the files are to be read.
    QVariantList parseLinksAndTheirParentsOfSpreadAtURL(const QString& path, bool isMaster);
    QVariantList parseStoriesForAnchoredLinksInIDMLFolder(const QString& packageFolder);
    QVariantList parseLinksAndTheirParentsOfStoryAtURL(const QString& path);

    // The root of the data file: { document path: { "name", "isDock", "children" } }.
    const QVariantMap& linkDataTree() const { return m_linkDataTree; }
    // The outcome of writing the data file (ok when none was to be written).
    const app::Status& dataFileStatus() const { return m_dataFileStatus; }
    // The parts of this run that could not be read and were skipped, in the order met
    // ("Spreads/Spread_u1a.xml: not readable XML at byte 14").
    const QList<app::Error>& warnings() const { return m_warnings; }
    const PageGeometry& pageGeometry() const { return m_geometry; }
    const PageSizes& docPageSizes() const { return m_geometry.docPageSizes(); }

private:
    void beginRun(const QString& origInDesignDocPath);
    bool cancelled() const;
    void reportStatus(const QString& text) const;
    bool readPart(idml::XmlPart& part, const QString& path);
    void collectSpreadLinks(const QString& path, bool isMaster, std::vector<LinkSource>& sources);
    void collectStoryLinks(const QString& path, std::vector<LinkSource>& sources);
    void collectStoriesLinks(const QString& packageFolder, std::vector<LinkSource>& sources);
    QVariantList completeRecords(const std::vector<LinkSource>& sources) const;
    // The records of what `collect` gathers, for the one-file entry points.
    QVariantList recordsFrom(const std::function<void(std::vector<LinkSource>&)>& collect);
    void writeDataFile();

    LinksController m_controller;
    std::unique_ptr<LinkedFileReader> m_ownReader;
    std::unique_ptr<LinkRecordBuilder> m_builder;
    PageGeometry m_geometry;
    StoryFramePages m_storyFramePages;
    QVariantMap m_linkDataTree;
    app::Status m_dataFileStatus;
    QList<app::Error> m_warnings;
};

// The font side of the package: fonts are gathered by the font inspection, so this only names
// the package's "Resources" folder.
class QNIDMLFontsProcessor {
public:
    static bool processFontsInIDMLFolderAtPath(const QString& packageFolder, const QString& origInDesignDocPath,
                                               const LinksController& controller);
    bool processFontsInIDMLFolder(const QString& packageFolder, const QString& origInDesignDocPath);
    const QString& resourcesFolderPath() const { return m_resourcesFolderPath; }

private:
    QString m_resourcesFolderPath;
};

} // namespace quillon::links
