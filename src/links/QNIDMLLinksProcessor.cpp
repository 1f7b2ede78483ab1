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

bool QNIDMLLinksProcessor::processLinksInIDMLFolderAtPath(const QString& packageFolder,
                                                          const QString& origInDesignDocPath,
                                                          const LinksController& controller, PageSizes* docPageSizes)
{
    QNIDMLLinksProcessor processor(controller);
    const QVariantList records = processor.processLinksInIDMLFolder(packageFolder, origInDesignDocPath);
    if (docPageSizes)
        *docPageSizes = processor.docPageSizes();
    // The callers have always read the count through a one-byte truth value; kept so.
    return static_cast<std::uint8_t>(records.size()) != 0;
}

void QNIDMLLinksProcessor::beginRun(const QString& origInDesignDocPath)
{
    m_geometry = PageGeometry();
    m_storyFramePages = StoryFramePages();
    m_warnings.clear();
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
                                                          const QString& origInDesignDocPath)
{
    beginRun(origInDesignDocPath);
    QVariantMap documentNode{{app::kGroupNameKey, app::lastPathComponent(origInDesignDocPath)},
                             {app::kGroupIsDockKey, true}};

    app::logLine(QStringLiteral("---> start idml spreads"));
    const QStringList& masters = document.masterSpreadFiles();
    const QStringList& spreads = document.spreadFiles();
    std::vector<LinkSource> sources;
    for (const auto& [parts, label, isMaster] :
         {std::tuple{&masters, "Master Spread", true}, std::tuple{&spreads, "Spread", false}}) {
        int count = 0;
        document.forEachPart(*parts, m_controller.cancel, [&](const QString& name) {
            if (cancelled())
                return;
            reportStatus(QStringLiteral("Preflighting links: %1 %2").arg(QLatin1String(label)).arg(++count));
            collectSpreadLinks(document, name, isMaster, sources);
        });
        if (cancelled())
            return {};
    }
    app::logLine(QStringLiteral("-> all spreads done"));

    const int linksInDoc = m_controller.numberOfLinksInDoc;
    if (linksInDoc < 0 || linksInDoc > static_cast<int>(sources.size())) {
        app::logLine(QStringLiteral("more links in doc, check stories"));
        m_storyFramePages.setSpreadOrder(document.spreads());
        const QStringList& stories = document.storyFiles();
        int count = 0;
        document.forEachPart(stories, m_controller.cancel, [&](const QString& name) {
            if (cancelled())
                return;
            reportStatus(QStringLiteral("Preflighting anchored links: Story %1").arg(++count));
            collectStoryLinks(document, name, sources);
        });
        if (cancelled())
            return {};
    }
    if (cancelled())
        return {};
    const QVariantList records = completeRecords(sources);
    app::logLine(QStringLiteral("---> end idml spreads"));
    if (cancelled())
        return {};

    documentNode.insert(app::kGroupChildrenKey, records);
    m_linkDataTree = QVariantMap{{origInDesignDocPath, documentNode}};
    return records;
}

namespace {

// The part, or null with its error logged and added to `warnings`.
std::shared_ptr<const XmlPart> readPart(const IdmlDocument& document, const QString& name, QList<app::Error>& warnings)
{
    app::Result<std::shared_ptr<const XmlPart>> part = document.part(name);
    if (part)
        return *part;
    app::logFailure(QStringLiteral("load %1: %2").arg(name, part.error().text()));
    warnings.append(part.error());
    return {};
}

} // namespace

void QNIDMLLinksProcessor::collectSpreadLinks(const IdmlDocument& document, const QString& name, bool isMaster,
                                              std::vector<LinkSource>& sources)
{
    const std::shared_ptr<const XmlPart> part = readPart(document, name, m_warnings);
    m_geometry.beginSpreadFile(isMaster);
    if (!part)
        return;
    const pugi::xml_node root = part->root();
    m_geometry.parseSpreadAndPagesInfoInRootNode(root);
    forEachElement(root, [&](pugi::xml_node element) {
        const char* elementName = element.name();
        if (std::strcmp(elementName, "Link") == 0) {
            LinkSource source = sourceOfLink(element);
            source.page = m_geometry.parentPageNameForGraphicNode(element.parent().parent());
            sources.push_back(std::move(source));
        } else if (!isMaster && std::strcmp(elementName, "TextFrame") == 0) {
            if (const std::string_view story = attr(element, "ParentStory"); !story.empty())
                m_storyFramePages.addFrame(name, qstr(story), m_geometry.parentPageNameForGraphicNode(element).name);
        }
    });
}

void QNIDMLLinksProcessor::collectStoryLinks(const IdmlDocument& document, const QString& name,
                                             std::vector<LinkSource>& sources)
{
    const std::shared_ptr<const XmlPart> part = readPart(document, name, m_warnings);
    if (!part)
        return;
    const pugi::xml_node root = part->root();
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
