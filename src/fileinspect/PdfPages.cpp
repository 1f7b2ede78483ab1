#include "fileinspect/PdfPages.h"

#include <QFile>
#include <QFileInfo>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include <cmath>
#include <exception>

namespace quillon::fileinspect {

namespace {

// Opens the document with `open` and measures its first page; qpdf's exceptions end here.
template <typename Open> app::Result<std::optional<PageSize>> measureFirstPage(const QString& name, Open open)
{
    try {
        QPDF pdf;
        pdf.setSuppressWarnings(true);
        open(pdf);
        std::vector<QPDFPageObjectHelper> pages = QPDFPageDocumentHelper(pdf).getAllPages();
        if (pages.empty())
            return std::optional<PageSize>();
        const QPDFObjectHandle::Rectangle box = pages.front().getMediaBox().getArrayAsRectangle();
        return std::optional<PageSize>(PageSize{std::fabs(box.urx - box.llx), std::fabs(box.ury - box.lly)});
    } catch (const std::exception& e) {
        return app::makeError(QStringLiteral("The PDF could not be read: %1").arg(QString::fromUtf8(e.what())), name);
    } catch (...) {
        return app::makeError(QStringLiteral("The PDF could not be read."), name);
    }
}

} // namespace

app::Result<std::optional<PageSize>> firstPageSize(const QString& path)
{
    // The library would wait on a named pipe and read a folder as garbage.
    if (!QFileInfo(path).isFile())
        return app::makeError(QStringLiteral("There is no file to read."), path);
    const QByteArray localPath = QFile::encodeName(path);
    return measureFirstPage(path, [&](QPDF& pdf) { pdf.processFile(localPath.constData()); });
}

app::Result<std::optional<PageSize>> firstPageSizeOfBytes(const QByteArray& bytes, const QString& name)
{
    const std::string description = name.toStdString();
    return measureFirstPage(name, [&](QPDF& pdf) {
        pdf.processMemoryFile(description.c_str(), bytes.constData(), static_cast<size_t>(bytes.size()));
    });
}

} // namespace quillon::fileinspect
