#pragma once

#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

namespace quillon::app {
class AlertSink;
}

namespace quillon::links {

// What the link analysis reads from linked files on disk: Photoshop, EPS and Illustrator heads and
// the profile of other images. Implementations are stateless and called from several threads at
// once. Texts are the files' bytes read as Latin-1, so offsets in them are byte offsets.
class LinkedFileReader {
public:
    virtual ~LinkedFileReader() = default;

    // The first `length` bytes of the file (fewer when it is shorter; empty when unreadable).
    virtual QString readFileAtPath(const QString& path, qint64 length) const = 0;

    // The embedded ICC profile name of a Photoshop file ("" when it has none); none when the
    // file could not be read at all.
    virtual std::optional<QString> psdProfileName(const QString& path) const = 0;

    // The ink names of a duotone Photoshop file, separated by "\r\n".
    virtual QString psdDuotoneColors(const QString& path) const = 0;

    // The colour model of an Illustrator file: "CMYK", "RGB" or "?".
    virtual QString colorModeOfAIFile(const QString& path) const = 0;

    // The ICC profile name of an image file of the given type (its extension); "" when none.
    virtual QString imageProfileName(const QString& path, const QString& type) const = 0;

    // An Illustrator file older than CS3: the text to search for colours (the PostScript part) and
    // its fonts joined by line feeds ("" for none). Unreadable files show the "could not be
    // parsed" alert through `alerts` and give two empty texts.
    struct PreCS3AIHead {
        QString text;
        QString fonts;
    };
    virtual PreCS3AIHead read4500AndFontsOfPreCS3AI(const QString& path, app::AlertSink* alerts) const = 0;

    // The header comments of a vector EPS, given its first 1500 characters: colour mode, spot
    // colour count (a number, or "-"), spot colour list (or "-"), font count (a number, "?", "-",
    // or "E<n>" for embedded fonts) and font list ("?" or "-"). None when the file cannot be opened.
    struct VectorEPSFacts {
        QVariant colorMode;
        QVariant colorCount;
        QVariant colorList;
        QVariant fontCount;
        QVariant fontList;
    };
    virtual std::optional<VectorEPSFacts> readEPS1500AtPath(const QString& path, const QString& read1500,
                                                            app::AlertSink* alerts) const = 0;

    // The PostScript head (1500 characters) of a Photoshop EPS behind a binary preview header;
    // "" when there is none. Unreadable files show the "could not be parsed" alert.
    virtual QString getRead1500ForPhotoshopEPSWithTIFFPreview(const QString& path, app::AlertSink* alerts) const = 0;
};

} // namespace quillon::links

namespace quillon::links {

// The reader of the file-inspection layer.
std::unique_ptr<LinkedFileReader> makeLinkedFileReader();

} // namespace quillon::links
