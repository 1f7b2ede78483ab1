#pragma once

#include <pugixml.hpp>

#include <initializer_list>
#include <string_view>

namespace quillon::idml {

// The first element, in document order, reached from `node` through child elements with the
// given names in turn: what an XPath "./A/B/C" gives as its first result, without XPath.
pugi::xml_node firstAtPath(pugi::xml_node node, std::initializer_list<std::string_view> names);

// Calls `visit` with every element reached that way, in document order.
template <typename Visit>
void forEachAtPath(pugi::xml_node node, const std::string_view* names, size_t count, Visit&& visit)
{
    if (count == 0) {
        visit(node);
        return;
    }
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling())
        if (child.type() == pugi::node_element && names[0] == child.name())
            forEachAtPath(child, names + 1, count - 1, visit);
}

template <typename Visit>
void forEachAtPath(pugi::xml_node node, std::initializer_list<std::string_view> names, Visit&& visit)
{
    forEachAtPath(node, names.begin(), names.size(), visit);
}

// Calls `visit` with every element below `root` in document order, without recursion (hostile
// files may nest deeply).
template <typename Visit> void forEachElement(const pugi::xml_node root, Visit&& visit)
{
    pugi::xml_node node = root.first_child();
    while (node) {
        if (node.type() == pugi::node_element)
            visit(node);
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node && node != root && !node.next_sibling())
            node = node.parent();
        if (!node || node == root)
            return;
        node = node.next_sibling();
    }
}

// The element's attribute text as UTF-8; empty when absent.
inline std::string_view attr(pugi::xml_node node, const char* name)
{
    return node.attribute(name).value();
}

// The concatenated text of an element (its text and CDATA children, recursively), as the
// string value of an XML node.
std::string textOf(pugi::xml_node node);

} // namespace quillon::idml
