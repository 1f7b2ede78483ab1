// Writes a large generated IDML for trying the program by hand:
//   GenerateIdml OUT.idml [spreads] [links per spread]
#include "IdmlGenerator.h"

#include <QCoreApplication>
#include <QStringList>

#include <iostream>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 2) {
        std::cerr << "usage: GenerateIdml OUT.idml [spreads] [links per spread]\n";
        return 2;
    }
    quillon::bench::IdmlShape shape;
    if (args.size() > 2)
        shape.spreads = args.at(2).toInt();
    if (args.size() > 3)
        shape.linksPerSpread = args.at(3).toInt();
    const quillon::bench::GeneratedIdml facts = quillon::bench::writeGeneratedIdml(args.at(1), shape);
    if (facts.entries == 0) {
        std::cerr << "GenerateIdml: could not write " << args.at(1).toStdString() << '\n';
        return 2;
    }
    std::cout << facts.entries << " entries, " << facts.xmlBytes << " bytes of XML, " << facts.archiveBytes
              << " bytes archive\n";
    return 0;
}
