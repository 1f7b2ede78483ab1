#pragma once

#include "app/Result.h"
#include "inspection/DocInfo.h"
#include "package/FileItem.h"

#include <QVariantList>
#include <QVariantMap>

namespace quillon::package {

// What packaging keeps of one preflighted document: the data as the preflight's data files hold
// it, the document information and the judged rows of the three lists. Packaging reads its links
// from here, so a document is not preflighted twice.
struct PreflightedDocument {
    TNFileItem docItem;
    QVariantMap tmpLinkData; // document path -> its group row ("children": the link records)
    QVariantMap tmpColorData;
    QVariantMap tmpFontData;
    inspection::QNDocInfo docInfo;
    QVariantList finalLinkItems;
    QVariantList finalColorItems;
    QVariantList finalFontItems;
    // The preflight's status line as its results gave it ("2 errors found: Fonts: 1 • Links: 1").
    QString statusLine;
    // What the preflight alerted to or could not read: a package of this document is not clean.
    QList<app::Error> preflightProblems;

    // The link records of the document: tmpLinkData[path]["children"] (none without link data).
    QVariantList links() const;
    // The font records of the document: tmpFontData[path]["children"].
    QVariantList fonts() const;
};

} // namespace quillon::package
