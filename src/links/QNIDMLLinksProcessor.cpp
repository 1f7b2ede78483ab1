#include "links/QNIDMLLinksProcessor.h"

#include "app/Log.h"
#include "app/PathComponents.h"
#include "app/Progress.h"
#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "links/AnchoredLinkPageSource.h"
#include "links/LinkPaths.h"
#include "links/LinkRecordKeys.h"
#include "links/LinkValues.h"
#include "links/LinkedFileReader.h"
#include "idml/PackageParts.h"
#include "idml/TextFields.h"
#include "idml/XmlPart.h"
#include "idml/XmlPath.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

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

int threadCount(int requested, size_t work)
{
    int threads = requested > 0 ? requested : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    // Below a few dozen files a thread costs more than it saves.
    threads = std::min<int>(threads, static_cast<int>(work / 32 + 1));
    return std::clamp(threads, 1, 16);
}

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
    m_dataFileStatus = app::Status();
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
    beginRun(origInDesignDocPath);
    QVariantMap documentNode{{app::kGroupNameKey, app::lastPathComponent(origInDesignDocPath)},
                             {app::kGroupIsDockKey, true}};

    app::logLine(QStringLiteral("---> start idml spreads"));
    std::vector<LinkSource> sources;
    for (const auto& [folder, label, isMaster] :
         {std::tuple{"MasterSpreads", "Master Spread", true}, std::tuple{"Spreads", "Spread", false}}) {
        int count = 0;
        for (const QString& path : packagePartFiles(packageFolder, QLatin1String(folder))) {
            if (cancelled())
                return {};
            reportStatus(QStringLiteral("Preflighting links: %1 %2").arg(QLatin1String(label)).arg(++count));
            collectSpreadLinks(path, isMaster, sources);
        }
    }
    app::logLine(QStringLiteral("-> all spreads done"));

    const int linksInDoc = m_controller.numberOfLinksInDoc;
    if (linksInDoc < 0 || linksInDoc > static_cast<int>(sources.size())) {
        app::logLine(QStringLiteral("more links in doc, check stories"));
        collectStoriesLinks(packageFolder, sources);
    }
    if (cancelled())
        return {};
    const QVariantList records = completeRecords(sources);
    app::logLine(QStringLiteral("---> end idml spreads"));
    if (cancelled())
        return {};

    documentNode.insert(app::kGroupChildrenKey, records);
    m_linkDataTree = QVariantMap{{origInDesignDocPath, documentNode}};
    writeDataFile();
    return records;
}

void QNIDMLLinksProcessor::writeDataFile()
{
    if (m_controller.dataFileFolder.isEmpty())
        return;
    app::logLine(QStringLiteral("write qnf_tmpLinkData.plist"));
    const QString path = QDir(m_controller.dataFileFolder).filePath(app::kLinkDataFileName);
    m_dataFileStatus = app::writePropertyListFile(m_linkDataTree, path);
    if (!m_dataFileStatus)
        app::logFailure(QStringLiteral("write %1: %2").arg(path, m_dataFileStatus.error().text()));
}

bool QNIDMLLinksProcessor::readPart(XmlPart& part, const QString& path)
{
    const app::Status read = part.read(path, partNameOfFile(path));
    if (read)
        return true;
    app::logFailure(QStringLiteral("load %1: %2").arg(path, read.error().text()));
    m_warnings.append(read.error());
    return false;
}

void QNIDMLLinksProcessor::collectSpreadLinks(const QString& path, bool isMaster, std::vector<LinkSource>& sources)
{
    XmlPart part;
    const bool loaded = readPart(part, path);
    m_geometry.beginSpreadFile(isMaster);
    if (!loaded)
        return;
    const pugi::xml_node root = part.root();
    m_geometry.parseSpreadAndPagesInfoInRootNode(root);
    forEachElement(root, [&](pugi::xml_node element) {
        const char* name = element.name();
        if (std::strcmp(name, "Link") == 0) {
            LinkSource source = sourceOfLink(element);
            source.page = m_geometry.parentPageNameForGraphicNode(element.parent().parent());
            sources.push_back(std::move(source));
        } else if (!isMaster && std::strcmp(name, "TextFrame") == 0) {
            if (const std::string_view story = attr(element, "ParentStory"); !story.empty())
                m_storyFramePages.addFrame(path, qstr(story), m_geometry.parentPageNameForGraphicNode(element).name);
        }
    });
}

