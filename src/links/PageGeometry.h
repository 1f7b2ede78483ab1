#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>

#include <pugixml.hpp>

#include <map>
#include <optional>
#include <vector>

namespace quillon::links {

// How the pages of a spread lie around the binding (spine).
enum class PagesInSpreadCase {
    QNSinglePage = 0,      // one page, and every master spread
    QNTwoFacingPages = 1,  // two pages, one each side of the binding
    QNMultiPageSpread = 2, // anything else, placed by the pages' left edges
};

// The page a graphic lies on: its name ("?" when no page matches) and the page's order in the
// document (none on master spreads and when no page matches).
struct PageHit {
    QString name;
    std::optional<double> sortOrder;
};

// The distinct page sizes of a document: key [width, height] ("###0.####" texts, points), value
// the names of the pages having that size, in the order met. The document information keeps the
// same table.
using PageSizes = QMap<QStringList, QStringList>;

// The size key of a page from its GeometricBounds ("top left bottom right"): with a top-left
// corner written "0 0" the bottom and right are the height and width as they stand, otherwise
// the differences; each formatted "###0.####". Empty when the bounds do not hold four numbers.
QStringList pageSizeKeyFromGeometricBounds(std::string_view bounds);

// The pages of the spread being read, and the document-wide tables of page sizes and page sort
// orders that ordinary spreads fill as they are read.
//
// The model is deliberately coarse: a graphic's page is decided by one horizontal coordinate (its
// frame's first path point plus the frame's horizontal translation), compared with the left
// edges of the spread's pages; x is 0 at the binding. Sort orders grow down the document (the
// spread's vertical translation) and from left to right inside a spread; they are only compared.
class PageGeometry {
public:
    // Before each spread file: forgets the previous spread's pages and side indexes. The layout
    // case, binding and offset stay until the next spread header replaces them.
    void beginSpreadFile(bool isMaster);

    // Reads the spread header (the root's first child) and its pages.
    void parseSpreadAndPagesInfoInRootNode(pugi::xml_node root);

    // The page holding the graphic whose frame is `frame`.
    PageHit parentPageNameForGraphicNode(pugi::xml_node frame) const;

    // The integer in the page's fifth descriptor list item (its absolute page number); 0 when
    // absent.
    static int pageIndexInDocForPageNode(pugi::xml_node page);

    // The sort order recorded for a page name of an ordinary spread.
    std::optional<double> sortOrderForPageName(const QString& name) const;

    const PageSizes& docPageSizes() const { return m_docPageSizes; }
    // The keys of docPageSizes() in the order the sizes were first met.
    const QList<QStringList>& docPageSizeOrder() const { return m_docPageSizeOrder; }

    PagesInSpreadCase pagesInSpreadCase() const { return m_case; }
    double yOffsetOfSpreadInDoc() const { return m_yOffset; }
    int bindingLocation() const { return m_bindingLocation; }
    const std::vector<int>& indexesOfLeftPages() const { return m_leftKeys; }
    const std::vector<int>& indexesOfRightPages() const { return m_rightKeys; }

private:
    struct PageRecord {
        QString name;
        double sortOrderOfPageInDoc = 0.0;
        double leftX = 0.0;
    };

    void parsePagesInfoInSpreadNode(pugi::xml_node spread);
    void composePagesDictFromNodes(const std::vector<pugi::xml_node>& pages);
    void pageSizeFromNode(pugi::xml_node page, const QString& name);
    void recordSortOrder(const QString& name, double sortOrder);
    PageHit pageOnSide(const std::vector<int>& keys, double x) const;

    PagesInSpreadCase m_case = PagesInSpreadCase::QNSinglePage;
    double m_yOffset = 0.0;
    int m_bindingLocation = 0;
    std::vector<int> m_leftKeys;
    std::vector<int> m_rightKeys;

    // The current spread's page table.
    bool m_isMaster = false;
    std::optional<QString> m_pgName;         // single page, and the master spread's name
    std::optional<double> m_sortOrderOfPage; // single page of an ordinary spread
    std::optional<QString> m_leftName;       // two facing pages
    std::optional<QString> m_rightName;
    std::optional<std::pair<double, double>> m_sortOrdersOf2FacingPages;
    std::map<int, PageRecord> m_pagesByKey; // several pages: signed key -> page

    PageSizes m_docPageSizes;
    QList<QStringList> m_docPageSizeOrder;
    QHash<QString, double> m_docPageSortOrdersForPageNames;
};

} // namespace quillon::links
