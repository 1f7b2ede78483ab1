#pragma once

#include <QIcon>
#include <QString>

namespace quillon::ui {

// The picture a row, header or button names by its image name ("warning", "ok", "Missing"...):
// our own SVG drawing of that name, or an empty icon when there is none.
QIcon namedIcon(const QString& imageName);

} // namespace quillon::ui
