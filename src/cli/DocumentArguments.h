#pragma once

#include <CLI/CLI.hpp>

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

namespace quillon::cli {

// Where a command's documents come from: files and folders on the command line, and a list of
// paths read from a file or from standard input.
struct DocumentSources {
    std::vector<std::string> arguments;
    std::string filesFrom; // "-" for standard input
    bool recursive = false;
};

// Adds the documents argument, --recursive and --files-from to `command`.
void addDocumentSourceOptions(CLI::App& command, DocumentSources& sources);

// The documents in the order given; a folder stands for its ".idml" files sorted by name
// (case-insensitively, hidden ones skipped), and for those of its subfolders with `recursive`.
// Nothing to process, or a list that cannot be read, is printed as "quillon <command>: ..." and
// the exit status is set (64 for an empty expansion, 2 for an unreadable list).
struct ExpandedDocuments {
    QStringList paths;
    int failureStatus = 0; // not 0: stop with this status
};
ExpandedDocuments expandDocumentSources(const DocumentSources& sources, const char* command);

// Subfolders of the document's folder, `depth` levels down, breadth first and sorted by name,
// for finding links by name; hidden folders and the "Links" folder beside the document (always
// searched) are left out. Stops at `maxFolders` with `capped` set.
struct LinkSearchFolders {
    QStringList folders;
    bool capped = false;
};
inline constexpr int kMaxLinkSearchDepth = 8;
inline constexpr int kMaxLinkSearchFolders = 2000;
LinkSearchFolders jobSubfolders(const QString& documentPath, int depth, int maxFolders = kMaxLinkSearchFolders);

// The warning a capped search gives.
QString linkSearchCappedWarning(const QString& documentPath, int maxFolders = kMaxLinkSearchFolders);

// Adds --search-links to `command`.
void addLinkSearchOption(CLI::App& command, int& depth);

// The --links-dir folders as absolute paths; none when one of them is not a folder, which is
// printed as "quillon <command>: ..." naming it.
std::optional<QStringList> linkFoldersFromArguments(const std::vector<std::string>& folders, const char* command);

// The documents run at once for --jobs N (0: not given). N never sets more than N times the cores
// to work: the documents and the fan-outs inside each of them draw their threads from one budget.
// Without it, a document a core, sharing the budget the program starts with.
int documentJobs(int jobsOption);

} // namespace quillon::cli
