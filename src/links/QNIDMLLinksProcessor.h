#pragma once

#include "app/Result.h"
#include "idml/IdmlDocument.h"
#include "links/LinkRecordBuilder.h"
#include "links/PageGeometry.h"
#include "links/StoryFramePages.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

namespace quillon::app {
class AlertSink;
class CancelFlag;
class ProgressSink;
} // namespace quillon::app

namespace quillon::links {

class AnchoredLinkPageSource;
class DefaultApplications;
class LinkedFileReader;

// What a links run needs from the preflight that starts it. Every pointer may be null.
struct LinksController {
    app::ProgressSink* progress = nullptr; // status texts ("Preflighting links: Spread 3")
    app::CancelFlag* cancel = nullptr;     // checked between parts and between linked files
    app::AlertSink* alerts = nullptr;      // the file readers' "could not be parsed" alerts
    bool isBatchPreflight = false;         // a batch shows no per-file status
    // The document's link count as the host reported it. When the spreads hold fewer links, or
    // the count is not known (negative), the stories are read for anchored ones.
    int numberOfLinksInDoc = -1;
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

// Turns the placed graphics of an IDML package into link records: master spreads first, then
// spreads, each in byte order of their file names (the order a Mac volume lists a folder in),
// then, when the document has more links than the spreads hold, the stories (anchored graphics)
// in the same order. Records keep that order, and document order within a part.
//
// One processor per run, used by one thread; linked files are read on worker threads.
// Nothing here aborts the run: a part that cannot be read yields no records and a warning naming
// it, a link that is not a file link is skipped, missing attributes fall back to "?", "-", "   -"
// or "".
class QNIDMLLinksProcessor final : public idml::PartVisitor {
public:
    explicit QNIDMLLinksProcessor(LinksController controller);
    ~QNIDMLLinksProcessor();

    // The records ("children") of the document; empty when cancelled. The `alongside` readers are
    // handed their parts in the same pass over the document (the stories then read whether the
    // links need them or not).
    QVariantList processLinksInDocument(const idml::IdmlDocument& document, const QString& origInDesignDocPath,
                                        const std::vector<idml::PartVisitor*>& alongside = {});
    // The same for a package unpacked into a folder; a folder that cannot be read as one is
    // named in the warnings.
    QVariantList processLinksInIDMLFolder(const QString& packageFolder, const QString& origInDesignDocPath);

    // The root of the data file: { document path: { "name", "isDock", "children" } }.
    const QVariantMap& linkDataTree() const { return m_linkDataTree; }
    // The parts of this run that could not be read and were skipped, in the order met
    // ("Spreads/Spread_u1a.xml: not readable XML at byte 14").
    const QList<app::Error>& warnings() const { return m_warnings; }
    const PageGeometry& pageGeometry() const { return m_geometry; }
    const PageSizes& docPageSizes() const { return m_geometry.docPageSizes(); }

    QStringList partNames(const idml::IdmlDocument& document) const override;
    void visit(const QString& name, const app::Result<std::shared_ptr<const idml::XmlPart>>& part) override;

private:
    void beginRun(const QString& origInDesignDocPath);
    // Whether the stories are read for anchored links: decided once the spreads are done.
    bool readsStories();
    bool cancelled() const;
    void reportStatus(const QString& text) const;
    void collectSpreadLinks(const idml::XmlPart& part, const QString& name, bool isMaster);
    void collectStoryLinks(const idml::XmlPart& part, std::vector<LinkSource>& sources);
    QVariantList completeRecords(const std::vector<LinkSource>& sources) const;

    LinksController m_controller;
    std::unique_ptr<LinkedFileReader> m_ownReader;
    std::unique_ptr<LinkRecordBuilder> m_builder;
    PageGeometry m_geometry;
    StoryFramePages m_storyFramePages;
    QVariantMap m_linkDataTree;
    // This run's document and what its pass has met so far.
    const idml::IdmlDocument* m_document = nullptr;
    QSet<QString> m_masterNames;
    QSet<QString> m_spreadNames;
    QSet<QString> m_storyNames;
    std::vector<LinkSource> m_sources;
    // What each story gave, put in order when the pass is done.
    struct StoryLinks {
        std::vector<LinkSource> sources;
        std::optional<app::Error> unreadable;
    };
    QHash<QString, StoryLinks> m_stories;
    int m_mastersMet = 0;
    int m_spreadsMet = 0;
    int m_storiesMet = 0;
    std::optional<bool> m_readsStories;
    QList<app::Error> m_warnings;
};

} // namespace quillon::links
