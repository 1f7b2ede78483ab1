#include "cli/Commands.h"

#include "app/Alerts.h"
#include "app/AppPaths.h"
#include "preflight/DocInfo.h"
#include "preflight/IdmlCreator.h"
#include "preflight/InDesignHost.h"
#include "preflight/OfflineIdmlHost.h"
#include "preflight/PageSizes.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace quillon::cli {

namespace {

using preflight::QNDocInfo;

struct DocumentFacts {
    QStringList record;
    QNDocInfo info;
    bool repaired = false;
};

// Reads one document the way a preflight does: the record from the host, the IDML exported
// (copied) into the work folder and unpacked there, then the document information. The work
// files are removed afterwards.
app::Result<DocumentFacts> readDocument(const QString& path)
{
    preflight::OfflineIdmlHost host;
    if (app::Status opened = host.openDocument(path, true); !opened)
        return opened.error();
    app::Result<QStringList> record = host.pathsAndNameOfDocument(preflight::DocumentReference::active());
    if (!record)
        return record.error();

    app::ScriptedAlertSink alerts; // failures are reported from lastError()
    preflight::QNIDMLCreator creator(host, alerts);
    const QString docPath = record->value(preflight::kRecordPosixPath);
    const QString folder = creator.processInDesignFileAtPath(docPath);
    // The run's work folder is private: its copies of this document can go at once.
    const QString idmlPath = preflight::QNIDMLCreator::idmlPathForDocument(docPath, app::workFolder());
    QFile::remove(idmlPath);
    QFile::remove(preflight::QNIDMLCreator::repairedArchivePathForIDMLPath(idmlPath));
    if (folder.isEmpty())
        return creator.lastError();

    DocumentFacts facts{*record, QNDocInfo::docInfoWithRecord(*record), creator.lastUnpackWasRepaired()};
    facts.info.parseDocInfoInIDMLFolderAtPath(folder);
    facts.info.setDocPageSizesDict(preflight::pageSizesInIdmlFolder(folder));
    QDir(folder).removeRecursively();
    return facts;
}

QString orDash(const QString& text)
{
    return text.isEmpty() ? QStringLiteral("-") : text;
}

void printText(const DocumentFacts& facts)
{
    const QNDocInfo& info = facts.info;
    const QList<std::pair<const char*, QString>> lines{
        {"Path", info.docPath()},
        {"Pages", info.numberOfPagesStr()},
        {"Links", facts.record.value(preflight::kRecordLinkCount)},
        {"Version", orDash(info.InDesignVersion())},
        {"Size", info.fileSizeStr()},
        {"Created", orDash(info.creationDateStr())},
        {"Modified", orDash(info.modDateStr())},
        {"Units",
         QStringLiteral("%1 / %2").arg(orDash(info.horizMeasurementUnits()), orDash(info.vertMeasurementUnits()))},
        {"Page size", info.pageSizeStr()},
        {"Bleed", info.bleedStr()},
        {"Slug", info.slugStr()},
    };
    std::cout << info.docName().toStdString() << '\n';
    for (const auto& [label, value] : lines)
        std::cout << "  " << (QString::fromLatin1(label) + u':').leftJustified(11).toStdString() << value.toStdString()
                  << '\n';
    if (facts.repaired)
        std::cout << "  (the archive was damaged and was read from a repaired copy)\n";
}

QJsonValue dateValue(const QDateTime& date)
{
    return date.isValid() ? QJsonValue(date.toUTC().toString(Qt::ISODate)) : QJsonValue();
}

QJsonObject jsonFacts(const DocumentFacts& facts)
{
    const QNDocInfo& info = facts.info;
    QJsonObject object = QJsonObject::fromVariantMap(info.toVariantMap());
    object.insert(QStringLiteral("hfsPath"), facts.record.value(preflight::kRecordHfsPath));
    object.insert(QStringLiteral("numberOfLinksStr"), facts.record.value(preflight::kRecordLinkCount));
    object.insert(QStringLiteral("fileSizeBytes"), info.fileSize());
    object.insert(preflight::kDocInfoCreationDateKey, dateValue(info.creationDate()));
    object.insert(preflight::kDocInfoModDateKey, dateValue(info.modDate()));
    object.insert(QStringLiteral("pageSizeStr"), info.pageSizeStr());
    object.insert(QStringLiteral("repaired"), facts.repaired);
    return object;
}

int runInfo(const std::vector<std::string>& documents, const std::string& format)
{
    // A private work folder, so parallel runs never share (or remove) each other's files.
    QTemporaryDir runFolder(QDir(QDir::tempPath()).filePath(QStringLiteral("quillon-info-XXXXXX")));
    if (!runFolder.isValid()) {
        std::cerr << "quillon info: no temporary folder could be made in " << QDir::tempPath().toStdString() << '\n';
        return kExitFailure;
    }
    app::setTemporaryFolderOverride(runFolder.path());

    const bool json = format == "json";
    QJsonArray array;
    int status = kExitOk;
    bool first = true;
    for (const std::string& document : documents) {
        const QString path = QString::fromLocal8Bit(document.c_str());
        app::Result<DocumentFacts> facts = readDocument(path);
        if (!facts) {
            std::cerr << "quillon info: " << facts.error().text().toStdString() << '\n';
            status = kExitFailure;
            if (json)
                array.append(
                    QJsonObject{{QStringLiteral("file"), path}, {QStringLiteral("error"), facts.error().text()}});
            continue;
        }
        if (json) {
            QJsonObject object = jsonFacts(*facts);
            object.insert(QStringLiteral("file"), path);
            array.append(object);
        } else {
            if (!first)
                std::cout << '\n';
            printText(*facts);
        }
        first = false;
    }
    if (json)
        std::cout << QJsonDocument(array).toJson(QJsonDocument::Indented).toStdString();
    app::setTemporaryFolderOverride(QString());
    return status;
}

} // namespace

void addInfoCommand(CLI::App& program, std::vector<Command>& commands)
{
    struct Options {
        std::vector<std::string> documents;
        std::string format = "text";
    };
    auto options = std::make_shared<Options>();
    CLI::App* info = program.add_subcommand(
        "info", "Print the document record and document information of IDML files (pages, links, version, size, "
                "dates, units, page size, bleed, slug).");
    info->add_option("documents", options->documents, "IDML files (.idml) exported from InDesign")->required();
    info->add_option("--format", options->format, "text (the default) or json")->check(CLI::IsMember({"text", "json"}));
    commands.push_back({info, [options] { return runInfo(options->documents, options->format); }});
}

} // namespace quillon::cli
