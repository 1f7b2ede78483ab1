#include "idml/IdmlPackage.h"

#include "app/FilePaths.h"
#include "app/Log.h"
#include "app/RegularFile.h"
#include "app/ToolRunner.h"
#include "idml/IdmlXml.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <pugixml.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace quillon::idml {

using app::makeError;
using app::Result;
using app::Status;

namespace {

// The last lines of a tool's output, enough to say what went wrong.
QString tail(const QByteArray& output)
{
    QStringList lines = QString::fromUtf8(output).split(u'\n', Qt::SkipEmptyParts);
    if (lines.size() > 6)
        lines = lines.mid(lines.size() - 6);
    return lines.join(u'\n').trimmed();
}

bool isSameFolder(const QString& a, const QString& b)
{
    const QString canonical = QFileInfo(a).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(b).canonicalFilePath();
}

} // namespace

QString defaultZipTool()
{
    // Looked up once: documents are opened by the hundred, and the search looks in every folder
    // of PATH.
    static const QString tool = [] {
        const QString found = QStandardPaths::findExecutable(QStringLiteral("zip"));
        return found.isEmpty() ? QStringLiteral("/usr/bin/zip") : found;
    }();
    return tool;
}

Status checkStartsLikeZip(const QString& path, const QString& reportedName)
{
    const int fd = ::open(app::localBytesOfPath(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        if (errno == EACCES || errno == EPERM)
            return makeError(QStringLiteral("the file cannot be read: permission denied"), reportedName);
        return makeError(
            QStringLiteral("the file cannot be read: %1").arg(QString::fromLocal8Bit(std::strerror(errno))),
            reportedName);
    }
    char start[4] = {};
    ssize_t got = 0;
    do
        got = ::read(fd, start, sizeof start);
    while (got < 0 && errno == EINTR);
    ::close(fd);
    const QByteArray head(start, got > 0 ? static_cast<qsizetype>(got) : 0);
    for (const char* signature : {"PK\x03\x04", "PK\x05\x06", "PK\x07\x08", "PK00"})
        if (head == QByteArray(signature, 4))
            return {};
    return makeError(QStringLiteral("is not an IDML file: it is not a zip archive (an IDML file is one), so there is "
                                    "nothing to repair"),
                     reportedName);
}

Result<QString> repairArchiveWithZip(const QString& path, const QString& repairedPath, const QString& zipTool,
                                     const app::CancelFlag* cancel)
{
    QFile::remove(repairedPath); // zip would add to a stale copy instead of writing a new one
    const QString workFolder = QFileInfo(repairedPath).absolutePath();
    auto fail = [&](const QString& why) {
        QFile::remove(repairedPath);
        return makeError(QStringLiteral("cannot be read as a zip archive, and repairing it failed: %1").arg(why), path);
    };
    // The tool's temporary files go into a folder of their own, which goes with whatever a
    // stopped tool left in it.
    QTemporaryDir scratch(workFolder + QStringLiteral("/repair-XXXXXX"));
    if (!scratch.isValid())
        return fail(QStringLiteral("no folder for the tool's temporary files can be made in %1: %2")
                        .arg(workFolder, scratch.errorString()));
    const qint64 size = QFileInfo(path).size();

    app::BoundedToolRequest request;
    request.program = zipTool;
    request.arguments = {QStringLiteral("-b"),    scratch.path(),
                         QStringLiteral("-FF"),   QFileInfo(path).absoluteFilePath(),
                         QStringLiteral("--out"), QFileInfo(repairedPath).absoluteFilePath()};
    request.workingFolder = scratch.path();
    request.standardInput = QByteArray("y\n") + QByteArray("q\n").repeated(16);
    request.timeoutMs = 30'000 + static_cast<int>(std::min<qint64>(size / 1'000'000 * 1'000, 30 * 60'000));
    request.maxOutputBytes = 8 << 20;
    request.watchedFile = repairedPath;
    request.maxWatchedFileBytes = 2 * size + (1 << 20);
    request.cancel = cancel;

    const app::BoundedToolResult run = app::runBoundedTool(request);
    app::logLine(QStringLiteral("zip -FF output: %1").arg(QString::fromUtf8(run.output)));
    if (!run.started || !run.stopReason.isEmpty())
        return fail(run.stopReason);
    if (run.output.contains("Permission denied"))
        return fail(QStringLiteral("permission denied: %1").arg(tail(run.output)));
    if (!run.exitedNormally || run.exitCode != 0 || run.output.contains("zip error"))
        return fail(QStringLiteral("%1 ended with status %2: %3").arg(zipTool).arg(run.exitCode).arg(tail(run.output)));
    if (!QFileInfo::exists(repairedPath))
        return fail(QStringLiteral("%1 wrote no repaired copy").arg(zipTool));
    return QString::fromUtf8(run.output);
}

Status checkIdmlStructure(const IdmlArchive& archive, const UnpackLimits& limits)
{
    const QString& documentPath = archive.name();
    if (archive.entries().empty())
        return makeError(QStringLiteral("is not an IDML file: nothing in it could be read as part of a zip archive"),
                         documentPath);
    if (Status safe = archive.checkEntriesAreSafe(limits); !safe)
        return safe;
    if (!archive.contains(QStringLiteral("designmap.xml")))
        return makeError(QStringLiteral("is not a whole IDML file: it holds no designmap.xml (the file may be "
                                        "truncated, or it is some other zip archive)"),
                         documentPath);
    Result<QByteArray> designmap = archive.readEntry(QStringLiteral("designmap.xml"));
    if (!designmap)
        return designmap.error();
    pugi::xml_document document;
    if (Status loaded = loadIdmlXml(document, *designmap, documentPath, QStringLiteral("designmap.xml")); !loaded)
        return loaded;
    for (const pugi::xml_node part : document.document_element().children()) {
        if (std::strncmp(part.name(), "idPkg:", 6) != 0)
            continue;
        const QString source = QString::fromUtf8(part.attribute("src").value());
        if (!source.isEmpty() && !archive.contains(source))
            return makeError(QStringLiteral("is damaged or truncated: designmap.xml lists %1, which the archive does "
                                            "not hold")
                                 .arg(source),
                             documentPath);
    }
    return {};
}

Result<IdmlArchive> openArchiveRepairingIt(const QString& path, const ArchiveRepair& repair, bool* repaired)
{
    if (repaired)
        *repaired = false;
    const QString name = repair.reportedName.isEmpty() ? path : repair.reportedName;
    Result<IdmlArchive> archive = IdmlArchive::open(path, name);
    if (archive)
        return archive;
    // A missing, empty or unreadable file, or one that is no zip archive at all, fails now:
    // however large, there is nothing to repair.
    if (!QFileInfo(path).isFile() || QFileInfo(path).size() == 0)
        return archive.error();
    if (Status zipLike = checkStartsLikeZip(path, name); !zipLike)
        return zipLike.error();
    app::logLine(QStringLiteral("-> can't open zip, repairing: %1").arg(archive.error().text()));

    // Only a copy in the work folder is handed to the tool.
    const QString workFolder = QFileInfo(repair.repairedPath).absolutePath();
    QString source = path;
    if (!isSameFolder(QFileInfo(path).absolutePath(), workFolder)) {
        source = QDir(workFolder).filePath(QFileInfo(path).fileName());
        if (Status copied = app::copyPathReplacingIt(path, source); !copied)
            return makeError(QStringLiteral("cannot be read as a zip archive, and no copy to repair could be made: %1")
                                 .arg(copied.error().text()),
                             name);
    }
    const Result<QString> fixed = repairArchiveWithZip(source, repair.repairedPath, repair.zipTool, repair.cancel);
    if (source != path)
        QFile::remove(source);
    if (!fixed)
        return makeError(fixed.error().message, name);
    app::logLine(QStringLiteral("zip fixed"));
    archive = IdmlArchive::open(repair.repairedPath, name);
    if (!archive)
        return makeError(QStringLiteral("cannot be read as a zip archive, not even after repairing it"), name);
    if (repaired)
        *repaired = true;
    return archive;
}

Result<IdmlArchive> openIdmlPackage(const QString& path, const ArchiveRepair& repair, bool* repaired)
{
    Result<IdmlArchive> archive = openArchiveRepairingIt(path, repair, repaired);
    if (!archive)
        return archive;
    if (Status whole = checkIdmlStructure(*archive); !whole)
        return whole.error();
    return archive;
}

Result<IdmlArchive> openIdmlPackage(const QString& path, const QString& repairedPath, bool* repaired,
                                    const QString& zipTool)
{
    ArchiveRepair repair;
    repair.repairedPath = repairedPath;
    repair.zipTool = zipTool;
    return openIdmlPackage(path, repair, repaired);
}

} // namespace quillon::idml
