#include "preflight/StoredData.h"

#include "app/AppPaths.h"
#include "app/Log.h"
#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "inspection/ColorRecordKeys.h"

#include <QDir>
#include <QFileInfo>

#include <array>
#include <optional>

using namespace quillon::inspection;

namespace quillon::preflight {

namespace {

const std::array<QString, 3> kStoredDataFiles{QStringLiteral("font_data.plist"), QStringLiteral("color_data.plist"),
                                              QStringLiteral("link_data.plist")};

app::Status writeDocumentEntry(const QString& dataFolder, const QString& fileName, const QString& documentPath,
                               const QVariantMap& entry)
{
    if (!QDir().mkpath(dataFolder))
        return app::makeError(QStringLiteral("the folder for the preflight data cannot be made"), dataFolder);
    const QString path = QDir(dataFolder).filePath(fileName);
    QVariantMap root;
    if (QFileInfo::exists(path)) {
        auto existing = app::readPropertyListDictionary(path, app::kMaxDataFileBytes);
        if (existing)
            root = std::move(existing).value();
        else
            app::logFailure(QStringLiteral("read %1, replacing it: %2").arg(path, existing.error().text()));
    }
    root.insert(documentPath, entry);
    return app::writePropertyListFile(root, path, app::Durability::Unflushed);
}

QString storedDataPath(const QString& fileName)
{
    return QDir(app::applicationSupportFolder()).filePath(fileName);
}

// The array a stored-data file holds; empty for a missing file, an Error for one that is not an array.
app::Result<QVariantList> readStoredArray(const QString& path)
{
    if (!QFileInfo::exists(path))
        return QVariantList();
    auto value = app::readPropertyListFile(path, app::kMaxDataFileBytes);
    if (!value)
        return value.error();
    if (value->typeId() != QMetaType::QVariantList)
        return app::makeError(QStringLiteral("the file does not hold an array"), path);
    return value->toList();
}

app::Status appendToStoredArray(const QString& path, const QVariantList& additions)
{
    auto stored = readStoredArray(path);
    if (!stored)
        return stored.error();
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        return app::makeError(QStringLiteral("the application-support folder cannot be made"), folder);
    return app::writePropertyListFile(*stored + additions, path);
}

} // namespace

QVariantMap fontDataEntry(const QString& documentPath, const QVariantList& fonts)
{
    return {{app::kGroupNameKey, QFileInfo(documentPath).fileName()},
            {app::kGroupIsDockKey, true},
            {app::kGroupChildrenKey, fonts}};
}

QVariantMap colorDataEntry(const QString& documentPath, const ColorInspection& inspection)
{
    return {{app::kGroupNameKey, QFileInfo(documentPath).fileName()},
            {app::kGroupIsDockKey, true},
            {app::kGroupChildrenKey, inspection.records},
            {kColorDocUnusedNamesKey, inspection.namesOfUnusedColors},
            {kColorDocRegistrationInTextCountKey, inspection.registrationInTextCount}};
}

app::Status writeFontDataFile(const QString& dataFolder, const QString& documentPath, const QVariantList& fonts)
{
    return writeDocumentEntry(dataFolder, app::kFontDataFileName, documentPath, fontDataEntry(documentPath, fonts));
}

app::Status writeColorDataFile(const QString& dataFolder, const QString& documentPath,
                               const ColorInspection& inspection)
{
    return writeDocumentEntry(dataFolder, app::kColorDataFileName, documentPath,
                              colorDataEntry(documentPath, inspection));
}

app::Status storeDataForFonts(const QVariantList& fonts, const QVariantList& colors, const QVariantList& links)
{
    app::logEntry("storeDataForFonts");
    const std::array<const QVariantList*, 3> additions{&fonts, &colors, &links};
    std::optional<app::Error> firstError;
    for (std::size_t i = 0; i < kStoredDataFiles.size(); ++i) {
        if (additions[i]->isEmpty())
            continue;
        const app::Status appended = appendToStoredArray(storedDataPath(kStoredDataFiles[i]), *additions[i]);
        if (!appended && !firstError)
            firstError = appended.error();
    }
    if (firstError)
        return *firstError;
    return {};
}

QVariantList getStoredData()
{
    QVariantList data;
    for (const QString& fileName : kStoredDataFiles) {
        auto stored = readStoredArray(storedDataPath(fileName));
        if (!stored)
            app::logFailure(QStringLiteral("read stored data: %1").arg(stored.error().text()));
        data.append(QVariant(stored.valueOr({})));
    }
    return data;
}

void deleteStoredData() {}

} // namespace quillon::preflight
