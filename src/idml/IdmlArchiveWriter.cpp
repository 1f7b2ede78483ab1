#include "idml/IdmlArchiveWriter.h"

#include "app/RegularFile.h"
#include "idml/IdmlArchive.h"

#include <QFile>

#include <zip.h>

namespace quillon::idml {

using app::makeError;
using app::Status;

struct IdmlArchiveWriter::Handle {
    zip_t* zip = nullptr;
    ~Handle()
    {
        if (zip)
            zip_discard(zip);
    }
};

IdmlArchiveWriter::IdmlArchiveWriter(QString path, std::unique_ptr<Handle> handle)
    : m_path(std::move(path)), m_handle(std::move(handle))
{
}

IdmlArchiveWriter::IdmlArchiveWriter(IdmlArchiveWriter&&) noexcept = default;
IdmlArchiveWriter& IdmlArchiveWriter::operator=(IdmlArchiveWriter&&) noexcept = default;
IdmlArchiveWriter::~IdmlArchiveWriter() = default;

app::Result<IdmlArchiveWriter> IdmlArchiveWriter::create(const QString& path)
{
    int code = 0;
    zip_t* zip = zip_open(app::localBytesOfPath(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!zip) {
        return makeError(QStringLiteral("the archive cannot be written: %1").arg(zipOpenErrorText(code)), path);
    }
    auto handle = std::make_unique<Handle>();
    handle->zip = zip;
    return IdmlArchiveWriter(path, std::move(handle));
}

Status IdmlArchiveWriter::addMimetype()
{
    return addFile(QStringLiteral("mimetype"), QByteArrayLiteral("application/vnd.adobe.indesign-idml-package"), false);
}

Status IdmlArchiveWriter::addFile(const QString& name, const QByteArray& bytes, bool compress, quint32 unixMode)
{
    zip_t* zip = m_handle->zip;
    if (!zip)
        return makeError(QStringLiteral("the archive is already closed"), m_path, name);
    const QByteArray& kept = m_contents.emplace_back(bytes);
    zip_source_t* source = zip_source_buffer(zip, kept.constData(), zip_uint64_t(kept.size()), 0);
    const zip_int64_t index =
        source ? zip_file_add(zip, name.toUtf8().constData(), source, ZIP_FL_OVERWRITE | ZIP_FL_ENC_UTF_8) : -1;
    if (index < 0) {
        zip_source_free(source);
        return makeError(QStringLiteral("the entry cannot be added: %1").arg(QString::fromUtf8(zip_strerror(zip))),
                         m_path, name);
    }
    const auto entry = zip_uint64_t(index);
    if (zip_set_file_compression(zip, entry, compress ? ZIP_CM_DEFLATE : ZIP_CM_STORE, 0) != 0 ||
        zip_file_set_external_attributes(zip, entry, 0, ZIP_OPSYS_UNIX, zip_uint32_t(unixMode) << 16) != 0)
        return makeError(QStringLiteral("the entry cannot be set up: %1").arg(QString::fromUtf8(zip_strerror(zip))),
                         m_path, name);
    return {};
}

Status IdmlArchiveWriter::close()
{
    if (!m_handle->zip)
        return makeError(QStringLiteral("the archive is already closed"), m_path);
    if (zip_close(m_handle->zip) != 0)
        return makeError(
            QStringLiteral("the archive cannot be written: %1").arg(QString::fromUtf8(zip_strerror(m_handle->zip))),
            m_path);
    m_handle->zip = nullptr;
    m_contents.clear();
    return {};
}

} // namespace quillon::idml
