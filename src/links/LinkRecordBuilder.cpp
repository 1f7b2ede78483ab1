#include "links/LinkRecordBuilder.h"

#include "app/Log.h"
#include "app/PathComponents.h"
#include "app/RegularFile.h"
#include "links/DefaultApplication.h"
#include "links/LinkMetadata.h"
#include "links/LinkPaths.h"
#include "links/LinkRecordKeys.h"
#include "links/LinkValues.h"
#include "links/LinkVolume.h"
#include "links/LinkedFileReader.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace quillon::links {

namespace {

QString firstBlankPart(const QString& text)
{
    return text.section(u' ', 0, 0);
}

} // namespace

LinkRecordBuilder::LinkRecordBuilder(Context context)
    : m_context(std::move(context)), m_documentFolder(QFileInfo(m_context.documentPath).absolutePath())
{
    if (!m_context.defaultApps)
        m_context.defaultApps = &DefaultApplications::session();
    m_context.now = (m_context.now.isValid() ? m_context.now : QDateTime::currentDateTime()).toUTC();
}

LinkRecordBuilder::FileStat LinkRecordBuilder::statPath(const QString& path)
{
    // One system call for both answers: ten thousand links are ten thousand looks.
    struct stat buffer {};
    if (::stat(app::localBytesOfPath(path).constData(), &buffer) != 0)
        return {};
#ifdef __APPLE__
    const timespec modified = buffer.st_mtimespec;
#else
    const timespec modified = buffer.st_mtim;
#endif
    return {true, static_cast<qint64>(modified.tv_sec) * 1000 + modified.tv_nsec / 1'000'000};
}

QString LinkRecordBuilder::statusFromStat(const QString& path, const FileStat& stat, qint64 linkMSecs)
{
    if (!stat.exists)
        return kLinkStatusMissing;
    if (!stat.modifiedMSecs) {
        app::logLine(QStringLiteral("-> can't get file mod date: %1").arg(path));
        return kLinkStatusUnknown;
    }
    const QString status = statusFromDates(linkMSecs, *stat.modifiedMSecs);
    if (status == kLinkStatusModified)
        app::logLine(QStringLiteral("path: %1").arg(path));
    return status;
}

QString LinkRecordBuilder::statusOfLinkAtPath(const QString& path, const QDateTime& linkDate)
{
    return statusFromStat(path, statPath(path), linkDate.toMSecsSinceEpoch());
}

QString LinkRecordBuilder::linkPath(const QString& uri, const QString& storedState, FileStat& stat) const
{
    const QString path = pathFromFileUri(uri, m_documentFolder);
    if (path.isEmpty()) {
        app::logLine(QStringLiteral("-> no path for linkURLStr: %1").arg(uri));
        return kLinkNoPath;
    }
    // A document from another computer records paths of that computer: its links are looked for
    // by name beside the document. Embedded links are never looked at on disk.
    if (storedState == kLinkStatusEmbedded)
        return path;
    stat = statPath(path);
    if (stat.exists)
        return path;
    const QString relocated = relocatedLinkPath(app::lastPathComponent(path), m_context.linkSearchFolders);
    if (relocated.isEmpty())
        return path;
    stat = statPath(relocated);
    return relocated;
}

bool LinkRecordBuilder::parseLinkNode(const LinkSource& source, QVariantMap& record, QString& path, bool& exists) const
{
    const QDateTime date =
        linkDateFromAttributes(source.importModificationTime, source.importStamp).value_or(m_context.now);
    if (!isFileUri(source.resourceURI))
        return false;
    FileStat stat;
    path = linkPath(source.resourceURI, source.storedState, stat);

    QString status;
    if (source.storedState == QLatin1String("Normal")) {
        status = statusFromStat(path, stat, date.toMSecsSinceEpoch());
    } else if (source.storedState == kLinkStatusEmbedded) {
        status = kLinkStatusEmbedded;
    } else {
        app::logLine(QStringLiteral("-> unknown StoredState!"));
    }
    exists = status == kLinkStatusOK || status == kLinkStatusModified;

    QString format = source.resourceFormat;
    format.remove(QStringLiteral("$ID/"));
    QString kind = fileKindFromString(format, path);
    const QString app = exists ? m_context.defaultApps->defaultAppForFile(path) : kLinkNotKnown;
    if (kind == kLinkKindPDF &&
        (app::pathExtension(path) == QLatin1String("ai") || app.contains(QLatin1String("Illustr"))))
        kind = kLinkKindPDFFromAI;
    const std::uint32_t sizeBytes = sizeBytesFromString(source.resourceSize);

    record.insert(kLinkIdKey, idStringFromHexString(source.self));
    record.insert(kLinkNameKey, app::lastPathComponent(path));
    record.insert(kLinkPathKey, path);
    record.insert(kLinkVolumeKey, volumeForLink(path, status));
    record.insert(kLinkKindKey, kind);
    record.insert(kLinkDateKey, date);
    record.insert(kLinkStatusKey, status);
    record.insert(kLinkSizeBytesKey, static_cast<uint>(sizeBytes));
    record.insert(kLinkSizeKey, fileSizeFormat(sizeBytes));
    record.insert(kLinkAppKey, app);
    record.insert(kLinkDocPathKey, m_context.documentPath);
    return true;
}

