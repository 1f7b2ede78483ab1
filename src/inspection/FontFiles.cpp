#include "inspection/FontFiles.h"

#include "app/Log.h"
#include "app/RegularFile.h"
#include "inspection/FontRecordKeys.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_FONT_FORMATS_H

#include <algorithm>
#include <memory>
#include <mutex>

namespace quillon::inspection {

namespace {

// A "Document fonts" folder is the user's; a huge one is read only this far.
constexpr int kMaxDocumentFontFiles = 4000;
constexpr FT_Long kMaxFacesPerFile = 256;

struct FaceCloser {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using FacePtr = std::unique_ptr<std::remove_pointer_t<FT_Face>, FaceCloser>;

FacePtr openFace(void* library, const QString& path, FT_Long index)
{
    if (!library)
        return {};
    FT_Face face = nullptr;
    if (FT_New_Face(static_cast<FT_Library>(library), app::localBytesOfPath(path).constData(), index, &face) != 0)
        return {};
    return FacePtr(face);
}

QString utf8(const char* text)
{
    return text ? QString::fromUtf8(text) : QString();
}

template <typename T, void (*Destroy)(T*)> struct FcDeleter {
    void operator()(T* p) const
    {
        if (p)
            Destroy(p);
    }
};
using FcPatternPtr = std::unique_ptr<FcPattern, FcDeleter<FcPattern, FcPatternDestroy>>;
using FcObjectSetPtr = std::unique_ptr<FcObjectSet, FcDeleter<FcObjectSet, FcObjectSetDestroy>>;
using FcFontSetPtr = std::unique_ptr<FcFontSet, FcDeleter<FcFontSet, FcFontSetDestroy>>;

QString patternString(FcPattern* pattern, const char* object, int n = 0)
{
    FcChar8* value = nullptr;
    if (FcPatternGetString(pattern, object, n, &value) != FcResultMatch || !value)
        return {};
    return QString::fromUtf8(reinterpret_cast<const char*>(value));
}

bool patternHasString(FcPattern* pattern, const char* object, const QString& wanted)
{
    for (int n = 0;; ++n) {
        FcChar8* value = nullptr;
        if (FcPatternGetString(pattern, object, n, &value) != FcResultMatch || !value)
            return false;
        if (QString::fromUtf8(reinterpret_cast<const char*>(value)) == wanted)
            return true;
    }
}

// Installed fonts whose PostScript name, or family and style, equal the given ones exactly
// (fontconfig's own matching ignores case). The first by path, so the answer does not depend on
// the order of fontconfig's cache.
std::optional<FontFile> findInstalled(FcConfig* config, const QString& postScriptName, const QString& family,
                                      const QString& style)
{
    if (!config)
        return std::nullopt;
    FcPatternPtr pattern(FcPatternCreate());
    if (!pattern)
        return std::nullopt;
    if (!postScriptName.isEmpty()) {
        FcPatternAddString(pattern.get(), FC_POSTSCRIPT_NAME,
                           reinterpret_cast<const FcChar8*>(postScriptName.toUtf8().constData()));
    } else {
        FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family.toUtf8().constData()));
        FcPatternAddString(pattern.get(), FC_STYLE, reinterpret_cast<const FcChar8*>(style.toUtf8().constData()));
    }
    FcObjectSetPtr objects(FcObjectSetBuild(FC_FILE, FC_INDEX, FC_POSTSCRIPT_NAME, FC_FAMILY, FC_STYLE, nullptr));
    FcFontSetPtr fonts(FcFontList(config, pattern.get(), objects.get()));
    if (!fonts)
        return std::nullopt;
    std::optional<FontFile> best;
    for (int i = 0; i < fonts->nfont; ++i) {
        FcPattern* font = fonts->fonts[i];
        const bool matches = postScriptName.isEmpty()
                                 ? patternHasString(font, FC_FAMILY, family) && patternHasString(font, FC_STYLE, style)
                                 : patternString(font, FC_POSTSCRIPT_NAME) == postScriptName;
        const QString path = patternString(font, FC_FILE);
        if (!matches || path.isEmpty() || !QFileInfo::exists(path))
            continue;
        int index = 0;
        FcPatternGetInteger(font, FC_INDEX, 0, &index);
        if (!best || path < best->path)
            best = FontFile{path, index};
    }
    return best;
}

// One configuration of our own for the process (not the process's current one, which other users
// of fontconfig may change). Loading it reads some forty configuration and cache files, which a
// batch of small documents would otherwise pay for each document. It is loaded again when fonts
// were installed or removed since (fontconfig compares the folders' times), so a long-running
// window sees new fonts. Each caller gets a reference of its own, released with FcConfigDestroy,
// so a configuration replaced here lives on for whoever still uses it.
FcConfig* sharedFontconfig()
{
    // Released at exit, after the last finder.
    struct Shared {
        std::mutex mutex;
        FcConfig* config = nullptr;
        ~Shared()
        {
            if (config)
                FcConfigDestroy(config);
        }
    };
    static Shared shared;
    const std::lock_guard lock(shared.mutex);
    if (shared.config && !FcConfigUptoDate(shared.config)) {
        FcConfigDestroy(shared.config);
        shared.config = nullptr;
    }
    if (!shared.config)
        shared.config = FcInitLoadConfigAndFonts();
    return shared.config ? FcConfigReference(shared.config) : nullptr;
}

} // namespace

