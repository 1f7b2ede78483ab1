#pragma once

#include "inspection/DocInfo.h"
#include "results/Summary.h"

#include <QGroupBox>
#include <QHash>
#include <QList>

class QComboBox;
class QFormLayout;
class QLabel;

namespace quillon::ui {

// The document's information: name, path, dates, pages, size, page size, bleed, slug and
// InDesign version, the preflight's verdict, and after a batch a pop-up of its documents.
class DocInfoBox : public QGroupBox {
    Q_OBJECT

public:
    explicit DocInfoBox(QWidget* parent = nullptr);

    void setDocInfo(const inspection::QNDocInfo& info);
    // "No errors found" with a green light, or the red count of errors per list.
    void setPreflightStatus(const results::PreflightStatus& status);
    // Empties the eleven text fields.
    void clearAllFields();

    // The documents of a batch, in order, each with whether it has preflight errors; an empty
    // list hides the pop-up.
    struct BatchDocument {
        QString path;
        bool hasPreflightErrors = false;
    };
    void setBatchDocuments(const QList<BatchDocument>& documents);
    // Selects the pop-up's entry of that path without announcing it.
    void selectMenuForDocPath(const QString& path);
    QComboBox* docNamesPopup() const { return m_docNamesPopup; }
    // The text a field shows, by its name ("nameField", "pageSizeField", "preflightResultsField"...).
    QString fieldText(const QString& fieldName) const;

Q_SIGNALS:
    // The user chose a document of the batch.
    void batchDocumentChosen(const QString& path);

private:
    QLabel* addField(const QString& objectName, const QString& title);

    QComboBox* m_docNamesPopup;
    QLabel* m_statusLight;
    QHash<QString, QLabel*> m_fields;
    QFormLayout* m_form;
};

} // namespace quillon::ui
