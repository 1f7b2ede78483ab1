#include "IdmlFragments.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>

#include <set>

namespace quillon::test {

namespace {

std::string number(double value)
{
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text;
}

std::string frameGeometry(double x)
{
    return "<Properties><PathGeometry><GeometryPathType PathOpen=\"false\"><PathPointArray>"
           "<PathPointType Anchor=\"" +
           number(x) + " 10\"/><PathPointType Anchor=\"" + number(x + 100) +
           " 10\"/></PathPointArray></GeometryPathType></PathGeometry></Properties>";
}

} // namespace

std::string placedLinkXml(const PlacedLink& link)
{
    return "<Rectangle Self=\"r" + link.graphicSelf + "\" ItemTransform=\"1 0 0 1 0 0\" " + link.frameAttributes + ">" +
           frameGeometry(link.x) + "<" + link.graphic + " Self=\"" + link.graphicSelf + "\" " + link.graphicAttributes +
           "><Link Self=\"" + link.linkSelf + "\" LinkResourceURI=\"" + link.uri + "\" " + link.linkAttributes +
           "/></" + link.graphic + "></Rectangle>";
}

std::string textFrameXml(const std::string& story, double x)
{
    return "<TextFrame Self=\"t" + story + "\" ParentStory=\"" + story + "\" ItemTransform=\"1 0 0 1 0 0\">" +
           frameGeometry(x) + "</TextFrame>";
}

std::string spreadXml(int pageCount, int binding, double y, std::initializer_list<SpreadPage> pages,
                      const std::string& body)
{
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                      "<idPkg:Spread xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\">\n"
                      "\t<Spread Self=\"us\" PageCount=\"" +
                      std::to_string(pageCount) + "\" BindingLocation=\"" + std::to_string(binding) +
                      "\" ItemTransform=\"1 0 0 1 0 " + number(y) + "\">\n\t\t<FlattenerPreference/>\n";
    for (const SpreadPage& page : pages)
        xml += "\t\t<Page Self=\"p\" Name=\"" + page.name +
               "\" GeometricBounds=\"0 0 792 612\" ItemTransform=\"1 0 0 1 " + number(page.leftX) + " -396\"/>\n";
    return xml + body + "\n\t</Spread>\n</idPkg:Spread>\n";
}

std::string masterSpreadXml(const std::string& name, const std::string& body)
{
    return "<idPkg:MasterSpread xmlns:idPkg=\"p\"><MasterSpread Self=\"um\" Name=\"" + name +
           "\" PageCount=\"1\"><Page Self=\"mp\" Name=\"A\" GeometricBounds=\"0 0 10 10\"/>" + body +
           "</MasterSpread></idPkg:MasterSpread>";
}

std::string storyXml(const std::string& self, const std::string& body)
{
    return "<idPkg:Story xmlns:idPkg=\"p\"><Story Self=\"" + self + "\"><ParagraphStyleRange><CharacterStyleRange>" +
           body + "<Content> </Content></CharacterStyleRange></ParagraphStyleRange></Story></idPkg:Story>";
}

void writePackage(const QString& folder, const std::map<std::string, std::string>& files,
                  std::initializer_list<std::string> spreadOrder)
{
    std::string designmap = "<?xml version=\"1.0\"?><Document xmlns:idPkg=\"p\">";
    const auto kindOf = [](const std::string& path) -> const char* {
        return path.rfind("MasterSpreads/", 0) == 0 ? "MasterSpread"
               : path.rfind("Spreads/", 0) == 0     ? "Spread"
               : path.rfind("Stories/", 0) == 0     ? "Story"
                                                    : nullptr;
    };
    // The parts in the order given, then every other part.
    std::set<std::string> listed(spreadOrder);
    for (const std::string& part : spreadOrder)
        designmap += std::string("<idPkg:") + kindOf(part) + " src=\"" + part + "\"/>";
    for (const auto& [path, text] : files) {
        const char* kind = kindOf(path);
        const bool hidden = path.find("/.") != std::string::npos;
        if (kind && !hidden && listed.insert(path).second)
            designmap += std::string("<idPkg:") + kind + " src=\"" + path + "\"/>";
    }
    designmap += "</Document>";
    QDir().mkpath(folder);
    writeAll(folder + QStringLiteral("/designmap.xml"), QByteArray::fromStdString(designmap));
    for (const auto& [path, text] : files) {
        const QString target = folder + u'/' + QString::fromStdString(path);
        QDir().mkpath(QFileInfo(target).absolutePath());
        writeAll(target, QByteArray::fromStdString(text));
    }
}

} // namespace quillon::test