void LinkRecordBuilder::parseParentNode(const LinkSource& source, QVariantMap& record, const QString& path,
                                        bool exists) const
{
    const ScaleValues scale = scaleValuesFromTransformStr(source.itemTransform);
    record.insert(kLinkScaleKey, scale.scale);
    record.insert(kLinkHorScaleKey, scale.horScale);
    record.insert(kLinkVertScaleKey, scale.vertScale);

    const QString effective = firstBlankPart(source.effectivePpi);
    const QString actual = firstBlankPart(source.actualPpi);
    LinkColor color = colorFromSpace(source.space);
    const QString kind = record.value(kLinkKindKey).toString();
    if (!color.remapped && kind.contains(QLatin1String("ai")) && exists)
        color.text = m_context.reader->colorModeOfAIFile(path);
    const bool prints = !source.frameNonprinting && !source.graphicNonprinting;

    record.insert(kLinkEffectiveResKey, source.effectivePpi.isEmpty() ? kLinkNotKnown : effective);
    record.insert(kLinkActualResKey, source.actualPpi.isEmpty() ? kLinkNotKnown : actual);
    record.insert(kLinkColorKey, color.text.isEmpty() ? kLinkColorUnknown : color.text);
    record.insert(kLinkPageKey, source.page.name.isEmpty() ? kLinkNoPage : source.page.name);
    if (source.page.sortOrder)
        record.insert(kLinkSortOrderOfPageInDocKey, *source.page.sortOrder);
    record.insert(kLinkPrintKey, prints ? kLinkPrints : kLinkNonPrinting);
    record.insert(kLinkParentIdKey, idStringFromHexString(source.graphicSelf));
}

void LinkRecordBuilder::readFileFacts(const LinkSource& source, QVariantMap& record, const QString& path,
                                      bool exists) const
{
    const LinkedFileReader& reader = *m_context.reader;
    LinkMetadata metadata(record, path, exists, reader, m_context.alerts, m_documentFolder);
    QString kind = record.value(kLinkKindKey).toString();
    if (kind != kLinkKindPDF) {
        if (source.hasMetadataPacket)
            metadata.iccProfileAndMoreFromMetadataStr(source.metadataPacket, kind == kLinkKindTIFF,
                                                      kind == kLinkKindEPS, kind.contains(QLatin1String("ai")),
                                                      kind.contains(QLatin1String("InDesign")));
        kind = record.value(kLinkKindKey).toString();
        if (record.value(kLinkProfileKey).toString().isEmpty() && exists) {
            if (kind == kLinkKindPhotoshop) {
                if (const auto profile = reader.psdProfileName(path))
                    record.insert(kLinkProfileKey, *profile);
            } else if (kind != kLinkKindEPS && !kind.contains(QLatin1String("ai"))) {
                record.insert(kLinkProfileKey, reader.imageProfileName(path, app::pathExtension(path)));
            }
        }
    }
    if (!exists)
        return;
    const QString color = record.value(kLinkColorKey).toString();
    if (kind == kLinkKindPhotoshop && color.endsWith(QLatin1String("tone"))) {
        const QString inks = reader.psdDuotoneColors(path);
        if (!inks.isEmpty()) {
            record.insert(kLinkEpsColListKey, inks);
            record.insert(kLinkEpsColsKey, QString::number(inks.split(u'\r').size()));
        }
        return;
    }
    if (kind.contains(QLatin1String("EPS")))
        metadata.processEPS();
}

QVariantMap LinkRecordBuilder::build(const LinkSource& source) const
{
    QVariantMap record;
    if (source.isAnchored)
        record.insert(kLinkIsAnchoredKey, true);
    QString path;
    bool exists = false;
    if (!parseLinkNode(source, record, path, exists))
        return {};
    parseParentNode(source, record, path, exists);
    readFileFacts(source, record, path, exists);
    return record;
}

} // namespace quillon::links
