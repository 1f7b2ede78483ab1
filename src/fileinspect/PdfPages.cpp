#include "fileinspect/PdfPages.h"

#include "app/RegularFile.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <exception>

#include <unistd.h>

namespace quillon::fileinspect {

// A PDF may have a little junk before its header; qpdf looks this far for it.
constexpr qint64 kHeaderSearchBytes = 1024;

bool hasPdfHeader(QByteArrayView head)
{
    return head.first(std::min<qsizetype>(head.size(), kHeaderSearchBytes)).contains(QByteArrayView(kPdfHeader));
}

namespace {

// Rebuilding a damaged cross-reference table means reading the whole file; larger files that need
// it are refused rather than scanned for minutes.
constexpr qint64 kMaxRecoveryBytes = 64LL * 1024 * 1024;

// Opens the document with `open` and measures its first page; qpdf's exceptions end here.
template <typename Open>
app::Result<std::optional<PageSize>> measureFirstPage(const QString& name, qint64 size, Open open)
{
    try {
        QPDF pdf;
        pdf.setSuppressWarnings(true);
        pdf.setAttemptRecovery(size <= kMaxRecoveryBytes);
        open(pdf);
        std::vector<QPDFPageObjectHelper> pages = QPDFPageDocumentHelper(pdf).getAllPages();
        if (pages.empty())
            return std::optional<PageSize>();
        const QPDFObjectHandle::Rectangle box = pages.front().getMediaBox().getArrayAsRectangle();
        return std::optional<PageSize>(PageSize{std::fabs(box.urx - box.llx), std::fabs(box.ury - box.lly)});
    } catch (const std::exception& e) {
        return app::makeError(QStringLiteral("is a PDF that cannot be read: %1").arg(QString::fromUtf8(e.what())),
                              name);
    } catch (...) {
        return app::makeError(QStringLiteral("is a PDF that cannot be read"), name);
    }
}

app::Status checkPdfHeader(QByteArrayView head, const QString& name)
{
    if (!hasPdfHeader(head))
        return app::makeError(QStringLiteral("is not a PDF file (no %1 header in its first %2 bytes)")
                                  .arg(QLatin1String(kPdfHeader))
                                  .arg(kHeaderSearchBytes),
                              name);
    return {};
}

} // namespace

app::Result<std::optional<PageSize>> firstPageSize(const QString& path)
{
    // The file is checked and opened once; qpdf reads the same descriptor, so it can never be
    // handed a FIFO or a device.
    app::Result<app::ReadableFile> file = app::openRegularFile(path);
    if (!file)
        return file.error();
    char head[kHeaderSearchBytes];
    const ssize_t got = ::pread(file->descriptor(), head, sizeof head, 0);
    if (got < 0)
        return app::makeError(QStringLiteral("cannot be read: %1").arg(app::systemErrorText(errno)), path);
    if (app::Status isPdf = checkPdfHeader(QByteArrayView(head, got), path); !isPdf)
        return isPdf.error();
    const int copy = ::dup(file->descriptor());
    FILE* stream = copy < 0 ? nullptr : ::fdopen(copy, "rb");
    if (!stream) {
        const int errorNumber = errno;
        if (copy >= 0)
            ::close(copy);
        return app::makeError(QStringLiteral("cannot be read: %1").arg(app::systemErrorText(errorNumber)), path);
    }
    const std::string description = app::displayPath(path).toStdString();
    return measureFirstPage(path, file->size(), [&](QPDF& pdf) { pdf.processFile(description.c_str(), stream, true); });
}

app::Result<std::optional<PageSize>> firstPageSizeOfBytes(const QByteArray& bytes, const QString& name)
{
    if (app::Status isPdf = checkPdfHeader(bytes, name); !isPdf)
        return isPdf.error();
    const std::string description = name.toStdString();
    return measureFirstPage(name, bytes.size(), [&](QPDF& pdf) {
        pdf.processMemoryFile(description.c_str(), bytes.constData(), static_cast<size_t>(bytes.size()));
    });
}

} // namespace quillon::fileinspect
