#pragma once

#include <QString>

#include <map>
#include <string>

namespace quillon::test {

// Small IDML packages written from XML fragments, for tests of the link analysis.

// A frame at horizontal position `x` holding a graphic that holds a Link.
struct PlacedLink {
    std::string linkSelf = "u1b0";
    std::string uri = "file:/nowhere/picture.jpg";
    std::string linkAttributes = "LinkResourceFormat=\"$ID/JPEG\" StoredState=\"Normal\" LinkResourceSize=\"0~2bf20\"";
    std::string graphic = "Image";
    std::string graphicSelf = "u1a3";
    std::string graphicAttributes =
        "Space=\"$ID/#Links_RGB\" ActualPpi=\"300 300\" EffectivePpi=\"150 150\" ItemTransform=\"0.5 0 0 0.5 0 0\"";
    std::string frameAttributes;
    double x = 10;
};
std::string placedLinkXml(const PlacedLink& link);

// A text frame of `story` at horizontal position `x`.
std::string textFrameXml(const std::string& story, double x);

// A spread file: its pages (name, left edge) and body elements after the pages.
struct SpreadPage {
    std::string name;
    double leftX = 0;
};
std::string spreadXml(int pageCount, int binding, double y, std::initializer_list<SpreadPage> pages,
                      const std::string& body);
std::string masterSpreadXml(const std::string& name, const std::string& body);
std::string storyXml(const std::string& self, const std::string& body);

// Writes each file (path relative to `folder`) and a designmap listing `spreadOrder`.
void writePackage(const QString& folder, const std::map<std::string, std::string>& files,
                  std::initializer_list<std::string> spreadOrder = {});

} // namespace quillon::test
