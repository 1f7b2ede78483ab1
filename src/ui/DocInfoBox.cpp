#include "ui/DocInfoBox.h"

#include <QComboBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>

namespace quillon::ui {

namespace {

const QColor kRed(0xCC, 0x10, 0x10);
const QColor kGreen(0x2E, 0xA0, 0x43);

// The status light of the verdict and of each batch document.
QPixmap statusLight(bool hasErrors)
{
    QPixmap light(12, 12);
    light.fill(Qt::transparent);
    QPainter painter(&light);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(hasErrors ? kRed : kGreen);
    painter.drawEllipse(1, 1, 10, 10);
    return light;
}

} // namespace

DocInfoBox::DocInfoBox(QWidget* parent) : QGroupBox(QStringLiteral("Document"), parent)
{
    auto* layout = new QVBoxLayout(this);
    m_docNamesPopup = new QComboBox(this);
    m_docNamesPopup->setObjectName(QStringLiteral("docNamesPopup"));
    m_docNamesPopup->hide();
    layout->addWidget(m_docNamesPopup);
    m_form = new QFormLayout();
    m_form->setLabelAlignment(Qt::AlignRight);
    m_form->setHorizontalSpacing(8);
    m_form->setVerticalSpacing(3);
    layout->addLayout(m_form);

    auto* statusRow = new QHBoxLayout();
    m_statusLight = new QLabel(this);
    statusRow->addWidget(m_statusLight);
    QLabel* results = addField(QStringLiteral("preflightResultsField"), {});
    results->setWordWrap(true);
    statusRow->addWidget(results, 1);
    layout->addLayout(statusRow);
    for (const auto& [name, title] : {std::pair{"nameField", "Name:"},
                                      {"pathField", "Path:"},
                                      {"creationDateField", "Created:"},
                                      {"modDateField", "Modified:"},
                                      {"InDesignVersionField", "InDesign:"},
                                      {"numOfPagesField", "Pages:"},
                                      {"sizeField", "File size:"},
                                      {"pageSizeField", "Page size:"},
                                      {"bleedField", "Bleed:"},
                                      {"slugField", "Slug:"}})
        m_form->addRow(QString::fromUtf8(title), addField(QString::fromUtf8(name), {}));
    for (const char* name : {"nameField", "pathField"}) {
        QLabel* field = m_fields.value(QString::fromUtf8(name));
        field->setWordWrap(true);
        field->setMinimumWidth(1); // long names wrap rather than widen the pane
    }
    layout->addStretch(1);

    connect(m_docNamesPopup, &QComboBox::activated, this,
            [this](int index) { Q_EMIT batchDocumentChosen(m_docNamesPopup->itemData(index).toString()); });
}

QLabel* DocInfoBox::addField(const QString& objectName, const QString& title)
{
    auto* field = new QLabel(title, this);
    field->setObjectName(objectName);
    field->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_fields.insert(objectName, field);
    return field;
}

void DocInfoBox::setDocInfo(const inspection::QNDocInfo& info)
{
    const std::pair<const char*, QString> values[] = {
        {"nameField", info.docName()},
        {"pathField", info.docPath()},
        {"creationDateField", info.creationDateStr()},
        {"modDateField", info.modDateStr()},
        {"InDesignVersionField", info.InDesignVersion()},
        {"numOfPagesField", info.numberOfPagesStr()},
        {"sizeField", info.fileSizeStr()},
        {"pageSizeField", info.pageSizeStr()},
        {"bleedField", info.bleedStr()},
        {"slugField", info.slugStr()},
    };
    for (const auto& [name, value] : values)
        m_fields.value(QString::fromUtf8(name))->setText(value);
}

void DocInfoBox::setPreflightStatus(const results::PreflightStatus& status)
{
    QLabel* field = m_fields.value(QStringLiteral("preflightResultsField"));
    field->setText(status.text);
    const bool hasErrors = status.total != 0;
    QPalette palette = field->palette();
    palette.setColor(QPalette::WindowText, hasErrors ? kRed : this->palette().color(QPalette::WindowText));
    field->setPalette(palette);
    m_statusLight->setPixmap(statusLight(hasErrors));
}

void DocInfoBox::clearAllFields()
{
    for (QLabel* field : std::as_const(m_fields))
        field->clear();
    m_statusLight->clear();
}

void DocInfoBox::setBatchDocuments(const QList<BatchDocument>& documents)
{
    m_docNamesPopup->clear();
    m_docNamesPopup->setVisible(!documents.isEmpty());
    for (const BatchDocument& document : documents)
        m_docNamesPopup->addItem(QIcon(statusLight(document.hasPreflightErrors)), QFileInfo(document.path).fileName(),
                                 document.path);
}

void DocInfoBox::selectMenuForDocPath(const QString& path)
{
    const int index = m_docNamesPopup->findData(path);
    if (index >= 0)
        m_docNamesPopup->setCurrentIndex(index);
}

QString DocInfoBox::fieldText(const QString& fieldName) const
{
    const QLabel* field = m_fields.value(fieldName);
    return field ? field->text() : QString();
}

} // namespace quillon::ui
