#pragma once

#include <QWidget>

class QButtonGroup;
class QComboBox;

namespace quillon::app {
class Settings;
}

namespace quillon::ui {

// The user's choices the application keeps: the row size of the result lists and the unit of
// print sizes. Changes are stored at once; `rowSizeChanged` lets the lists follow.
class PreferencesWindow : public QWidget {
    Q_OBJECT

public:
    PreferencesWindow(app::Settings& settings, QWidget* parent = nullptr);

    // Shows the stored row size (after the Help menu changed it).
    void showRowSize(int rowSize);

Q_SIGNALS:
    void rowSizeChanged(int rowSize);

private:
    app::Settings& m_settings;
    QButtonGroup* m_rowSize;
    QComboBox* m_units;
};

} // namespace quillon::ui
