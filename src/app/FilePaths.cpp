#include "app/FilePaths.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/RegularFile.h"

#include <QDir>
#include <QFileInfo>

#include <filesystem>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace quillon::app {

namespace fs = std::filesystem;

namespace {

// The bytes the system sees, so that a name that is not UTF-8 is found.
fs::path toFs(const QString& path)
{
    return fs::path(localBytesOfPath(path).toStdString());
}

bool pathExists(const QString& path)
{
    std::error_code ec;
    return fs::exists(fs::symlink_status(toFs(path), ec));
}

Error fsError(const QString& action, const QString& path, const std::error_code& ec)
{
    return makeError(QStringLiteral("could not %1: %2").arg(action, QString::fromStdString(ec.message())), path);
}

bool isInside(const QString& inner, const QString& outer)
{
    const QString a = QDir::cleanPath(QFileInfo(inner).absoluteFilePath());
    const QString b = QDir::cleanPath(QFileInfo(outer).absoluteFilePath());
    return a == b || a.startsWith(b + u'/');
}

} // namespace

QString finalPathByAppendingNumberToFileName(const QString& fileName, const QString& folder)
{
    const QString dir = folder.endsWith(u'/') ? folder.chopped(1) : folder;
    QString candidate = dir + u'/' + fileName;
    if (pathExists(candidate)) {
        const qsizetype dot = fileName.lastIndexOf(u'.');
        const bool hasExtension = dot > 0 && dot < fileName.size() - 1;
        const QString base = hasExtension ? fileName.left(dot) : fileName;
        const QString extension = hasExtension ? fileName.mid(dot) : QString();
        for (int counter = 1;; ++counter) {
            candidate = QStringLiteral("%1/%2_%3%4").arg(dir, base).arg(counter).arg(extension);
            if (!pathExists(candidate))
                break;
        }
    }
    logLine(QStringLiteral("final filePathFinal: %1").arg(candidate));
    return candidate;
}

SlashCheck checkPathForSlashes(AlertSink& alerts, const QString& path, const QString& appSpecificError, bool canCancel)
{
    if (path.isEmpty())
        return SlashCheck::Clean;
    const QStringList components = path.split(u'/', Qt::SkipEmptyParts);
    for (const QString& component : components) {
        if (!component.contains(u':'))
            continue;
        const QString reason =
            appSpecificError.isEmpty()
                ? QStringLiteral("Forward slash \"/\" found in a path component. Please replace it with another "
                                 "character to ensure reliable processing.")
                : appSpecificError;
        QString shownComponent = component;
        QString shownPath = path;
        shownComponent.replace(u':', u'/');
        shownPath.replace(u':', u'/');
        const QString message =
            QStringLiteral("%1\n\nUnsafe name: %2\n\nFile path: %3").arg(reason, shownComponent, shownPath) +
            supportContactLine() + u'\n';
        QStringList buttons{QStringLiteral("OK")};
        if (canCancel)
            buttons << QStringLiteral("Cancel");
        const int answer =
            runAlert(alerts, QStringLiteral("Error: Unsafe character in file path"), message, buttons, true);
        return (canCancel && answer == kAlertSecondButton) ? SlashCheck::Cancelled : SlashCheck::Confirmed;
    }
    return SlashCheck::Clean;
}

bool checkPathForSlashes(AlertSink& alerts, const QString& path, const QString& appSpecificError)
{
    return checkPathForSlashes(alerts, path, appSpecificError, false) == SlashCheck::Clean;
}

namespace {

Status removeExisting(const QString& destination)
{
    std::error_code ec;
    fs::remove_all(toFs(destination), ec);
    if (ec)
        return fsError(QStringLiteral("remove the existing item"), destination, ec);
    return {};
}

Status checkReplaceable(const QString& source, const QString& destination)
{
    if (!pathExists(source))
        return makeError(QStringLiteral("the item to copy does not exist"), source);
    if (isInside(destination, source))
        return makeError(QStringLiteral("cannot replace an item with a copy of itself or put it inside itself"),
                         destination);
    return {};
}

} // namespace

// A regular file copied by plain reads and writes: the library's copy reports a full disk or a
// file-size limit as "Input/output error"; this gives the failing call's own reason.
Status copyRegularFile(const ReadableFile& in, const QString& source, const QString& destination)
{
    const QByteArray target = localBytesOfPath(destination);
    const auto failed = [&](int errorNumber) {
        return makeError(QStringLiteral("could not copy %1: %2").arg(source, systemErrorText(errorNumber)),
                         destination);
    };
    const int out = ::open(target.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (out < 0)
        return failed(errno);
    std::vector<char> buffer(1 << 20);
    int errorNumber = 0;
    while (errorNumber == 0) {
        const ssize_t got = ::read(in.descriptor(), buffer.data(), buffer.size());
        if (got == 0)
            break;
        if (got < 0) {
            errorNumber = errno == EINTR ? 0 : errno;
            continue;
        }
        for (ssize_t done = 0; done < got && errorNumber == 0;) {
            const ssize_t put = ::write(out, buffer.data() + done, static_cast<size_t>(got - done));
            if (put >= 0)
                done += put;
            else if (errno != EINTR)
                errorNumber = errno;
        }
    }
    if (::close(out) != 0 && errorNumber == 0)
        errorNumber = errno;
    if (errorNumber == 0)
        return {};
    ::unlink(target.constData());
    return failed(errorNumber);
}

Status copyPathReplacingIt(const QString& source, const QString& destination)
{
    if (Status ok = checkReplaceable(source, destination); !ok)
        return ok;
    if (Status ok = removeExisting(destination); !ok)
        return ok;
    if (Result<ReadableFile> file = openRegularFile(source))
        return copyRegularFile(*file, source, destination);
    std::error_code ec;
    fs::copy(toFs(source), toFs(destination), fs::copy_options::recursive | fs::copy_options::copy_symlinks, ec);
    if (ec)
        return fsError(QStringLiteral("copy %1").arg(source), destination, ec);
    return {};
}

QString safeFileName(QString name)
{
    name.replace(u'/', u'_');
    name.replace(u':', u'_');
    return name;
}

} // namespace quillon::app
