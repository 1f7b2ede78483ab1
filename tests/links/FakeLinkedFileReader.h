#pragma once

#include "links/LinkedFileReader.h"

#include <QFile>
#include <QHash>

#include <atomic>

namespace quillon::test {

// A linked-file reader whose answers the test sets; heads are read from the real file.
class FakeLinkedFileReader : public links::LinkedFileReader {
public:
    QString readFileAtPath(const QString& path, qint64 length) const override
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.read(length)) : QString();
    }
    std::optional<QString> psdProfileName(const QString&) const override { return {}; }
    QString psdDuotoneColors(const QString&) const override { return {}; }
    QString colorModeOfAIFile(const QString&) const override { return aiColorMode; }
    QString imageProfileName(const QString& path, const QString& type) const override
    {
        ++imageReads;
        lastImageType = type;
        return imageProfiles.value(path);
    }
    PreCS3AIHead read4500AndFontsOfPreCS3AI(const QString&, app::AlertSink*) const override { return preCS3; }
    std::optional<VectorEPSFacts> readEPS1500AtPath(const QString&, const QString& read1500,
                                                    app::AlertSink*) const override
    {
        lastEPSHead = read1500;
        return epsFacts;
    }
    QString getRead1500ForPhotoshopEPSWithTIFFPreview(const QString&, app::AlertSink*) const override
    {
        return previewHead;
    }

    QString aiColorMode = QStringLiteral("CMYK");
    QHash<QString, QString> imageProfiles;
    PreCS3AIHead preCS3;
    std::optional<VectorEPSFacts> epsFacts;
    QString previewHead;
    mutable std::atomic<int> imageReads{0};
    mutable QString lastImageType;
    mutable QString lastEPSHead;
};

} // namespace quillon::test
