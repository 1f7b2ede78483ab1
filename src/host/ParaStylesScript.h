#pragma once

#include "inspection/ParaStylesReport.h"

#include <QList>
#include <QString>

namespace quillon::host {

// The script that asks InDesign for the paragraph styles of one open document (id, name, based-on
// style, font family and style, point size, leading, automatic leading) and for the style of every
// paragraph of its stories, table cells and footnotes.
QString paraStylesScript(const QString& inDesignName, const QString& documentName);

// The styles from the script's answer, in InDesign's order, each with the number of paragraphs
// that use it; "[No Paragraph Style]" only when a paragraph uses it.
QList<inspection::ParaStyleUse> paraStyleUsesFromScriptAnswer(const QString& answer);

} // namespace quillon::host
