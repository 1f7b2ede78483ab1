#pragma once

#include <QList>
#include <QVariantList>

namespace quillon::package {

// The link records of a package: all land in one "Links" folder, so a name is copied once, and
// a missing file is never copied.

// The records followed by the nested records (one level deep) that are not missing; the input
// itself when no record has nested links.
QVariantList addNestedLinksToLinksArr(const QVariantList& links);
// In order, the records that are not missing and whose name was not kept before.
QVariantList removeDuplicatesFromLinksArr(const QVariantList& links);
// Over the documents in order, each record that is not missing and whose name is new, then its
// nested records under the same rule: the first record of a name wins.
QVariantList composeArrOfLinksWithoutDuplicates(const QList<QVariantList>& linksOfDocuments);
// The sum of the records' "sizebytes".
qint64 totalSizeFromArrOfLinks(const QVariantList& links);
// The bytes of every document's non-missing links and their non-missing nested links, a file
// placed by several documents counted for each.
qint64 sizeOfLinksCountingDuplicates(const QList<QVariantList>& linksOfDocuments);

} // namespace quillon::package
