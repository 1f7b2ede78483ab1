#pragma once

#include "ui/ResultModel.h"

#include <functional>

namespace quillon::ui {

// The links list: every placed link, its name red and its icon beside it, each judged column red,
// the status and alert pictures, the pull-downs of the fonts and spot colours in Illustrator and
// EPS files. The name of a file that is there can be edited: the renamer renames and relinks.
class LinksModel : public ResultModel {
    Q_OBJECT

public:
    explicit LinksModel(QObject* parent = nullptr);

    // Renames the file of the row at `index` to `newName`; true when the rows changed.
    using Renamer = std::function<bool(const QModelIndex& index, const QString& newName)>;
    void setRenamer(Renamer renamer) { m_renamer = std::move(renamer); }
    // While a preflight runs no name can be edited.
    void setEditable(bool editable) { m_editable = editable; }

    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

protected:
    QVariant recordData(const QVariantMap& record, const ResultColumn& column, int role) const override;

private:
    Renamer m_renamer;
    bool m_editable = true;
};

// The fonts list: name, type with its picture, status picture, PDF embedding, PostScript name,
// location and the alert picture whose tool tip lists the alerts.
class FontsModel : public ResultModel {
    Q_OBJECT

public:
    explicit FontsModel(QObject* parent = nullptr);

protected:
    QVariant recordData(const QVariantMap& record, const ResultColumn& column, int role) const override;
};

// The colours list: name with its colour sample, model and space pictures framed red when a
// check forbids them, usage, component values and the alert picture.
class ColorsModel : public ResultModel {
    Q_OBJECT

public:
    explicit ColorsModel(QObject* parent = nullptr);

protected:
    QVariant recordData(const QVariantMap& record, const ResultColumn& column, int role) const override;
};

} // namespace quillon::ui
