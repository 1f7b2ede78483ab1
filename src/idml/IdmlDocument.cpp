#include "idml/IdmlDocument.h"

#include "app/ParallelFor.h"
#include "app/Progress.h"
#include "idml/IdmlArchive.h"
#include "idml/IdmlPackage.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QTemporaryDir>

#include <algorithm>
#include <cstring>
#include <mutex>

namespace quillon::idml {

using app::makeError;
using app::Result;
using app::Status;

// Where the bytes of the parts come from: the archive, or the files of an unpacked folder.
struct IdmlDocument::Source {
    std::optional<IdmlArchive> archive;
    QString folder;
    std::unique_ptr<QTemporaryDir> scratch; // holds a repaired copy the archive reads from
    QHash<QString, qsizetype> slotByName;

    Result<QByteArray> text(const QString& name) const
    {
        const XmlPartLimits limits;
        if (!archive)
            return readPartFile(folder + u'/' + name, name, limits);
        const IdmlArchive::Entry* entry = archive->entry(name);
        if (!entry)
            return makeError(QStringLiteral("missing from the package"), name);
        if (entry->size > limits.maxBytes)
            return partTooLarge(name, entry->size, limits);
        Result<QByteArray> bytes = archive->readEntry(name, limits.maxBytes);
        if (!bytes)
            return makeError(bytes.error().message, name);
        return bytes;
    }

