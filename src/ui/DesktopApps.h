#pragma once

#include "links/DefaultApplication.h"

#include <QStringList>

namespace quillon::ui {

// The program and arguments that open `files` with `application`; empty when its command is empty.
QStringList launchCommand(const links::DesktopApplication& application, const QStringList& files);

// Starts the application on the files, detached; false when it could not be started.
bool openWithApplication(const links::DesktopApplication& application, const QStringList& files);

} // namespace quillon::ui
