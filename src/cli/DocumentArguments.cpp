#include "cli/DocumentArguments.h"

#include "app/ParallelFor.h"
#include "app/RegularFile.h"
#include "cli/Commands.h"
#include "cli/TerminalText.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <cstdio>
#include <iostream>

namespace quillon::cli {

namespace {

// A list of paths is a few kilobytes; this bounds what standard input may hand over.
constexpr qint64 kMaxPathListBytes = app::kMaxPropertyListBytes;

QDir::Filters visibleEntries()
{
    return QDir::NoDotAndDotDot; // without QDir::Hidden, names starting with "." stay out
}

QFileInfoList sortedEntries(const QString& folder, QDir::Filters kinds)
{
    return QDir(folder).entryInfoList(kinds | visibleEntries(), QDir::Name | QDir::IgnoreCase);
}

// Depth first, each folder's entries in name order; a folder reached twice (a symbolic link
// pointing back up) is listed once, so a loop ends.
void collectDocuments(const QString& folder, bool recursive, QSet<QString>& visited, QStringList& paths)
{
    if (visited.contains(QFileInfo(folder).canonicalFilePath()))
        return;
    visited.insert(QFileInfo(folder).canonicalFilePath());
    for (const QFileInfo& entry : sortedEntries(folder, QDir::Files | QDir::Dirs)) {
        if (entry.isDir()) {
            if (recursive)
                collectDocuments(entry.filePath(), recursive, visited, paths);
        } else if (entry.suffix().compare(QLatin1String("idml"), Qt::CaseInsensitive) == 0) {
            paths << entry.filePath();
        }
    }
}

app::Result<QByteArray> readStandardInput()
{
    QByteArray bytes;
    char buffer[65536];
    while (const size_t read = std::fread(buffer, 1, sizeof buffer, stdin)) {
        bytes.append(buffer, static_cast<qsizetype>(read));
        if (bytes.size() > kMaxPathListBytes)
            return app::makeError(
                QStringLiteral("the list on standard input is larger than %1 bytes").arg(kMaxPathListBytes));
    }
    if (std::ferror(stdin))
        return app::makeError(QStringLiteral("standard input could not be read"));
    return bytes;
}

// One path a line; blank lines are skipped and a carriage return before the line feed dropped.
QStringList pathsOfList(const QByteArray& bytes)
{
    QStringList paths;
    for (QByteArray line : bytes.split('\n')) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (!line.trimmed().isEmpty())
            paths << app::pathFromLocalBytes(line);
    }
    return paths;
}

int report(const char* command, const QString& message, int status)
{
    std::cerr << "quillon " << command << ": " << printableText(message) << std::endl;
    return status;
}

} // namespace

void addDocumentSourceOptions(CLI::App& command, DocumentSources& sources)
{
    command.add_option("documents", sources.arguments,
                       "IDML files (.idml) exported from InDesign, or folders of them (their .idml files by name)");
    command.add_flag("--recursive,-r", sources.recursive, "Also take the .idml files in the folders' subfolders");
    command
        .add_option("--files-from", sources.filesFrom,
                    "Also take the documents listed in this file, one path a line ('-' reads standard input)")
        ->check(nonEmpty("a file, or '-' for standard input"));
}

ExpandedDocuments expandDocumentSources(const DocumentSources& sources, const char* command)
{
    QStringList given;
    for (const std::string& argument : sources.arguments)
        given << app::pathFromLocalBytes(argument);
    const QString listName =
        sources.filesFrom == "-" ? QStringLiteral("standard input") : app::pathFromLocalBytes(sources.filesFrom);
    if (!sources.filesFrom.empty()) {
        const app::Result<QByteArray> list =
            sources.filesFrom == "-" ? readStandardInput() : app::readRegularFile(listName, kMaxPathListBytes);
        if (!list)
            return {{}, report(command, QStringLiteral("--files-from: ") + list.error().text(), kExitFailure)};
        given << pathsOfList(*list);
    }

    ExpandedDocuments expanded;
    QString emptyFolder;
    for (const QString& path : given) {
        if (!QFileInfo(path).isDir()) {
            expanded.paths << path;
            continue;
        }
        QSet<QString> visited;
        const qsizetype before = expanded.paths.size();
        collectDocuments(path, sources.recursive, visited, expanded.paths);
        if (expanded.paths.size() == before && emptyFolder.isEmpty())
            emptyFolder = path;
    }
    if (!expanded.paths.isEmpty())
        return expanded;
    QString message = QStringLiteral("no documents to process: give IDML files, folders or --files-from");
    if (!emptyFolder.isEmpty())
        message = QStringLiteral("%1: no .idml files in the folder%2")
                      .arg(app::displayPath(emptyFolder),
                           sources.recursive ? QString() : QStringLiteral(" (--recursive looks in its subfolders)"));
    else if (!sources.filesFrom.empty())
        message = QStringLiteral("%1: the list names no documents").arg(app::displayPath(listName));
    expanded.failureStatus =
        report(command, message + QStringLiteral("; see 'quillon %1 --help'").arg(QLatin1String(command)), kExitUsage);
    return expanded;
}

LinkSearchFolders jobSubfolders(const QString& documentPath, int depth, int maxFolders)
{
    LinkSearchFolders found;
    const QString documentFolder = QFileInfo(documentPath).absolutePath();
    QSet<QString> visited{QFileInfo(documentFolder).canonicalFilePath()};
    QStringList level{documentFolder};
    for (int down = 1; down <= depth && !level.isEmpty(); ++down) {
        QStringList next;
        for (const QString& folder : level) {
            for (const QFileInfo& entry : sortedEntries(folder, QDir::Dirs)) {
                const QString canonical = entry.canonicalFilePath();
                if (visited.contains(canonical))
                    continue;
                visited.insert(canonical);
                if (found.folders.size() >= maxFolders) {
                    found.capped = true;
                    return found;
                }
                if (!(down == 1 && entry.fileName() == QLatin1String("Links")))
                    found.folders << entry.absoluteFilePath();
                next << entry.absoluteFilePath();
            }
        }
        level = next;
    }
    return found;
}

QString linkSearchCappedWarning(const QString& documentPath, int maxFolders)
{
    return QStringLiteral("links were looked for in the first %1 folders below %2 only; a smaller --search-links "
                          "depth, or --links-dir, names fewer")
        .arg(maxFolders)
        .arg(app::displayPath(QFileInfo(documentPath).absolutePath()));
}

void addLinkSearchOption(CLI::App& command, int& depth)
{
    command
        .add_option("--search-links", depth,
                    "How many levels of subfolders of the document's folder are searched by file name for links "
                    "missing where the document recorded them, 0 to 8 (default 0: the document's folder and its "
                    "Links folder)")
        ->check(CLI::Range(0, kMaxLinkSearchDepth));
}

std::optional<QStringList> linkFoldersFromArguments(const std::vector<std::string>& folders, const char* command)
{
    QStringList absolute;
    for (const std::string& dir : folders) {
        const QString path = app::pathFromLocalBytes(dir);
        const QFileInfo folder(path);
        if (!folder.isDir()) {
            report(command, path + QStringLiteral(": --links-dir needs a folder, and there is none here"),
                   kExitFailure);
            return std::nullopt;
        }
        absolute << folder.absoluteFilePath();
    }
    return absolute;
}

int documentJobs(int jobsOption)
{
    const int cores = app::coreCount();
    if (jobsOption > 0)
        app::setParallelThreadBudget(jobsOption * cores - 1);
    return jobsOption > 0 ? jobsOption : cores;
}

} // namespace quillon::cli
