#pragma once

#include <QImage>
#include <QVariantMap>
#include <QWidget>

class QFormLayout;
class QLabel;

namespace quillon::ui {

// The selected link's file facts with a preview and a thumbnail of the picture. The picture is
// read and scaled on a worker thread, so a large file never holds up the window.
class InformationPane : public QWidget {
    Q_OBJECT

public:
    explicit InformationPane(QWidget* parent = nullptr);

    // The facts shown, label and value, in order.
    QList<QPair<QString, QString>> shownFacts() const;
    QPixmap preview() const;
    QPixmap thumbnail() const;

    // The picture of a file scaled to fit `bound` (aspect kept, never enlarged); null when the
    // file is no picture the image readers know. Safe on any thread.
    static QImage scaledPicture(const QString& path, QSize bound, QSize* fullSize = nullptr);

public Q_SLOTS:
    // Shows the link record's facts; an empty record clears the pane.
    void setInfoForFile(const QVariantMap& record);

Q_SIGNALS:
    // The preview of the record last given has been read (or found unreadable).
    void previewReady();

private:
    void showPicture(quint64 generation, const QImage& picture, QSize fullSize);
    // Adds a row at `row` (the end when -1); an empty value adds nothing.
    void addFact(const QString& label, const QString& value, int row = -1);

    QLabel* m_thumbnail;
    QLabel* m_name;
    QLabel* m_preview;
    QFormLayout* m_facts;
    QList<QPair<QString, QString>> m_shown;
    quint64 m_generation = 0; // drops the picture of a record that is no longer shown
};

} // namespace quillon::ui
