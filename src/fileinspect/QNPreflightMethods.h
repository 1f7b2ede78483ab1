#pragma once

#include "app/Result.h"
#include "app/Strings.h"
#include "fileinspect/ByteSource.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace quillon::app {
class AlertSink;
}

namespace quillon::fileinspect {

// The linked-file reader: pulls the few facts a preflight needs out of Photoshop, EPS,
// Illustrator and other image files on disk by their headers and comments, without decoding
// images or interpreting PostScript.
//
// Byte offsets, markers and fallbacks are the file formats' and this reader's long-standing
// behaviour, quirks included; they are matched by the link rules and by stored data, so keep them.
// Reader texts keep one character per byte, so offsets into a head text are file offsets; the
// values handed out (names of profiles, inks, colours, fonts) drop NUL padding.
//
// Every method that takes a path opens the file itself; the ByteSource forms let a caller that
// already opened the file (or a buffer, in tests) skip the reopening. Nothing here throws or
// fails to its caller: unreadable files give the documented fallbacks ("?", "-", empty texts).
//
// An instance keeps the state of the last file read (aiVersion, the image properties) and
// belongs to one thread; use one per thread. Alerts go to the sink given, from the calling
// thread; without a sink they are only logged.
class QNPreflightMethods {
public:
    explicit QNPreflightMethods(app::AlertSink* alerts = nullptr);

    // A fresh instance for the script objects.
    static QNPreflightMethods pfmForAS(app::AlertSink* alerts = nullptr);

    // ---- Shared byte utilities

    // The first `length` bytes of the file (fewer when it is shorter) as reader text.
    QString readFileAtPath(const QString& path, qint64 length) const;
    // The big-endian value of the first four bytes (of all bytes when fewer; 0 for none).
    static quint32 intFromHex(QByteArrayView bytes);

    // ---- Photoshop

    // Colour-mode names by the decimal text of the mode number ("4" -> "CMYK"); 5 and 6 have none.
    static const QMap<QString, QString>& psdColors();
    // "Monotone", "Duotone", "Tritone", "Quadtone": index = number of inks - 1.
    static const QStringList& duotoneTypes();

    // One element: the name of the embedded ICC profile (resource 1039), or the empty text.
    QStringList psdPropsFromData(const QString& path);
    QStringList psdPropsFromData(const ByteSource& file);
    // The name in an ICC profile taken from a Photoshop file: the 26 bytes 12 after the second
    // "desc"; when there is none, the image-properties reading of the file at `psdPath`.
    QString profileName(const QByteArray& profile, const QString& psdPath);
    QString profileName(const QByteArray& profile, const ByteSource& psdFile);
    // The duotone ink names, separated by "\r\n"; "?" when the first cannot be read.
    QString psdDuotoneColors(const QString& path) const;
    QString psdDuotoneColors(const ByteSource& file) const;
    // The resolution stored 15 bytes after "Resolution" in the first 1000 bytes; 0 when absent.
    int resOfOldPSD(const ByteSource& file) const;
    // The names of an alpha-channel names resource (4-byte length, then UTF-16 text).
    static QStringList alphaNames(const QByteArray& data);
    // [actual ppi, effective ppi] as whole numbers from the width in points and in pixels and
    // the horizontal scale in percent (a decimal comma is accepted).
    static QStringList duotoneRes(const QString& points, const QString& pixels, const QString& horScale);
    // A byte count in binary units: "1024 bytes", "1 KB", "1.5 MB", "2.25 GB".
    static QString fileSize(double bytes);
    // The scale magnitudes, "###0.#": one text when equal, else "hor x vert" ("50x25").
    static QString finalScaleHor(double hor, double vert);

    // ---- EPS and Illustrator

    // The major Illustrator version found in the last EPS head, 0 when not written by Illustrator.
    unsigned long aiVersion() const { return m_aiVersion; }

