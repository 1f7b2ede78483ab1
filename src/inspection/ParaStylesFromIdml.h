#pragma once

#include "app/Result.h"
#include "inspection/ParaStylesReport.h"
#include "inspection/PartWarnings.h"

#include <QList>
#include <QString>

namespace quillon::app {
class CancelFlag;
}

namespace quillon::idml {
class IdmlDocument;
}

namespace quillon::inspection {

// The paragraph styles of a document, read from its IDML package, in the order of the paragraph
// styles panel, each with its based-on style, font, size and leading (as the style and the styles
// it is based on set them, down to the document's defaults) and the number of paragraphs of the
// stories, table cells and footnotes that use it. "[No Paragraph Style]" is listed only when a
// paragraph uses it; a paragraph whose style the document lacks is counted under the style's
// reference. A part that cannot be read is skipped with a warning.
// Only a cancelled inspection fails.
app::Result<Inspected<QList<ParaStyleUse>>> paraStyleUsesFromIdml(const idml::IdmlDocument& document,
                                                                  const app::CancelFlag* cancel = nullptr);

} // namespace quillon::inspection
