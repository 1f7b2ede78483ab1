#include "preflight/ParaStylesStories.h"

#include "app/XmlFile.h"

#include <array>
#include <cstring>

namespace quillon::preflight {

namespace {

constexpr int kMaxDepth = 256;

// Page items anchored in text: one character of their paragraph; their own content lies elsewhere.
constexpr std::array kAnchoredItems{
    "Rectangle", "Oval",      "Polygon",  "GraphicLine", "TextFrame", "Group",       "Button",  "MultiStateObject",
    "EPSText",   "FormField", "CheckBox", "ComboBox",    "ListBox",   "RadioButton", "TextBox", "SignatureField"};

bool isAnchoredItem(std::string_view name)
{
    for (const char* item : kAnchoredItems)
        if (name == item)
            return true;
    return false;
}

class Walker {
public:
    Walker(StoryTextVisitor& visitor) : m_visitor(visitor) {}

    bool walkFlow(pugi::xml_node root, int depth)
    {
        Flow flow;
        const bool ok = walk(root, Scope{}, flow, depth);
        finish(flow);
        return ok;
    }

private:
    struct Scope {
        pugi::xml_node paragraphRange;
        pugi::xml_node characterRange;
        std::string_view style() const { return paragraphRange.attribute("AppliedParagraphStyle").value(); }
    };
    struct Flow {
        bool pending = false; // characters since the last paragraph end
        std::string_view style;
    };

    // Something of a paragraph was met. Outside any paragraph range (a graphic cell's frame) there
    // is no paragraph to count.
    void mark(Flow& flow, const Scope& scope)
    {
        if (!scope.paragraphRange)
            return;
        const std::string_view style = scope.style();
        if (flow.pending && style != flow.style)
            m_visitor.paragraphEnded(flow.style);
        flow.pending = true;
        flow.style = style;
    }

    void finish(Flow& flow)
    {
        if (flow.pending)
            m_visitor.paragraphEnded(flow.style);
        flow.pending = false;
    }

    bool walk(pugi::xml_node node, const Scope& scope, Flow& flow, int depth)
    {
        if (depth > kMaxDepth)
            return false;
        for (pugi::xml_node child : node.children()) {
            if (child.type() != pugi::node_element)
                continue;
            const std::string_view name = child.name();
            if (name == "ParagraphStyleRange") {
                if (!walk(child, Scope{child, {}}, flow, depth + 1))
                    return false;
            } else if (name == "CharacterStyleRange") {
                if (!walk(child, Scope{scope.paragraphRange, child}, flow, depth + 1))
                    return false;
            } else if (name == "Content") {
                if (child.first_child()) {
                    mark(flow, scope);
                    m_visitor.characters(scope.paragraphRange, scope.characterRange);
                }
            } else if (name == "Br") {
                mark(flow, scope);
                m_visitor.characters(scope.paragraphRange, scope.characterRange);
                finish(flow);
            } else if (name == "TextVariableInstance") {
                mark(flow, scope);
                m_visitor.characters(scope.paragraphRange, scope.characterRange);
            } else if (name == "Table") {
                mark(flow, scope);
                for (pugi::xml_node cell : child.children("Cell"))
                    if (!walkFlow(cell, depth + 1))
                        return false;
            } else if (name == "Footnote") {
                mark(flow, scope);
                if (!walkFlow(child, depth + 1))
                    return false;
            } else if (isAnchoredItem(name)) {
                mark(flow, scope);
            } else if (name == "Properties" || name == "Note" ||
                       (name == "Change" && std::strcmp(child.attribute("ChangeType").value(), "DeletedText") == 0)) {
                continue;
            } else if (!walk(child, scope, flow, depth + 1)) {
                return false;
            }
        }
        return true;
    }

    StoryTextVisitor& m_visitor;
};

} // namespace

app::Status walkStoryText(pugi::xml_node root, StoryTextVisitor& visitor, const QString& sourceName)
{
    Walker walker(visitor);
    if (!walker.walkFlow(root, 0))
        return app::makeError(QStringLiteral("the text is nested more than %1 levels deep").arg(kMaxDepth), sourceName);
    return {};
}

app::Status walkStories(const QStringList& storyPaths, StoryTextVisitor& visitor)
{
    for (const QString& path : storyPaths) {
        auto story = app::loadXmlFile(path);
        if (!story)
            return story.error();
        if (app::Status walked = walkStoryText((*story)->document_element(), visitor, path); !walked)
            return walked;
    }
    return {};
}

} // namespace quillon::preflight