    Status parse(XmlPart& part, const QString& name) const
    {
        Result<QByteArray> bytes = text(name);
        if (!bytes)
            return bytes.error();
        return part.parse(std::move(bytes).value(), name, kPartParseOptions, XmlPartLimits());
    }
};

struct IdmlDocument::Slot {
    QString name;
    std::mutex mutex;
    std::shared_ptr<const XmlPart> part;
    std::optional<app::Error> error;
    // Whether the part counts against the kept-text limit (guarded by the document's kept mutex).
    bool kept = false;
    qint64 keptBytes = 0;
};

namespace {

// The element's name without its namespace prefix ("idPkg:Story" gives "Story").
std::string_view localName(const pugi::xml_node& node)
{
    const std::string_view name = node.name();
    const auto colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

QString fileNameOf(const QString& partName)
{
    return partName.mid(partName.lastIndexOf(u'/') + 1);
}

} // namespace

QStringList inFileNameOrder(QStringList partNames)
{
    std::stable_sort(partNames.begin(), partNames.end(), [](const QString& a, const QString& b) {
        return fileNameOf(a).toUtf8() < fileNameOf(b).toUtf8();
    });
    return partNames;
}

IdmlDocument::IdmlDocument(QString name, std::unique_ptr<Source> source)
    : m_name(std::move(name)), m_source(std::move(source))
{
}

IdmlDocument::~IdmlDocument() = default;

Result<std::shared_ptr<IdmlDocument>> IdmlDocument::open(const QString& idmlPath, const QString& workFolder,
                                                         const app::CancelFlag* cancel)
{
    const QString path = QFileInfo(idmlPath).absoluteFilePath();
    // A sound archive, the usual case, needs no scratch folder: one is made only for a repair.
    if (Result<IdmlArchive> sound = IdmlArchive::open(path, path); sound) {
        if (Status whole = checkIdmlStructure(*sound); !whole)
            return whole.error();
        return fromArchive(std::move(sound).value());
    }
    auto scratch = std::make_unique<QTemporaryDir>(QDir(workFolder).filePath(QStringLiteral("idml-XXXXXX")));
    ArchiveRepair repair;
    repair.repairedPath = scratch->filePath(QFileInfo(path).fileName() + QStringLiteral("_tmp.zip"));
    repair.reportedName = path;
    repair.cancel = cancel;
    bool repaired = false;
    Result<IdmlArchive> archive = openIdmlPackage(path, repair, &repaired);
    if (!archive)
        return archive.error();
    Result<std::shared_ptr<IdmlDocument>> document = fromArchive(std::move(archive).value());
    if (document) {
        (*document)->m_repaired = repaired;
        if (repaired)
            (*document)->m_source->scratch = std::move(scratch);
    }
    return document;
}

Result<std::shared_ptr<IdmlDocument>> IdmlDocument::fromArchive(IdmlArchive archive)
{
    auto source = std::make_unique<Source>();
    const QString name = archive.name();
    source->archive.emplace(std::move(archive));
    std::shared_ptr<IdmlDocument> document(new IdmlDocument(name, std::move(source)));
    if (Status read = document->readDesignmap(); !read)
        return read.error();
    return document;
}

Result<std::shared_ptr<IdmlDocument>> IdmlDocument::fromFolder(const QString& folder)
{
    const QFileInfo info(folder);
    if (!info.isDir())
        return makeError(QStringLiteral("the unpacked IDML folder is missing"), folder);
    auto source = std::make_unique<Source>();
    const QString name = QDir::cleanPath(info.absoluteFilePath());
    source->folder = name;
    std::shared_ptr<IdmlDocument> document(new IdmlDocument(name, std::move(source)));
    if (Status read = document->readDesignmap(); !read)
        return read.error();
    return document;
}

Status IdmlDocument::readDesignmap()
{
    const QString mapName = QStringLiteral("designmap.xml");
    if (Status read = m_source->parse(m_designmap, mapName); !read)
        return makeError(read.error().message, m_name, mapName);
    for (const pugi::xml_node child : m_designmap.root().children()) {
        const pugi::xml_attribute src = child.attribute("src");
        if (!src)
            continue;
        const std::optional<QString> name = safeRelativeEntryPath(QString::fromUtf8(src.value()));
        if (!name)
            return makeError(
                QStringLiteral("the package names a part outside its folder: %1").arg(QString::fromUtf8(src.value())),
                m_name, mapName);
        const std::string_view kind = localName(child);
        if (kind == "Story")
            m_stories.append(*name);
        else if (kind == "Spread")
            m_spreads.append(*name);
        else if (kind == "MasterSpread")
            m_masterSpreads.append(*name);
        else if (kind == "Graphic")
            m_graphic = *name;
        else if (kind == "Fonts")
            m_fonts = *name;
        else if (kind == "Styles")
            m_styles = *name;
        else if (kind == "Preferences")
            m_preferences = *name;
        else
            continue;
        addSlot(*name);
    }
    listPartFiles();
    for (const std::unique_ptr<Slot>& each : m_slots)
        m_partTextBytes += partBytes(each->name);
    return {};
}

void IdmlDocument::addSlot(const QString& name)
{
    if (m_source->slotByName.contains(name))
        return;
    m_source->slotByName.insert(name, static_cast<qsizetype>(m_slots.size()));
    m_slots.push_back(std::make_unique<Slot>());
    m_slots.back()->name = name;
}

void IdmlDocument::listPartFiles()
{
    for (const auto& [folder, files] :
         {std::pair{QStringLiteral("MasterSpreads"), &m_masterSpreadFiles},
          std::pair{QStringLiteral("Spreads"), &m_spreadFiles}, std::pair{QStringLiteral("Stories"), &m_storyFiles}}) {
        QStringList names;
        if (m_source->archive) {
            for (const IdmlArchive::Entry& entry : m_source->archive->entries())
                if (entry.path.startsWith(folder + u'/') && entry.path.count(u'/') == 1 && !entry.name.endsWith(u'/') &&
                    !fileNameOf(entry.path).startsWith(u'.'))
                    names << entry.path;
        } else {
            for (const QString& file : QDir(m_source->folder + u'/' + folder).entryList(QDir::Files))
                names << folder + u'/' + file;
        }
        *files = inFileNameOrder(names);
        for (const QString& name : std::as_const(*files))
            addSlot(name);
    }
}

IdmlDocument::Slot* IdmlDocument::slot(const QString& name) const
{
    const auto it = m_source->slotByName.constFind(name);
    return it == m_source->slotByName.cend() ? nullptr : m_slots[static_cast<size_t>(*it)].get();
}

Result<std::shared_ptr<const XmlPart>> IdmlDocument::part(const QString& name) const
{
    Slot* found = slot(name);
    if (!found)
        return makeError(QStringLiteral("not listed in designmap.xml"), name);
    const std::lock_guard lock(found->mutex);
    if (found->error)
        return *found->error;
    if (found->part)
        return found->part;
    auto part = std::make_shared<XmlPart>();
    ++m_parses;
    if (Status read = m_source->parse(*part, name); !read) {
        found->error = read.error();
        return *found->error;
    }
    if (keep(found, part->textSize()))
        found->part = part;
    return std::shared_ptr<const XmlPart>(std::move(part));
}

Result<QByteArray> IdmlDocument::partText(const QString& name) const
{
    if (!slot(name))
        return makeError(QStringLiteral("not listed in designmap.xml"), name);
    return m_source->text(name);
}

bool IdmlDocument::keep(Slot* slot, qint64 bytes) const
{
    const std::lock_guard lock(m_keptMutex);
    if (m_partTextBytes > m_keptLimit || m_keptBytes + bytes > m_keptLimit)
        return false;
    slot->kept = true;
    slot->keptBytes = bytes;
    m_keptBytes += bytes;
    return true;
}

void IdmlDocument::forget(Slot* slot) const
{
    const std::lock_guard lock(m_keptMutex);
    if (!slot->kept)
        return;
    slot->kept = false;
    m_keptBytes -= slot->keptBytes;
}

qint64 IdmlDocument::partBytes(const QString& name) const
{
    if (!m_source->archive)
        return QFileInfo(m_source->folder + u'/' + name).size();
    const IdmlArchive::Entry* entry = m_source->archive->entry(name);
    return entry ? static_cast<qint64>(entry->size) : 0;
}

void IdmlDocument::forEachWindow(const QStringList& names, const app::CancelFlag* cancel,
                                 const WindowVisit& visit) const
{
    for (qsizetype begin = 0; begin < names.size();) {
        qsizetype end = begin;
        qint64 bytes = 0;
        for (; end < names.size() && (end == begin || bytes < kWindowTextBytes); ++end)
            bytes += partBytes(names[end]);
        app::ParallelOptions options;
        options.cancel = cancel;
        options.maxThreads = bytes < kTextBytesWorthAThread ? 1 : 0;
        // A part not kept is held in its slot until its window is visited, so that the visit finds
        // it parsed.
        std::vector<Slot*> held(static_cast<size_t>(end - begin), nullptr);
        const bool parsed = app::parallelFor(end - begin, options, [&](int, qsizetype index) {
            const Result<std::shared_ptr<const XmlPart>> read = part(names[begin + index]);
            Slot* found = slot(names[begin + index]);
            if (!read || !found)
                return;
            const std::lock_guard lock(found->mutex);
            if (!found->part) {
                found->part = *read;
                held[static_cast<size_t>(index)] = found;
            }
        });
        if (parsed)
            visit(begin, end, options);
        for (Slot* found : held)
            if (found) {
                const std::lock_guard lock(found->mutex);
                if (!found->kept)
                    found->part.reset();
            }
        if (!parsed || (cancel && cancel->isCancelled()))
            return;
        begin = end;
    }
}

void IdmlDocument::forEachPart(const QStringList& names, const app::CancelFlag* cancel,
                               const std::function<void(const QString& name)>& visit) const
{
    forEachWindow(names, cancel, [&](qsizetype begin, qsizetype end, const app::ParallelOptions&) {
        for (qsizetype index = begin; index < end; ++index)
            visit(names[index]);
    });
}

void IdmlDocument::visitParts(const std::vector<PartVisitor*>& visitors, const app::CancelFlag* cancel) const
{
    QStringList names;
    QSet<QString> named;
    std::vector<QSet<QString>> wanted;
    for (const PartVisitor* visitor : visitors) {
        QSet<QString>& own = wanted.emplace_back();
        for (const QString& name : visitor->partNames(*this)) {
            own.insert(name);
            if (!named.contains(name)) {
                named.insert(name);
                names.append(name);
            }
        }
    }
    // The readers share nothing but the parsed parts, which they only read: each walks the window
    // on a thread of its own, in the pass's order.
    forEachWindow(names, cancel, [&](qsizetype begin, qsizetype end, const app::ParallelOptions& options) {
        app::parallelFor(static_cast<qsizetype>(visitors.size()), options, [&](int, qsizetype reader) {
            const auto index = static_cast<size_t>(reader);
            for (qsizetype at = begin; at < end && !(cancel && cancel->isCancelled()); ++at)
                if (wanted[index].contains(names[at]))
                    visitors[index]->visit(names[at], part(names[at]));
        });
    });
}

void IdmlDocument::release(const QStringList& names) const
{
    for (const QString& name : names)
        if (Slot* found = slot(name)) {
            forget(found);
            const std::lock_guard lock(found->mutex);
            found->part.reset();
            found->error.reset();
        }
}

} // namespace quillon::idml
