#pragma once

#include "app/Result.h"

#include <QString>

namespace quillon::host {

// The scripts of the link actions and of relinking a packaged document. Names and paths are
// placed inside quoted script strings with backslashes and quotation marks escaped; paths are
// POSIX paths, as in the other scripts, made file references inside the script.

// A link id goes into a script unquoted, so only a decimal number is one.
app::Status checkLinkId(const QString& linkId, const QString& docName);

// Selects link `linkId` of the open document `docName` and brings InDesign forward.
QString showLinkScript(const QString& inDesignName, const QString& linkId, const QString& docName);
// Relinks link `linkId` of the open document `docName` to the file at `path`; answers true, or
// false when InDesign refused.
QString relinkLinkScript(const QString& inDesignName, const QString& linkId, const QString& path,
                         const QString& docName);
// Opens the document at `docPath` without a window, relinks every link that is not embedded to
// the file of the same name in `linksFolder` (an exact name first, else one that differs only in
// case; links without a file there are left alone), saves it, exports it as IDML beside it when
// `createIdml`, and closes it. Answers true when every relink that was tried succeeded.
QString relinkLinksInDocScript(const QString& inDesignName, const QString& docPath, const QString& linksFolder,
                               bool createIdml);

} // namespace quillon::host
