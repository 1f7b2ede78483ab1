#include "inspection/ParaStylesStories.h"

#include "idml/IdmlDocument.h"
#include "inspection/FontColorParts.h"

#include <array>
#include <cstring>
#include <vector>

namespace quillon::inspection {

namespace {

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

// Walks with stacks of its own rather than by recursion, so that no nesting is too deep to follow.
class Walker {
public:
    explicit Walker(StoryTextVisitor& visitor) : m_visitor(visitor) {}

    void walkFlow(pugi::xml_node root)
    {
        beginFlow(root);
        while (!m_frames.empty())
            step();
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
    // An element whose children are being visited.
    struct Frame {
        pugi::xml_node next; // the next child to visit
        Scope scope;
        bool ownsFlow = false; // the element is a text flow of its own, which ends with it
        bool cells = false;    // a table: each of its cells is a text flow of its own
    };

    void beginFlow(pugi::xml_node root)
    {
        m_flows.emplace_back();
        m_frames.push_back({root.first_child(), Scope{}, true, false});
    }

    // Something of a paragraph was met. Outside any paragraph range (a graphic cell's frame) there
    // is no paragraph to count.
    void mark(const Scope& scope)
    {
        if (!scope.paragraphRange)
            return;
        Flow& flow = m_flows.back();
        const std::string_view style = scope.style();
        if (flow.pending && style != flow.style)
            m_visitor.paragraphEnded(flow.style);
        flow.pending = true;
        flow.style = style;
    }

    void finish()
    {
        Flow& flow = m_flows.back();
        if (flow.pending)
            m_visitor.paragraphEnded(flow.style);
        flow.pending = false;
    }

    void step()
    {
        Frame& frame = m_frames.back();
        const pugi::xml_node child = frame.next;
        if (!child) {
            if (frame.ownsFlow) {
                finish();
                m_flows.pop_back();
            }
            m_frames.pop_back();
            return;
        }
        if (frame.cells) {
            frame.next = child.next_sibling("Cell");
            beginFlow(child);
            return;
        }
        frame.next = child.next_sibling();
        if (child.type() == pugi::node_element)
            visit(child, Scope(frame.scope)); // a copy: pushing a frame moves the stack
    }

    void visit(pugi::xml_node child, const Scope& scope)
    {
        const std::string_view name = child.name();
        if (name == "ParagraphStyleRange") {
            m_frames.push_back({child.first_child(), Scope{child, {}}});
        } else if (name == "CharacterStyleRange") {
            m_frames.push_back({child.first_child(), Scope{scope.paragraphRange, child}});
        } else if (name == "Content") {
            if (child.first_child()) {
                mark(scope);
                m_visitor.characters(scope.paragraphRange, scope.characterRange);
            }
        } else if (name == "Br") {
            mark(scope);
            m_visitor.characters(scope.paragraphRange, scope.characterRange);
            finish();
        } else if (name == "TextVariableInstance") {
            mark(scope);
            m_visitor.characters(scope.paragraphRange, scope.characterRange);
        } else if (name == "Table") {
            mark(scope);
            m_frames.push_back({child.child("Cell"), Scope{}, false, true});
        } else if (name == "Footnote") {
            mark(scope);
            beginFlow(child);
        } else if (isAnchoredItem(name)) {
            mark(scope);
        } else if (name == "Properties" || name == "Note" ||
                   (name == "Change" && std::strcmp(child.attribute("ChangeType").value(), "DeletedText") == 0)) {
            return;
        } else {
            m_frames.push_back({child.first_child(), scope});
        }
    }

    StoryTextVisitor& m_visitor;
    std::vector<Frame> m_frames;
    std::vector<Flow> m_flows;
};

} // namespace

void walkStoryText(pugi::xml_node root, StoryTextVisitor& visitor)
{
    Walker(visitor).walkFlow(root);
    visitor.textEnded();
}

void walkStories(const QStringList& storyNames, StoryTextVisitor& visitor, PartReader& reader)
{
    reader.document().forEachPart(storyNames, reader.cancelFlag(), [&](const QString& name) {
        if (const std::shared_ptr<const pugi::xml_document> story = reader.read(name))
            walkStoryText(story->document_element(), visitor);
    });
}

} // namespace quillon::inspection
