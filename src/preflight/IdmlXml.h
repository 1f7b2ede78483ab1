#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QString>

#include <pugixml.hpp>

namespace quillon::preflight {

// Parses one XML part of an IDML package; the error names the document and the part.
app::Status loadIdmlXml(pugi::xml_document& document, const QByteArray& bytes, const QString& documentPath,
                        const QString& partName, unsigned options = pugi::parse_default);

// Calls `visit` for every element below `root` in document order, without recursion (hostile
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

} // namespace quillon::preflight
