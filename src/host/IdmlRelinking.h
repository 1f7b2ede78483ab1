#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace quillon::host {

// A Link element of a spread, master spread or story: its Self id and its LinkResourceURI, both
// as the XML means them (entities decoded).
struct IdmlLink {
    QString self;
    QString uri;
};

// The file a link should point at from now on, or nothing to leave it as it is.
using LinkRetarget = std::function<std::optional<QString>(const IdmlLink& link)>;

// Points links of the IDML file at `idmlPath` at other files: every Link of the master spreads,
// spreads and stories gets the URI of the path `retarget` gives it, written as InDesign writes
// URIs. Only the changed attribute values differ afterwards; the other parts and the rest of each
// part stay byte for byte. Nothing changed leaves the file untouched; otherwise it is replaced at
// once (a failure leaves it as it was). Answers how many links were changed.
app::Result<int> retargetIdmlLinks(const QString& idmlPath, const LinkRetarget& retarget);

// Every link whose file name is that of a file in `linksFolder` points at that file; a name that
// differs only in case counts when no other file of the folder has it. Links without a file there
// keep their URI.
app::Result<int> relinkIdmlToFolder(const QString& idmlPath, const QString& linksFolder);

// The same for the bytes of one part; `changed` counts the links changed.
QByteArray retargetLinksInPart(const QByteArray& part, const LinkRetarget& retarget, int& changed);

} // namespace quillon::host
