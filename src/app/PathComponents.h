#pragma once

#include <QString>

namespace quillon::app {

// Path pieces by the rules file names follow on the desktop: the extension is what follows the
// last "." of the last component, unless that "." starts the name (".profile" has none).

QString lastPathComponent(const QString& path);
QString pathExtension(const QString& path);
// The path without its extension and the "." before it.
QString stringByDeletingPathExtension(const QString& path);

} // namespace quillon::app
