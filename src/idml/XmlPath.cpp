#include "idml/XmlPath.h"

#include <vector>

namespace quillon::idml {

namespace {

bool findFirst(pugi::xml_node node, const std::string_view* names, size_t count, pugi::xml_node& found)
{
    if (count == 0) {
        found = node;
        return true;
    }
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling())
        if (child.type() == pugi::node_element && names[0] == child.name() &&
            findFirst(child, names + 1, count - 1, found))
            return true;
    return false;
}

} // namespace

pugi::xml_node firstAtPath(pugi::xml_node node, std::initializer_list<std::string_view> names)
{
    pugi::xml_node found;
    findFirst(node, names.begin(), names.size(), found);
    return found;
}

std::string textOf(pugi::xml_node node)
{
    if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata)
        return node.value();
    // Iterative, so a hostile depth of nesting cannot exhaust the stack.
    std::string text;
    std::vector<pugi::xml_node> stack;
    for (pugi::xml_node child = node.last_child(); child; child = child.previous_sibling())
        stack.push_back(child);
    while (!stack.empty()) {
        const pugi::xml_node current = stack.back();
        stack.pop_back();
        if (current.type() == pugi::node_pcdata || current.type() == pugi::node_cdata)
            text += current.value();
        else if (current.type() == pugi::node_element)
            for (pugi::xml_node child = current.last_child(); child; child = child.previous_sibling())
                stack.push_back(child);
    }
    return text;
}

} // namespace quillon::idml
