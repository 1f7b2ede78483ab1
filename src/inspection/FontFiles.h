#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

namespace quillon::inspection {

// A font file on this machine and the face inside it (collections hold several).
struct FontFile {
    QString path;
    int faceIndex = 0;
};

// Finds the files of a document's fonts as InDesign would when opening the document here: the
// "Document fonts" folder beside the document first (InDesign activates those for the document
// alone), then the fonts installed on the machine, through fontconfig. Reads the files with
// FreeType. One finder serves one thread.
class FontFileFinder {
public:
    // `documentPath` is the document's own file; its folder holds the "Document fonts" folder.
    explicit FontFileFinder(const QString& documentPath);
    ~FontFileFinder();
    FontFileFinder(const FontFileFinder&) = delete;
    FontFileFinder& operator=(const FontFileFinder&) = delete;

    // By PostScript name, exactly (case included); a font without one by family and style names.
    // The first of several files in the same folder wins, in path order.
    std::optional<FontFile> find(const QString& postScriptName, const QString& family, const QString& style);

    // "Yes" when the face's embedding permission (OS/2 fsType) lets it be embedded in a PDF,
    // "No" for restricted-licence and bitmap-only faces, "?" when the file cannot be read.
    QString pdfEmbedding(const FontFile& file);

    // The face's technology in the words of the font record ("OpenType CFF", "TrueType",
    // "type 1", "bitmap", ...); "Unknown" when the file cannot be read. For fonts the document
    // does not describe itself.
    QString fontType(const FontFile& file);

    static QString documentFontsFolder(const QString& documentPath);

private:
    struct Face {
        FontFile file;
        QString postScriptName;
        QString family;
        QString style;
    };

    void scanDocumentFonts();
    std::optional<FontFile> findInDocumentFonts(const QString& postScriptName, const QString& family,
                                                const QString& style);

    void* installedFonts(); // the FcConfig, loaded on first use

    void* m_library = nullptr;    // FT_Library; kept opaque so the header needs no FreeType
    void* m_fontconfig = nullptr; // FcConfig, loaded on the first look-up of an installed font
    bool m_fontconfigLoaded = false;
    QString m_documentFonts;
    bool m_scanned = false;
    QList<Face> m_documentFaces;
};

} // namespace quillon::inspection
