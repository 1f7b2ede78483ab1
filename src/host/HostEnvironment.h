#pragma once

#include <QString>
#include <QStringList>

namespace quillon::host {

// What the host bridge needs to know about this program and the applications running beside it.
// An interface so tests can say where the program is installed and which InDesigns run.
class HostEnvironment {
public:
    virtual ~HostEnvironment() = default;
    // The program's resources folder (inside an InDesign folder when installed there).
    virtual QString resourcePath() const = 0;
    // The program's application bundle (macOS) or its executable's folder.
    virtual QString bundlePath() const = 0;
    // The program's short version ("2.4", "2.5b3" for a beta build).
    virtual QString shortVersionString() const = 0;
    // Paths of the running applications, in the order the system reports them.
    virtual QStringList runningApplicationPaths() const = 0;
    // Ends the program (after the current event).
    virtual void terminate() = 0;
};

// This process and this system. Running applications are known on macOS only (the application
// bundles of the running processes); elsewhere the list is empty.
class SystemHostEnvironment : public HostEnvironment {
public:
    QString resourcePath() const override;
    QString bundlePath() const override;
    QString shortVersionString() const override;
    QStringList runningApplicationPaths() const override;
    void terminate() override;
};

// The application bundles (".app" folders) named in a process listing, one executable path a
// line, each once, in the order first met.
QStringList applicationBundlesInProcessList(const QString& processList);

} // namespace quillon::host
