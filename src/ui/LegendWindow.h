#pragma once

#include <QWidget>

namespace quillon::ui {

// What each small picture of the result lists means, grouped as the lists use them.
class LegendWindow : public QWidget {
    Q_OBJECT

public:
    explicit LegendWindow(QWidget* parent = nullptr);
};

} // namespace quillon::ui
