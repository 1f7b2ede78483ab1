#include "reportpdf/PdfAnnotations.h"

#include <qpdf/Pl_Discard.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <algorithm>
#include <exception>
#include <map>
#include <memory>
#include <utility>

namespace quillon::reportpdf {

namespace {

QPDFObjectHandle rectangle(const QRectF& rect)
{
    return QPDFObjectHandle::newArray(
        QPDFObjectHandle::Rectangle(rect.left(), rect.top(), rect.right(), rect.bottom()));
}

// A small yellow mark at the right end of the cell instead of the viewer's note icon, which is
// larger than a row and would hide the link's name on screen and on paper.
QPDFObjectHandle noteAppearance(QPDF& pdf, const QRectF& rect)
{
    const double size = std::min(5.0, rect.height() - 2);
    const QString drawing = QStringLiteral("q 1 0.82 0.1 rg 0.45 0.35 0 RG 0.4 w %1 %2 %3 %3 re B Q")
                                .arg(rect.width() - size - 1, 0, 'f', 2)
                                .arg((rect.height() - size) / 2, 0, 'f', 2)
                                .arg(size, 0, 'f', 2);
    QPDFObjectHandle stream = QPDFObjectHandle::newStream(&pdf, drawing.toStdString());
    QPDFObjectHandle streamDict = stream.getDict();
    streamDict.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    streamDict.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    streamDict.replaceKey("/BBox", rectangle(QRectF(0, 0, rect.width(), rect.height())));
    QPDFObjectHandle appearance = QPDFObjectHandle::newDictionary();
    appearance.replaceKey("/N", stream);
    return appearance;
}

// One appearance per note size: the link rows' notes all share one.
using Appearances = std::map<std::pair<qint64, qint64>, QPDFObjectHandle>;

QPDFObjectHandle sharedNoteAppearance(QPDF& pdf, const QRectF& rect, Appearances& appearances)
{
    const std::pair<qint64, qint64> key{qRound64(rect.width() * 100), qRound64(rect.height() * 100)};
    auto found = appearances.find(key);
    if (found == appearances.end())
        found = appearances.emplace(key, pdf.makeIndirectObject(noteAppearance(pdf, rect))).first;
    return found->second;
}

QPDFObjectHandle annotation(QPDF& pdf, const PlacedAnnotation& placed, Appearances& appearances)
{
    QPDFObjectHandle dict = QPDFObjectHandle::newDictionary();
    dict.replaceKey("/Type", QPDFObjectHandle::newName("/Annot"));
    dict.replaceKey("/Rect", rectangle(placed.rect));
    const std::string value = placed.value.toStdString();
    if (placed.kind == PlacedAnnotation::Kind::Uri) {
        dict.replaceKey("/Subtype", QPDFObjectHandle::newName("/Link"));
        dict.replaceKey("/Border", QPDFObjectHandle::parse("[0 0 0]"));
        QPDFObjectHandle action = QPDFObjectHandle::newDictionary();
        action.replaceKey("/S", QPDFObjectHandle::newName("/URI"));
        action.replaceKey("/URI", QPDFObjectHandle::newString(value));
        dict.replaceKey("/A", action);
    } else {
        dict.replaceKey("/Subtype", QPDFObjectHandle::newName("/Text"));
        dict.replaceKey("/Name", QPDFObjectHandle::newName("/Comment"));
        dict.replaceKey("/Open", QPDFObjectHandle::newBool(false));
        dict.replaceKey("/F", QPDFObjectHandle::newInteger(4)); // printed with the page
        dict.replaceKey("/Contents", QPDFObjectHandle::newUnicodeString(value));
        dict.replaceKey("/AP", sharedNoteAppearance(pdf, placed.rect, appearances));
    }
    return pdf.makeIndirectObject(dict);
}

class IgnoreContent : public QPDFObjectHandle::ParserCallbacks {
public:
    void handleObject(QPDFObjectHandle) override {}
    void handleEOF() override {}
};

} // namespace

AnnotatedPdf annotatePdf(const QString& pdfPath, const QList<PlacedAnnotation>& annotations)
{
    try {
        QPDF pdf;
        pdf.processFile(pdfPath.toLocal8Bit().constData());
        std::vector<QPDFPageObjectHelper> pages = QPDFPageDocumentHelper(pdf).getAllPages();
        Appearances appearances;
        for (const PlacedAnnotation& placed : annotations) {
            if (placed.page < 0 || static_cast<size_t>(placed.page) >= pages.size())
                return {{}, QStringLiteral("no page %1 for an annotation").arg(placed.page + 1)};
            QPDFObjectHandle page = pages.at(static_cast<size_t>(placed.page)).getObjectHandle();
            QPDFObjectHandle annots = page.getKey("/Annots");
            if (!annots.isArray()) {
                annots = QPDFObjectHandle::newArray();
                page.replaceKey("/Annots", annots);
            }
            annots.appendItem(annotation(pdf, placed, appearances));
        }
        QPDFWriter writer(pdf);
        writer.setOutputMemory();
        // The painted streams are already compressed: copied as they are, not inflated and
        // deflated again.
        writer.setDecodeLevel(qpdf_dl_none);
        writer.setObjectStreamMode(qpdf_o_generate);
        writer.write();
        const std::shared_ptr<Buffer> buffer = writer.getBufferSharedPointer();
        return {
            QByteArray(reinterpret_cast<const char*>(buffer->getBuffer()), static_cast<qsizetype>(buffer->getSize())),
            {}};
    } catch (const std::exception& e) {
        return {{}, QString::fromLocal8Bit(e.what())};
    }
}

QString pdfStructureProblems(const QString& pdfPath)
{
    try {
        QPDF pdf;
        pdf.setSuppressWarnings(true);
        pdf.processFile(pdfPath.toLocal8Bit().constData());
        IgnoreContent ignore;
        for (QPDFPageObjectHelper& page : QPDFPageDocumentHelper(pdf).getAllPages())
            page.parseContents(&ignore);
        Pl_Discard discard;
        QPDFWriter writer(pdf);
        writer.setOutputPipeline(&discard);
        writer.setDecodeLevel(qpdf_dl_all);
        writer.write();
        if (pdf.anyWarnings()) {
            QString problems;
            for (const QPDFExc& warning : pdf.getWarnings())
                problems += QString::fromLocal8Bit(warning.what()) + u'\n';
            return problems;
        }
        return {};
    } catch (const std::exception& e) {
        return QString::fromLocal8Bit(e.what());
    }
}

QList<PlacedAnnotation> pdfAnnotations(const QString& pdfPath)
{
    QList<PlacedAnnotation> found;
    try {
        QPDF pdf;
        pdf.processFile(pdfPath.toLocal8Bit().constData());
        int index = 0;
        for (QPDFPageObjectHelper& page : QPDFPageDocumentHelper(pdf).getAllPages()) {
            for (QPDFAnnotationObjectHelper& annot : page.getAnnotations()) {
                const QPDFObjectHandle::Rectangle r = annot.getRect();
                const QRectF rect(r.llx, r.lly, r.urx - r.llx, r.ury - r.lly);
                QPDFObjectHandle dict = annot.getObjectHandle();
                if (annot.getSubtype() == "/Link")
                    found.append({PlacedAnnotation::Kind::Uri, index, rect,
                                  QString::fromStdString(dict.getKey("/A").getKey("/URI").getUTF8Value())});
                else if (annot.getSubtype() == "/Text")
                    found.append({PlacedAnnotation::Kind::Text, index, rect,
                                  QString::fromStdString(dict.getKey("/Contents").getUTF8Value())});
            }
            ++index;
        }
    } catch (const std::exception&) {
        return {};
    }
    return found;
}

} // namespace quillon::reportpdf
