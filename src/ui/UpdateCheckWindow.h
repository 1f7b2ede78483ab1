#pragma once

#include <QWidget>

namespace quillon::ui {

// Tells of a newer version: the title "New version of Quillon is available.", the message, and
// links to the release notes, the download page and the support address.
class UpdateCheckWindow : public QWidget {
    Q_OBJECT

public:
    UpdateCheckWindow(const QString& title, const QString& message, QWidget* parent = nullptr);
};

} // namespace quillon::ui