void QNIDMLLinksProcessor::collectStoryLinks(const QString& path, std::vector<LinkSource>& sources)
{
    XmlPart part;
    if (!readPart(part, path))
        return;
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

void QNIDMLLinksProcessor::collectStoriesLinks(const QString& packageFolder, std::vector<LinkSource>& sources)
{
    m_storyFramePages.setSpreadOrder(packageFolder, StoryFramePages::spreadOrderFromDesignmap(packageFolder));
    int count = 0;
    for (const QString& path : packagePartFiles(packageFolder, QStringLiteral("Stories"))) {
        if (cancelled())
            return;
        reportStatus(QStringLiteral("Preflighting anchored links: Story %1").arg(++count));
        collectStoryLinks(path, sources);
    }
}

QVariantList QNIDMLLinksProcessor::completeRecords(const std::vector<LinkSource>& sources) const
{
    std::vector<QVariantMap> built(sources.size());
    std::atomic<size_t> next{0};
    const auto work = [&] {
        for (size_t i = next++; i < sources.size(); i = next++) {
            if (cancelled())
                return;
            built[i] = m_builder->build(sources[i]);
        }
    };
    const int threads = threadCount(m_controller.fileThreads, sources.size());
    std::vector<std::thread> helpers;
    for (int t = 1; t < threads; ++t)
        helpers.emplace_back(work);
    work();
    for (std::thread& helper : helpers)
        helper.join();

    QVariantList records;
    records.reserve(static_cast<qsizetype>(built.size()));
    for (QVariantMap& record : built)
        if (!record.isEmpty())
            records.append(std::move(record));
    return records;
}

QVariantList QNIDMLLinksProcessor::recordsFrom(const std::function<void(std::vector<LinkSource>&)>& collect)
{
    if (!m_builder)
        beginRun(QString());
    std::vector<LinkSource> sources;
    collect(sources);
    return completeRecords(sources);
}

QVariantList QNIDMLLinksProcessor::parseLinksAndTheirParentsOfSpreadAtURL(const QString& path, bool isMaster)
{
    return recordsFrom([&](std::vector<LinkSource>& sources) { collectSpreadLinks(path, isMaster, sources); });
}

QVariantList QNIDMLLinksProcessor::parseStoriesForAnchoredLinksInIDMLFolder(const QString& packageFolder)
{
    return recordsFrom([&](std::vector<LinkSource>& sources) { collectStoriesLinks(packageFolder, sources); });
}

QVariantList QNIDMLLinksProcessor::parseLinksAndTheirParentsOfStoryAtURL(const QString& path)
{
    return recordsFrom([&](std::vector<LinkSource>& sources) { collectStoryLinks(path, sources); });
}

bool QNIDMLFontsProcessor::processFontsInIDMLFolderAtPath(const QString& packageFolder,
                                                          const QString& origInDesignDocPath,
                                                          const LinksController& controller)
{
    (void)controller;
    QNIDMLFontsProcessor processor;
    return processor.processFontsInIDMLFolder(packageFolder, origInDesignDocPath);
}

bool QNIDMLFontsProcessor::processFontsInIDMLFolder(const QString& packageFolder, const QString& origInDesignDocPath)
{
    (void)origInDesignDocPath;
    // Fonts are gathered by the font inspection; the package's Resources folder is all there is here.
    m_resourcesFolderPath = QDir(packageFolder).filePath(QStringLiteral("Resources"));
    return true;
}

} // namespace quillon::links
