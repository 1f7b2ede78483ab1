// quillon verify: checks a package folder against its manifest.
#include "cli/Commands.h"

#include "app/RegularFile.h"
#include "cli/JsonOutput.h"
#include "cli/TerminalText.h"
#include "package/PackageManifest.h"

#include <QFileInfo>
#include <QJsonArray>

#include <iostream>
#include <memory>
#include <string>

namespace quillon::cli {

namespace {

struct VerifyOptions {
    std::string folder;
    std::string format = "text";
};

QJsonObject checkJson(const QString& folder, const package::PackageCheck& check)
{
    QJsonArray changed;
    for (const package::ChangedFile& file : check.changed)
        changed.append(QJsonObject{{QStringLiteral("path"), file.path}, {QStringLiteral("reason"), file.reason}});
    return QJsonObject{{QStringLiteral("folder"), folder},
                       {QStringLiteral("intact"), check.intact()},
                       {QStringLiteral("filesListed"), check.filesListed},
                       {QStringLiteral("missing"), QJsonArray::fromStringList(check.missing)},
                       {QStringLiteral("changed"), changed},
                       {QStringLiteral("unexpected"), QJsonArray::fromStringList(check.unexpected)}};
}

int runVerify(const VerifyOptions& options)
{
    const QString folder = QFileInfo(app::pathFromLocalBytes(options.folder)).absoluteFilePath();
    const app::Result<package::PackageCheck> check = package::verifyPackage(folder);
    if (!check) {
        std::cerr << "quillon verify: " << printableText(check.error().text()) << std::endl;
        return kExitFailure;
    }
    if (options.format == "json") {
        QJsonObject envelope = jsonEnvelope(QStringLiteral("verify"));
        envelope.insert(QStringLiteral("verify"), checkJson(folder, *check));
        const QByteArray text = jsonText(envelope);
        std::cout.write(text.constData(), text.size());
    } else {
        for (const QString& path : check->missing)
            std::cout << "missing: " << printableText(path) << '\n';
        for (const package::ChangedFile& file : check->changed)
            std::cout << "changed: " << printableText(file.path) << " (" << printableText(file.reason) << ")\n";
        for (const QString& path : check->unexpected)
            std::cout << "unexpected: " << printableText(path) << '\n';
        std::cout << (check->intact() ? "Intact: " : "Not intact: ") << check->filesListed << " files listed, "
                  << check->missing.size() << " missing, " << check->changed.size() << " changed, "
                  << check->unexpected.size() << " unexpected\n";
    }
    std::cout.flush();
    return check->intact() ? kExitOk : kExitAlerts;
}

} // namespace

void addVerifyCommand(CLI::App& program, std::vector<Command>& commands)
{
    auto options = std::make_shared<VerifyOptions>();
    CLI::App* verify = program.add_subcommand(
        "verify", "Check a package folder against its package-manifest.json: missing, changed (size or SHA-256) "
                  "and unexpected files, one line each.");
    verify->add_option("folder", options->folder, "Package folder made by quillon package")
        ->required()
        ->check(nonEmpty("a folder name"));
    verify->add_option("--format", options->format, "Output: text (default) or json")
        ->check(CLI::IsMember({"text", "json"}));
    commands.push_back({verify, [options] { return runVerify(*options); }});
}

} // namespace quillon::cli
