#include "ui/InformationPane.h"

#include "links/LinkRecordKeys.h"
#include "ui/Icons.h"

#include <QDateTime>
#include <QFileInfo>
#include <QFormLayout>
#include <QImageReader>
#include <QLabel>
#include <QPointer>
#include <QThreadPool>
#include <QVBoxLayout>

namespace quillon::ui {

namespace lk = links;

namespace {

constexpr int kThumbnailSize = 48;
constexpr QSize kPreviewBound(280, 180);

QString textOf(const QVariantMap& record, const QString& key)
{
    const QVariant value = record.value(key);
    if (value.typeId() == QMetaType::QDateTime)
        return QLocale().toString(value.toDateTime(), QLocale::ShortFormat);
    return value.toString().trimmed();
}

} // namespace

InformationPane::InformationPane(QWidget* parent)
    : QWidget(parent), m_thumbnail(new QLabel), m_name(new QLabel), m_preview(new QLabel), m_facts(new QFormLayout)
{
    m_thumbnail->setFixedSize(kThumbnailSize, kThumbnailSize);
    m_thumbnail->setAlignment(Qt::AlignCenter);
    QFont bold = m_name->font();
    bold.setBold(true);
    m_name->setFont(bold);
    m_name->setWordWrap(true);
    m_name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_preview->setMinimumSize(kPreviewBound);
    m_preview->setAlignment(Qt::AlignCenter);
    m_facts->setLabelAlignment(Qt::AlignRight);
    m_facts->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);

    auto* heading = new QHBoxLayout;
    heading->addWidget(m_thumbnail);
    heading->addWidget(m_name, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(heading);
    layout->addWidget(m_preview);
    layout->addLayout(m_facts);
    layout->addStretch(1);
}

void InformationPane::addFact(const QString& label, const QString& value, int row)
{
    if (value.isEmpty())
        return;
    auto* field = new QLabel(value);
    field->setWordWrap(true);
    field->setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (row < 0 || row > m_facts->rowCount())
        row = m_facts->rowCount();
    m_facts->insertRow(row, label + QLatin1Char(':'), field);
    m_shown.insert(row, {label, value});
}

void InformationPane::setInfoForFile(const QVariantMap& record)
{
    ++m_generation;
    while (m_facts->rowCount() > 0)
        m_facts->removeRow(0);
    m_shown.clear();
    m_thumbnail->clear();
    m_preview->clear();
    // No empty box where a missing or unreadable file has no picture: the facts move up.
    m_preview->hide();
    m_name->clear();
    if (record.isEmpty())
        return;

    const QString path = textOf(record, lk::kLinkPathKey);
    m_name->setText(textOf(record, lk::kLinkNameKey));
    addFact(QStringLiteral("Kind"), textOf(record, lk::kLinkKindKey));
    addFact(QStringLiteral("Status"), textOf(record, lk::kLinkStatusKey));
    addFact(QStringLiteral("Size"), textOf(record, lk::kLinkSizeKey));
    addFact(QStringLiteral("Color"), textOf(record, lk::kLinkColorKey));
    addFact(QStringLiteral("Profile"), textOf(record, lk::kLinkProfileKey));
    addFact(QStringLiteral("Actual ppi"), textOf(record, lk::kLinkActualResKey));
    addFact(QStringLiteral("Effective ppi"), textOf(record, lk::kLinkEffectiveResKey));
    addFact(QStringLiteral("Scale"), textOf(record, lk::kLinkScaleKey));
    addFact(QStringLiteral("Page"), textOf(record, lk::kLinkPageKey));
    const QFileInfo file(path);
    if (file.isFile())
        addFact(QStringLiteral("Modified"), QLocale().toString(file.lastModified(), QLocale::ShortFormat));
    addFact(QStringLiteral("Path"), path);

    m_thumbnail->setPixmap(namedIcon(QStringLiteral("fileIcon")).pixmap(kThumbnailSize, kThumbnailSize));
    if (!file.isFile()) {
        Q_EMIT previewReady();
        return;
    }
    const quint64 generation = m_generation;
    QPointer<InformationPane> pane(this);
    QThreadPool::globalInstance()->start([pane, path, generation] {
        QSize fullSize;
        const QImage picture = scaledPicture(path, kPreviewBound, &fullSize);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [pane, generation, picture, fullSize] {
                if (pane)
                    pane->showPicture(generation, picture, fullSize);
            },
            Qt::QueuedConnection);
    });
}

void InformationPane::showPicture(quint64 generation, const QImage& picture, QSize fullSize)
{
    if (generation != m_generation)
        return;
    if (!picture.isNull()) {
        m_preview->setPixmap(QPixmap::fromImage(picture));
        m_preview->show();
        m_thumbnail->setPixmap(QPixmap::fromImage(
            picture.scaled(kThumbnailSize, kThumbnailSize, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    }
    if (fullSize.isValid())
        addFact(QStringLiteral("Pixels"), QStringLiteral("%1 × %2").arg(fullSize.width()).arg(fullSize.height()),
                m_facts->rowCount() - 1); // above the path, which is last
    Q_EMIT previewReady();
}

QImage InformationPane::scaledPicture(const QString& path, QSize bound, QSize* fullSize)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (!size.isValid())
        return {};
    if (fullSize)
        *fullSize = size;
    // Reading at the shown size lets JPEG decode a fraction of the pixels.
    const QSize shown = size.scaled(bound, Qt::KeepAspectRatio).boundedTo(size);
    reader.setScaledSize(shown);
    return reader.read();
}

QList<QPair<QString, QString>> InformationPane::shownFacts() const
{
    return m_shown;
}

QPixmap InformationPane::preview() const
{
    return m_preview->pixmap();
}

QPixmap InformationPane::thumbnail() const
{
    return m_thumbnail->pixmap();
}

} // namespace quillon::ui
