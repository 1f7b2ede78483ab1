#include "links/PageGeometry.h"

#include "app/Log.h"
#include "app/Numbers.h"
#include "idml/TextFields.h"
#include "idml/XmlPath.h"
#include "links/LinkRecordKeys.h"

#include <algorithm>
#include <climits>
#include <cstring>

using namespace quillon::idml;

namespace quillon::links {

namespace {

QString nameOf(pugi::xml_node node)
{
    return qstr(attr(node, "Name"));
}

// The frame's horizontal position: its first path point plus its horizontal translation.
double frameX(pugi::xml_node frame)
{
    const pugi::xml_node firstPoint =
        firstAtPath(frame, {"Properties", "PathGeometry", "GeometryPathType", "PathPointArray", "PathPointType"});
    return leadingDouble(blankField(attr(firstPoint, "Anchor"), 0)) +
           leadingDouble(blankField(attr(frame, "ItemTransform"), 4));
}

PageHit hitOrUnknown(const std::optional<QString>& name, std::optional<double> sortOrder)
{
    if (!name || name->isEmpty())
        return {kLinkNoPage, sortOrder};
    return {*name, sortOrder};
}

} // namespace

void PageGeometry::beginSpreadFile(bool isMaster)
{
    m_leftKeys.clear();
    m_rightKeys.clear();
    m_isMaster = isMaster;
    m_pgName.reset();
    m_sortOrderOfPage.reset();
    m_leftName.reset();
    m_rightName.reset();
    m_sortOrdersOf2FacingPages.reset();
    m_pagesByKey.clear();
}

void PageGeometry::parseSpreadAndPagesInfoInRootNode(pugi::xml_node root)
{
    app::logLine(QStringLiteral("> parseSpreadAndPagesInfoInRootNode"));
    const pugi::xml_node spread = root.first_child();
    if (spread.type() != pugi::node_element || !std::strstr(spread.name(), "Spread")) {
        app::logLine(QStringLiteral("-> 1st node not Spread!!"));
        return;
    }
    if (m_isMaster) {
        m_pgName = nameOf(spread);
        m_case = PagesInSpreadCase::QNSinglePage;
        m_yOffset = -1.0;
        return;
    }
    const int pageCount = leadingInteger(attr(spread, "PageCount"));
    m_bindingLocation = leadingInteger(attr(spread, "BindingLocation"));
    if (pageCount == 2)
        m_case = m_bindingLocation == 1 ? PagesInSpreadCase::QNTwoFacingPages : PagesInSpreadCase::QNMultiPageSpread;
    else
        m_case = pageCount == 1 ? PagesInSpreadCase::QNSinglePage : PagesInSpreadCase::QNMultiPageSpread;
    m_yOffset = leadingDouble(blankField(attr(spread, "ItemTransform"), 5));
    parsePagesInfoInSpreadNode(spread);
}

void PageGeometry::parsePagesInfoInSpreadNode(pugi::xml_node spread)
{
    // The first child (the flattener preference in a real package) is never a page.
    std::vector<pugi::xml_node> pages;
    for (pugi::xml_node node = spread.first_child().next_sibling(); node; node = node.next_sibling()) {
        if (node.type() == pugi::node_element && std::strcmp(node.name(), "Page") == 0)
            pages.push_back(node);
        else if (!pages.empty())
            break;
    }
    if (pages.empty()) {
        app::logLine(QStringLiteral("--> err: can't get page nodes!!"));
        return;
    }
    composePagesDictFromNodes(pages);
}

void PageGeometry::composePagesDictFromNodes(const std::vector<pugi::xml_node>& pages)
{
    const double y = m_yOffset;
    switch (m_case) {
    case PagesInSpreadCase::QNSinglePage: {
        const QString name = nameOf(pages[0]);
        m_pgName = name;
        m_sortOrderOfPage = y;
        recordSortOrder(name, y);
        pageSizeFromNode(pages[0], name);
        break;
    }
    case PagesInSpreadCase::QNTwoFacingPages: {
        m_sortOrdersOf2FacingPages = std::pair{y, y + 1.0};
        m_leftName = nameOf(pages[0]);
        recordSortOrder(*m_leftName, y);
        pageSizeFromNode(pages[0], *m_leftName);
        if (pages.size() > 1) {
            m_rightName = nameOf(pages[1]);
            recordSortOrder(*m_rightName, y + 1.0);
            pageSizeFromNode(pages[1], *m_rightName);
        }
        break;
    }
    case PagesInSpreadCase::QNMultiPageSpread: {
        // Keys: -b ... -1 for the pages left of the binding, 1 ... r right of it. Only keys of
        // pages that exist are kept: the walk in parentPageNameForGraphicNode always stops at the
        // last existing page of a side, so the others could never be reached.
        const int n = static_cast<int>(std::min<size_t>(pages.size(), 1'000'000));
        const int b = std::clamp(m_bindingLocation, 0, INT_MAX - 1);
        const auto addPage = [&](int pageIndex, int key) {
            const pugi::xml_node page = pages[static_cast<size_t>(pageIndex)];
            PageRecord record{nameOf(page), y + key, leadingDouble(blankField(attr(page, "ItemTransform"), 4))};
            recordSortOrder(record.name, record.sortOrderOfPageInDoc);
            pageSizeFromNode(page, record.name);
            m_pagesByKey[key] = std::move(record);
        };
        for (int j = 0; j < std::min(b, n); ++j) {
            m_leftKeys.push_back(-b + j);
            addPage(j, -b + j);
        }
        for (int j = 0; j < n - b; ++j) {
            m_rightKeys.push_back(j + 1);
            addPage(b + j, j + 1);
        }
        break;
    }
    }
}

void PageGeometry::recordSortOrder(const QString& name, double sortOrder)
{
    m_docPageSortOrdersForPageNames.insert(name, sortOrder);
}

QStringList pageSizeKeyFromGeometricBounds(std::string_view bounds)
{
    if (blankField(bounds, 3).empty())
        return {};
    const std::string_view top = blankField(bounds, 0);
    const std::string_view left = blankField(bounds, 1);
    const double bottom = leadingDouble(blankField(bounds, 2));
    const double right = leadingDouble(blankField(bounds, 3));
    double width = right;
    double height = bottom;
    if (top != "0" || left != "0") {
        width = right - leadingDouble(left);
        height = bottom - leadingDouble(top);
    }
    return {app::formatFourDecimals(width), app::formatFourDecimals(height)};
}

void PageGeometry::pageSizeFromNode(pugi::xml_node page, const QString& name)
{
    const QStringList key = pageSizeKeyFromGeometricBounds(attr(page, "GeometricBounds"));
    if (key.isEmpty())
        return;
    QStringList& pages = m_docPageSizes[key];
    if (pages.isEmpty())
        m_docPageSizeOrder << key;
    pages << name;
}

int PageGeometry::pageIndexInDocForPageNode(pugi::xml_node page)
{
    int index = 0;
    pugi::xml_node item;
    forEachAtPath(page, {"Properties", "Descriptor"}, [&](pugi::xml_node descriptor) {
        if (item)
            return;
        int position = 0;
        for (pugi::xml_node child = descriptor.child("ListItem"); child; child = child.next_sibling("ListItem"))
            if (++position == 5) {
                item = child;
                break;
            }
    });
    if (!item) {
        app::logLine(QStringLiteral("-> can't get ListItem[5] nodes"));
        return 0;
    }
    index = leadingInteger(textOf(item));
    return index;
}

std::optional<double> PageGeometry::sortOrderForPageName(const QString& name) const
{
    const auto it = m_docPageSortOrdersForPageNames.constFind(name);
    if (it == m_docPageSortOrdersForPageNames.cend())
        return std::nullopt;
    return *it;
}

PageHit PageGeometry::pageOnSide(const std::vector<int>& keys, double x) const
{
    for (const int key : keys) {
        const auto page = m_pagesByKey.find(key);
        const auto next = m_pagesByKey.find(key + 1);
        if (next == m_pagesByKey.end() || x < next->second.leftX) {
            if (page == m_pagesByKey.end())
                return {kLinkNoPage, std::nullopt};
            return hitOrUnknown(page->second.name, page->second.sortOrderOfPageInDoc);
        }
    }
    return {kLinkNoPage, std::nullopt};
}

PageHit PageGeometry::parentPageNameForGraphicNode(pugi::xml_node frame) const
{
    switch (m_case) {
    case PagesInSpreadCase::QNSinglePage:
        return hitOrUnknown(m_pgName, m_sortOrderOfPage);
    case PagesInSpreadCase::QNTwoFacingPages: {
        const bool left = frameX(frame) < 0.0;
        std::optional<double> sortOrder;
        if (m_sortOrdersOf2FacingPages)
            sortOrder = left ? m_sortOrdersOf2FacingPages->first : m_sortOrdersOf2FacingPages->second;
        return hitOrUnknown(left ? m_leftName : m_rightName, sortOrder);
    }
    case PagesInSpreadCase::QNMultiPageSpread: {
        const double x = frameX(frame);
        return pageOnSide(x >= 0.0 ? m_rightKeys : m_leftKeys, x);
    }
    }
    return {kLinkNoPage, std::nullopt};
}

} // namespace quillon::links
