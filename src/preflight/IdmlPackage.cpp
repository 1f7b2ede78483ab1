#include "preflight/IdmlPackage.h"

#include "app/Log.h"
#include "app/ToolRunner.h"
#include "preflight/IdmlXml.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <pugixml.hpp>

#include <cstring>

namespace quillon::preflight {

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

} // namespace

QString defaultZipTool()
{
    const QString found = QStandardPaths::findExecutable(QStringLiteral("zip"));
    return found.isEmpty() ? QStringLiteral("/usr/bin/zip") : found;
}

Result<QString> repairArchiveWithZip(const QString& path, const QString& repairedPath, const QString& zipTool)
{
    QFile::remove(repairedPath); // zip would add to a stale copy instead of writing a new one
    const qint64 size = QFileInfo(path).size();

    app::BoundedToolRequest request;
    request.program = zipTool;
    request.arguments = {QStringLiteral("-FF"), path, QStringLiteral("--out"), repairedPath};
    request.standardInput = QByteArray("y\n") + QByteArray("q\n").repeated(16);
    request.timeoutMs = 30'000 + static_cast<int>(std::min<qint64>(size / 1'000'000 * 1'000, 30 * 60'000));
    request.maxOutputBytes = 8 << 20;
    request.watchedFile = repairedPath;
    request.maxWatchedFileBytes = 2 * size + (1 << 20);

    const app::BoundedToolResult run = app::runBoundedTool(request);
    app::logLine(QStringLiteral("zip -FF output: %1").arg(QString::fromUtf8(run.output)));
    auto fail = [&](const QString& why) {
        QFile::remove(repairedPath);
        return makeError(QStringLiteral("cannot be read as a zip archive, and repairing it failed: %1").arg(why), path);
    };
    if (!run.started)
        return fail(run.stopReason);
    if (!run.stopReason.isEmpty())
        return fail(run.stopReason);
    if (!run.exitedNormally || run.exitCode != 0 || run.output.contains("zip error"))
        return fail(QStringLiteral("%1 ended with status %2: %3").arg(zipTool).arg(run.exitCode).arg(tail(run.output)));
    if (!QFileInfo::exists(repairedPath))
        return fail(QStringLiteral("%1 wrote no repaired copy").arg(zipTool));
    return QString::fromUtf8(run.output);
}

Status checkIdmlStructure(const IdmlArchive& archive)
{
    const QString& documentPath = archive.name();
    if (archive.entries().empty())
        return makeError(QStringLiteral("is not an IDML file: nothing in it could be read as part of a zip archive"),
                         documentPath);
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

Result<IdmlArchive> openIdmlPackage(const QString& path, const QString& repairedPath, bool* repaired,
                                    const QString& zipTool)
{
    if (repaired)
        *repaired = false;
    Result<IdmlArchive> archive = IdmlArchive::open(path);
    if (!archive) {
        if (!QFileInfo(path).isFile() || QFileInfo(path).size() == 0)
            return archive.error();
        app::logLine(QStringLiteral("-> can't open zip, repairing: %1").arg(archive.error().text()));
        Result<QString> repair = repairArchiveWithZip(path, repairedPath, zipTool);
        if (!repair)
            return repair.error();
        archive = IdmlArchive::open(repairedPath, path);
        if (!archive)
            return makeError(QStringLiteral("cannot be read as a zip archive, not even after repairing it"), path);
        if (repaired)
            *repaired = true;
    }
    if (Status whole = checkIdmlStructure(*archive); !whole)
        return whole.error();
    return archive;
}

} // namespace quillon::preflight