FontFileFinder::FontFileFinder(const QString& documentPath) : m_documentFonts(documentFontsFolder(documentPath))
{
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) == 0)
        m_library = library;
    else
        app::logFailure(QStringLiteral("start FreeType"));
}

void* FontFileFinder::installedFonts()
{
    if (!m_fontconfigLoaded) {
        m_fontconfigLoaded = true;
        m_fontconfig = sharedFontconfig();
        if (!m_fontconfig)
            app::logFailure(QStringLiteral("load the fontconfig configuration"));
    }
    return m_fontconfig;
}

FontFileFinder::~FontFileFinder()
{
    if (m_library)
        FT_Done_FreeType(static_cast<FT_Library>(m_library));
    if (m_fontconfig)
        FcConfigDestroy(static_cast<FcConfig*>(m_fontconfig));
}

QString FontFileFinder::documentFontsFolder(const QString& documentPath)
{
    if (documentPath.isEmpty())
        return {};
    return QFileInfo(documentPath).absolutePath() + QStringLiteral("/Document fonts");
}

void FontFileFinder::scanDocumentFonts()
{
    m_scanned = true;
    if (m_documentFonts.isEmpty() || !QFileInfo(m_documentFonts).isDir())
        return;
    QStringList files;
    QDirIterator it(m_documentFonts, QDir::Files | QDir::Readable, QDirIterator::Subdirectories);
    while (it.hasNext() && files.size() < kMaxDocumentFontFiles)
        files.append(it.next());
    std::sort(files.begin(), files.end());
    for (const QString& path : files) {
        FacePtr first = openFace(m_library, path, 0);
        if (!first)
            continue; // not a font: the folder may hold anything
        const FT_Long faces = std::min(first->num_faces, kMaxFacesPerFile);
        for (FT_Long index = 0; index < faces; ++index) {
            FacePtr face = index == 0 ? std::move(first) : openFace(m_library, path, index);
            if (!face)
                continue;
            m_documentFaces.append(Face{FontFile{path, static_cast<int>(index)},
                                        utf8(FT_Get_Postscript_Name(face.get())), utf8(face->family_name),
                                        utf8(face->style_name)});
        }
    }
}

std::optional<FontFile> FontFileFinder::findInDocumentFonts(const QString& postScriptName, const QString& family,
                                                            const QString& style)
{
    if (!m_scanned)
        scanDocumentFonts();
    for (const Face& face : std::as_const(m_documentFaces)) {
        const bool matches = postScriptName.isEmpty() ? face.family == family && face.style == style
                                                      : face.postScriptName == postScriptName;
        if (matches)
            return face.file;
    }
    return std::nullopt;
}

std::optional<FontFile> FontFileFinder::find(const QString& postScriptName, const QString& family, const QString& style)
{
    if (postScriptName.isEmpty() && family.isEmpty())
        return std::nullopt;
    if (auto local = findInDocumentFonts(postScriptName, family, style))
        return local;
    return findInstalled(static_cast<FcConfig*>(installedFonts()), postScriptName, family, style);
}

QString FontFileFinder::pdfEmbedding(const FontFile& file)
{
    const FacePtr face = openFace(m_library, file.path, file.faceIndex);
    if (!face)
        return kFontEmbedUnknown;
    const FT_UShort flags = FT_Get_FSType_Flags(face.get());
    // With several permission bits set the least restrictive one applies.
    const bool restricted = (flags & FT_FSTYPE_RESTRICTED_LICENSE_EMBEDDING) &&
                            !(flags & (FT_FSTYPE_PREVIEW_AND_PRINT_EMBEDDING | FT_FSTYPE_EDITABLE_EMBEDDING));
    const bool bitmapOnly = flags & FT_FSTYPE_BITMAP_EMBEDDING_ONLY;
    return restricted || bitmapOnly ? kFontEmbedNo : kFontEmbedYes;
}

QString FontFileFinder::fontType(const FontFile& file)
{
    const FacePtr face = openFace(m_library, file.path, file.faceIndex);
    if (!face)
        return kFontTypeUnknown;
    const QString format = utf8(FT_Get_Font_Format(face.get()));
    if (format == QLatin1String("CFF"))
        return FT_IS_SFNT(face.get()) ? kFontTypeOpenTypeMarker + QStringLiteral(" CFF") : format;
    if (format == QLatin1String("TrueType"))
        return kFontTypeTrueType;
    if (format == QLatin1String("Type 1"))
        return kFontTypeType1;
    if (format == QLatin1String("CID Type 1"))
        return QStringLiteral("CID");
    if (format == QLatin1String("BDF") || format == QLatin1String("PCF") || format == QLatin1String("Windows FNT"))
        return kFontTypeBitmap;
    return format.isEmpty() ? kFontTypeUnknown : format;
}

} // namespace quillon::inspection
