#include "ui/DesktopApps.h"

#include <QProcess>
#include <QUrl>

namespace quillon::ui {

QStringList launchCommand(const links::DesktopApplication& application, const QStringList& files)
{
    QStringList command;
    bool placed = false;
    for (const QString& word : QProcess::splitCommand(application.exec)) {
        if (word == QLatin1String("%f") || word == QLatin1String("%F")) {
            command += word == QLatin1String("%f") ? files.mid(0, 1) : files;
            placed = true;
        } else if (word == QLatin1String("%u") || word == QLatin1String("%U")) {
            for (const QString& file : word == QLatin1String("%u") ? files.mid(0, 1) : files)
                command.append(QString::fromUtf8(QUrl::fromLocalFile(file).toEncoded()));
            placed = true;
        } else if (!(word.size() == 2 && word.startsWith(u'%'))) {
            command.append(QString(word).replace(QLatin1String("%%"), QLatin1String("%")));
        }
    }
    if (!placed && !command.isEmpty())
        command += files;
    return command;
}

bool openWithApplication(const links::DesktopApplication& application, const QStringList& files)
{
    QStringList command = launchCommand(application, files);
    if (command.isEmpty())
        return false;
    const QString program = command.takeFirst();
    return QProcess::startDetached(program, command);
}

} // namespace quillon::ui
