// Writes a large generated IDML for trying the program by hand:
//   GenerateIdml OUT.idml [spreads] [links per spread] [linked files folder] [bytes per linked file]
// or the documents the preflight figures are taken on (bench/preflight-figures.sh):
//   GenerateIdml --preflight-set FOLDER
#include "IdmlGenerator.h"

#include <QCoreApplication>
#include <QStringList>

#include <iostream>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 2 || (args.at(1) == QLatin1String("--preflight-set") && args.size() != 3)) {
        std::cerr << "usage: GenerateIdml OUT.idml [spreads] [links per spread] [linked files folder] [bytes per "
                     "linked file]\n"
                     "       GenerateIdml --preflight-set FOLDER\n";
        return 2;
    }
    if (args.at(1) == QLatin1String("--preflight-set")) {
        const quillon::bench::PreflightDocuments written = quillon::bench::writePreflightDocuments(args.at(2));
        if (written.small.isEmpty()) {
            std::cerr << "GenerateIdml: could not write the documents into " << args.at(2).toStdString() << '\n';
            return 2;
        }
        std::cout << written.largeFacts.entries << " entries and " << written.largeFacts.linkedFiles
                  << " linked files in the large document, " << written.small.size() << " small documents\n";
        return 0;
    }
    quillon::bench::IdmlShape shape;
    if (args.size() > 2)
        shape.spreads = args.at(2).toInt();
    if (args.size() > 3)
        shape.linksPerSpread = args.at(3).toInt();
    if (args.size() > 4)
        shape.linkedFilesFolder = args.at(4);
    if (args.size() > 5)
        shape.linkedFileBytes = args.at(5).toLongLong();
    const quillon::bench::GeneratedIdml facts = quillon::bench::writeGeneratedIdml(args.at(1), shape);
    if (facts.entries == 0) {
        std::cerr << "GenerateIdml: could not write " << args.at(1).toStdString() << '\n';
        return 2;
    }
    std::cout << facts.entries << " entries, " << facts.xmlBytes << " bytes of XML, " << facts.archiveBytes
              << " bytes archive\n";
    return 0;
}
