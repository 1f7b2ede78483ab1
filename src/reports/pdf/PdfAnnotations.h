#pragma once

// Built as C++17 (qpdf's headers are not C++20-clean under clang): Qt and the standard library only.

#include <QByteArray>
#include <QList>
#include <QRectF>
#include <QString>

namespace quillon::reportpdf {

// An annotation of the PDF report.
struct PlacedAnnotation {
    enum class Kind { Uri, Text };
    Kind kind = Kind::Text;
    int page = 0;  // 0-based
    QRectF rect;   // PDF points, origin at the page's bottom left
    QString value; // the URI, or the text of the note
};

// The annotated file, or why it could not be made.
struct AnnotatedPdf {
    QByteArray bytes;
    QString error;
};

// Reads the PDF at `pdfPath`, adds the annotations to its pages (a link to a URI, or a closed
// note) and returns the whole new file.
AnnotatedPdf annotatePdf(const QString& pdfPath, const QList<PlacedAnnotation>& annotations);

// What checking the structure of a PDF found: empty when qpdf reads every object and page
// content without a warning.
QString pdfStructureProblems(const QString& pdfPath);

// The link and note annotations of a PDF's pages, in page order.
QList<PlacedAnnotation> pdfAnnotations(const QString& pdfPath);

} // namespace quillon::reportpdf
