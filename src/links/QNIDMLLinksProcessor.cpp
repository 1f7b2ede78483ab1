#include "links/QNIDMLLinksProcessor.h"

#include "app/Log.h"
#include "app/ParallelFor.h"
#include "app/PathComponents.h"
#include "app/Progress.h"
#include "app/RecordKeys.h"
#include "idml/IdmlDocument.h"
#include "idml/TextFields.h"
#include "idml/XmlPath.h"
#include "links/AnchoredLinkPageSource.h"
#include "links/LinkPaths.h"
#include "links/LinkRecordKeys.h"
#include "links/LinkValues.h"
#include "links/LinkedFileReader.h"

#include <cstring>
#include <iterator>

using namespace quillon::idml;

namespace quillon::links {

namespace {

bool isTrue(std::string_view text)
{
    return text == "true";
}

// The texts of a Link element, its graphic and the graphic's frame.
LinkSource sourceOfLink(pugi::xml_node link)
{
    LinkSource source;
    source.self = qstr(attr(link, "Self"));
    source.resourceURI = qstr(attr(link, "LinkResourceURI"));
    source.storedState = qstr(attr(link, "StoredState"));
    source.resourceFormat = qstr(attr(link, "LinkResourceFormat"));
    source.resourceSize = qstr(attr(link, "LinkResourceSize"));
    source.importModificationTime = qstr(attr(link, "LinkImportModificationTime"));
    source.importStamp = qstr(attr(link, "LinkImportStamp"));
    const pugi::xml_node graphic = link.parent();
    const pugi::xml_node frame = graphic.parent();
    source.graphicSelf = qstr(attr(graphic, "Self"));
    source.itemTransform = qstr(attr(graphic, "ItemTransform"));
    source.effectivePpi = qstr(attr(graphic, "EffectivePpi"));
    source.actualPpi = qstr(attr(graphic, "ActualPpi"));
    source.space = qstr(attr(graphic, "Space"));
    source.graphicNonprinting = isTrue(attr(graphic, "Nonprinting"));
    source.frameNonprinting = isTrue(attr(frame, "Nonprinting"));
    if (const pugi::xml_node contents = firstAtPath(graphic, {"MetadataPacketPreference", "Properties", "Contents"})) {
        source.hasMetadataPacket = true;
        source.metadataPacket = textOf(contents);
    }
    return source;
}

// Below a few dozen links a thread costs more than it saves.
constexpr qsizetype kLinksPerThread = 32;

} // namespace

QNIDMLLinksProcessor::QNIDMLLinksProcessor(LinksController controller) : m_controller(std::move(controller))
{
    if (!m_controller.fileReader) {
        m_ownReader = makeLinkedFileReader();
        m_controller.fileReader = m_ownReader.get();
    }
}

QNIDMLLinksProcessor::~QNIDMLLinksProcessor() = default;

void QNIDMLLinksProcessor::beginRun(const QString& origInDesignDocPath)
{
    m_geometry = PageGeometry();
    m_storyFramePages = StoryFramePages();
    m_warnings.clear();
    m_sources.clear();
    m_stories.clear();
    m_mastersMet = m_spreadsMet = m_storiesMet = 0;
    m_readsStories.reset();
    LinkRecordBuilder::Context context;
    context.documentPath = origInDesignDocPath;
    context.linkSearchFolders = linkSearchFolders(origInDesignDocPath, m_controller.linkFolders);
    context.reader = m_controller.fileReader;
    context.alerts = m_controller.alerts;
    context.defaultApps = m_controller.defaultApps;
    m_builder = std::make_unique<LinkRecordBuilder>(std::move(context));
}

bool QNIDMLLinksProcessor::cancelled() const
{
    return m_controller.cancel && m_controller.cancel->isCancelled();
}

void QNIDMLLinksProcessor::reportStatus(const QString& text) const
{
    if (m_controller.progress && !m_controller.isBatchPreflight) {
        m_controller.progress->increment(0);
        m_controller.progress->status(text);
    }
}

QVariantList QNIDMLLinksProcessor::processLinksInIDMLFolder(const QString& packageFolder,
                                                            const QString& origInDesignDocPath)
{
    app::Result<std::shared_ptr<IdmlDocument>> document = IdmlDocument::fromFolder(packageFolder);
    if (!document) {
        beginRun(origInDesignDocPath);
        app::logFailure(QStringLiteral("read %1: %2").arg(packageFolder, document.error().text()));
        m_warnings.append(document.error());
        return {};
    }
    return processLinksInDocument(**document, origInDesignDocPath);
}

QVariantList QNIDMLLinksProcessor::processLinksInDocument(const IdmlDocument& document,
                                                          const QString& origInDesignDocPath,
                                                          const std::vector<PartVisitor*>& alongside)
{
    beginRun(origInDesignDocPath);
    m_document = &document;
    m_masterNames = QSet<QString>(document.masterSpreadFiles().cbegin(), document.masterSpreadFiles().cend());
    m_spreadNames = QSet<QString>(document.spreadFiles().cbegin(), document.spreadFiles().cend());
    m_storyNames = QSet<QString>(document.storyFiles().cbegin(), document.storyFiles().cend());

    app::logLine(QStringLiteral("---> start idml spreads"));
    const auto visitEach = [&](const QString& name) { visit(name, document.part(name)); };
    if (alongside.empty()) {
        // Alone, the stories are parsed only when the links need them.
        document.forEachPart(document.masterSpreadFiles() + document.spreadFiles(), m_controller.cancel, visitEach);
        if (!cancelled() && readsStories())
            document.forEachPart(document.storyFiles(), m_controller.cancel, visitEach);
    } else {
        std::vector<PartVisitor*> visitors{this};
        visitors.insert(visitors.end(), alongside.begin(), alongside.end());
        document.visitParts(visitors, m_controller.cancel);
    }
    if (cancelled()) {
        m_document = nullptr;
        return {};
    }
    readsStories();
    // The stories' links follow the spreads' in the byte order of the stories' file names.
    for (const QString& story : document.storyFiles())
        if (const auto met = m_stories.find(story); met != m_stories.end()) {
            if (met->unreadable)
                m_warnings.append(*met->unreadable);
            std::move(met->sources.begin(), met->sources.end(), std::back_inserter(m_sources));
        }
    m_stories.clear();
    m_document = nullptr;
    const QVariantList records = completeRecords(m_sources);
    m_sources.clear();
    app::logLine(QStringLiteral("---> end idml spreads"));
    if (cancelled())
        return {};

    QVariantMap documentNode{{app::kGroupNameKey, app::lastPathComponent(origInDesignDocPath)},
                             {app::kGroupIsDockKey, true},
                             {app::kGroupChildrenKey, records}};
    m_linkDataTree = QVariantMap{{origInDesignDocPath, documentNode}};
    return records;
}

QStringList QNIDMLLinksProcessor::partNames(const IdmlDocument& document) const
{
    // The stories the designmap lists come in its order, as the font inspection sharing the pass
    // meets them; the links reorder theirs.
    QStringList names = document.masterSpreadFiles() + document.spreadFiles();
    const QSet<QString> storyFiles(document.storyFiles().cbegin(), document.storyFiles().cend());
    for (const QString& story : document.stories())
        if (storyFiles.contains(story))
            names.append(story);
    return names + document.storyFiles();
}

bool QNIDMLLinksProcessor::readsStories()
{
    if (m_readsStories)
        return *m_readsStories;
    app::logLine(QStringLiteral("-> all spreads done"));
    const int linksInDoc = m_controller.numberOfLinksInDoc;
    m_readsStories = linksInDoc < 0 || linksInDoc > static_cast<int>(m_sources.size());
    if (*m_readsStories) {
        app::logLine(QStringLiteral("more links in doc, check stories"));
        m_storyFramePages.setSpreadOrder(m_document ? m_document->spreads() : QStringList());
    }
    return *m_readsStories;
}

void QNIDMLLinksProcessor::visit(const QString& name, const app::Result<std::shared_ptr<const XmlPart>>& part)
{
    if (cancelled())
        return;
    const bool isMaster = m_masterNames.contains(name);
    if (isMaster || m_spreadNames.contains(name)) {
        reportStatus(isMaster ? QStringLiteral("Preflighting links: Master Spread %1").arg(++m_mastersMet)
                              : QStringLiteral("Preflighting links: Spread %1").arg(++m_spreadsMet));
        m_geometry.beginSpreadFile(isMaster);
    } else {
        if (!m_storyNames.contains(name) || !readsStories())
            return;
        reportStatus(QStringLiteral("Preflighting anchored links: Story %1").arg(++m_storiesMet));
    }
    const bool isSpread = isMaster || m_spreadNames.contains(name);
    if (!part) {
        // A part that cannot be read yields no records and is named; the rest still counts.
        app::logFailure(QStringLiteral("load %1: %2").arg(name, part.error().text()));
        if (isSpread)
            m_warnings.append(part.error());
        else
            m_stories[name].unreadable = part.error();
        return;
    }
    if (isSpread)
        collectSpreadLinks(**part, name, isMaster);
    else
        collectStoryLinks(**part, m_stories[name].sources);
}

void QNIDMLLinksProcessor::collectSpreadLinks(const XmlPart& part, const QString& name, bool isMaster)
{
    const pugi::xml_node root = part.root();
    m_geometry.parseSpreadAndPagesInfoInRootNode(root);
    forEachElement(root, [&](pugi::xml_node element) {
        const char* elementName = element.name();
        if (std::strcmp(elementName, "Link") == 0) {
            LinkSource source = sourceOfLink(element);
            source.page = m_geometry.parentPageNameForGraphicNode(element.parent().parent());
            m_sources.push_back(std::move(source));
        } else if (!isMaster && std::strcmp(elementName, "TextFrame") == 0) {
            if (const std::string_view story = attr(element, "ParentStory"); !story.empty())
                m_storyFramePages.addFrame(name, qstr(story), m_geometry.parentPageNameForGraphicNode(element).name);
        }
    });
}

void QNIDMLLinksProcessor::collectStoryLinks(const XmlPart& part, std::vector<LinkSource>& sources)
{
    const pugi::xml_node root = part.root();
    const QString storyId = qstr(attr(root.first_child(), "Self"));
    AnchoredLinkPageSource& pages =
        m_controller.anchoredLinkPages ? *m_controller.anchoredLinkPages : m_storyFramePages;
    forEachElement(root, [&](pugi::xml_node element) {
        if (std::strcmp(element.name(), "Link") != 0)
            return;
        LinkSource source = sourceOfLink(element);
        source.isAnchored = true;
        const QString pageName = pages.pageNameForLinkID(idStringFromHexString(source.self), storyId);
        source.page.name = pageName + kLinkAnchoredPageMark;
        source.page.sortOrder = m_geometry.sortOrderForPageName(pageName).value_or(1.0);
        sources.push_back(std::move(source));
    });
}

QVariantList QNIDMLLinksProcessor::completeRecords(const std::vector<LinkSource>& sources) const
{
    std::vector<QVariantMap> built(sources.size());
    app::ParallelOptions options;
    options.maxThreads = m_controller.fileThreads;
    options.itemsPerThread = kLinksPerThread;
    options.cancel = m_controller.cancel;
    app::parallelFor(static_cast<qsizetype>(sources.size()), options, [&](int, qsizetype index) {
        const auto i = static_cast<size_t>(index);
        built[i] = m_builder->build(sources[i]);
    });

    QVariantList records;
    records.reserve(static_cast<qsizetype>(built.size()));
    for (QVariantMap& record : built)
        if (!record.isEmpty())
            records.append(std::move(record));
    return records;
}

} // namespace quillon::links
