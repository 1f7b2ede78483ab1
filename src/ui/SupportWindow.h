#pragma once

#include <QWidget>

namespace quillon::ui {

// The application's version and build, with the maker's support page and address.
class SupportWindow : public QWidget {
    Q_OBJECT

public:
    explicit SupportWindow(QWidget* parent = nullptr);
};

// "Version 0.1.0 (build 20240521)".
QString versionAndBuild();

} // namespace quillon::ui