    // A vector EPS from its first 1500 characters: [colour mode, spot count (number or "-"), spot
    // list (text or "-"), font count (number, "?", "-" or "E<n>"), font list (text, "?" or "-")].
    QVariantList readEPS1500AtPath(const QString& path, const QString& read1500);
    QVariantList readEPS1500(const ByteSource& file, const QString& read1500);
    // The major version in "%%Creator: Adobe Illustrator(R) <version>" of a head, 0 without it.
    static unsigned long illustratorVersion(const QString& head);
    // The head to analyse: for Illustrator 13 and later with a thumbnail, the 1500 characters
    // after the thumbnail data; otherwise the head itself. Sets aiVersion.
    QString checkForCS3AndThumbInAIEPS(const ByteSource& file, const QString& head);
    // "CMYK", "RGB", "-" (not Illustrator) or "?" (not found), by aiVersion.
    QString colModeOfVectorEPS(const QString& path, const QString& read1500);
    QString colModeOfVectorEPS(const ByteSource& file, const QString& read1500);
    // [count (number), list] from "%%DocumentCustomColors"; ["-", "-"] when its markers are
    // missing or out of order.
    QVariantList spotColorsOfVectorEPS(const QString& head) const;
    // [count (number), list] from "%%DocumentFonts: " at `docFontsRange` in the head, the
    // embedded fonts when the comment is empty, ["?", "?"] when its end cannot be found.
    QVariantList fontsOfVectorEPS(const QString& head, app::FoundRange docFontsRange, const QString& path);
    QVariantList fontsOfVectorEPS(const QString& head, app::FoundRange docFontsRange, const ByteSource& file);
    // ["E<n>", "Embedded fonts:\r<names>"] of the subset fonts embedded in the file, or ["-", "-"].
    QStringList embeddedFontsOfVectorEPS(const QString& path);
    QStringList embeddedFontsOfVectorEPS(const ByteSource& file);
    // The PostScript head (1500 characters from "%!PS-Adobe-3.0 EPSF-3.0") of an EPS that begins
    // with a binary preview header; empty when not found.
    QString getRead1500ForPhotoshopEPSWithTIFFPreview(const QString& path);
    QString getRead1500ForPhotoshopEPSWithTIFFPreview(const ByteSource& file);
    // The Illustrator colour model of "%AI9_ColorModel": "CMYK", "RGB" or "?".
    QString colorModeOfAIFile(const QString& path) const;
    QString colorModeOfAIFile(const ByteSource& file) const;

    // What read4500AndFontsOfPreCS3AI finds: the 4500 characters from "%!PS-Adobe-3.0" and the
    // font names of the file joined by line feeds. Both empty when the file begins with the
    // marker, lacks it or cannot be read; an empty font list means no fonts.
    struct AIHeadAndFonts {
        QString head;
        QString fonts;
    };
    AIHeadAndFonts read4500AndFontsOfPreCS3AI(const QString& path);
    AIHeadAndFonts read4500AndFontsOfPreCS3AI(const ByteSource& file);
    // The names of the "/FontName" entries, each once, joined by line feeds; empty when none.
    static QString fontsOfAIFile(const QString& text);
    static QString fontsOfAIFile(const ByteSource& file);

    // ---- Image properties (JPEG, PNG, TIFF, Photoshop)

    // Reads the properties of the file's first image into mMetadata, profName and, when `type`
    // contains "tif", tiffCompr. Always returns false and, when `error` is given, stores the
    // "file read corrupt" error in it: callers read profName and tiffCompr instead.
    bool readFromURL(const QString& path, const QString& type, app::Error* error = nullptr);
    bool readFromURL(const ByteSource& file, const QString& type, app::Error* error = nullptr);
    // The embedded ICC profile's description, or the empty text.
    QString profName() const { return m_profName; }
    // The compression name of the last TIFF: "1" -> "", "5" -> "LZW", "7" -> "JPEG", "8" -> "ZIP",
    // nothing for other codes or when none was read.
    std::optional<QString> tiffCompr() const;
    // The name of a TIFF compression code by the table above.
    static std::optional<QString> tiffCompressionName(int code);
    // The properties of the last image read ("PixelWidth", "ProfileName", "{TIFF}" ...).
    const QVariantMap& mMetadata() const { return m_metadata; }

private:
    // The 26 bytes of the profile name, or nothing when the profile has no second "desc".
    static std::optional<QString> fixedProfileName(const QByteArray& profile);
    void alertUnparsable(const ByteSource& file) const;

    app::AlertSink* m_alerts = nullptr;
    unsigned long m_aiVersion = 0;
    QVariantMap m_metadata;
    QString m_profName;
    std::optional<int> m_tiffCompression;
};

} // namespace quillon::fileinspect
