#pragma once

// The per-format header readers behind readImageProperties. Each checks its signature and
// returns false when the file is not of its format or breaks off before the image size.

#include "fileinspect/ImageSource.h"

namespace quillon::fileinspect::formats {

bool readJpeg(const ByteSource& file, ImageProperties& properties);
bool readPng(const ByteSource& file, ImageProperties& properties);
bool readTiff(const ByteSource& file, ImageProperties& properties);
bool readPhotoshop(const ByteSource& file, ImageProperties& properties);
// Any other image format the metadata library knows (JPEG 2000, WebP, GIF, BMP ...).
bool readWithMetadataLibrary(const ByteSource& file, ImageProperties& properties);

// Big-endian integers at an offset; 0 where the source ends.
quint32 be32(const ByteSource& file, qint64 offset);
quint16 be16(const ByteSource& file, qint64 offset);

} // namespace quillon::fileinspect::formats
