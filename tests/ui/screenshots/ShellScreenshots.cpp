// Renders the shell's windows to PNG files for a person to look at: the alert panel with a short
// and a long message, the legend, and the metadata and information panes for real pictures.
// Usage: shell_screenshots <output folder> <samples folder>. Fails when a picture is not written.

#include "fileinspect/PXMetadataController.h"
#include "links/LinkRecordKeys.h"
#include "ui/CustomAlert.h"
#include "ui/InformationPane.h"
#include "ui/LegendWindow.h"
#include "ui/MetadataPane.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QTimer>

#include <cstdio>
#include <memory>

using namespace quillon;

namespace {

bool writePicture(QWidget& widget, const QString& path)
{
    widget.show();
    QApplication::processEvents();
    const bool saved = widget.grab().save(path);
    std::printf("%s %s\n", saved ? "wrote" : "FAILED", qPrintable(path));
    return saved;
}

bool save(QWidget& widget, const QString& path)
{
    widget.adjustSize();
    return writePicture(widget, path);
}

bool saveAlert(const QString& message, const QString& path)
{
    const app::AlertRequest request{QStringLiteral("Some links could not be copied"), message,
                                    QStringList{QStringLiteral("Continue"), QStringLiteral("Stop Packaging")}, true};
    std::unique_ptr<ui::CustomAlertDialog> dialog(ui::CustomAlertDialog::forRequest(request, nullptr));
    dialog->setShowsSuppressionButton(true);
    return save(*dialog, path);
}

bool saveDetailPanes(const QString& picture, const QString& kind, const QString& path)
{
    QWidget window;
    auto* information = new ui::InformationPane;
    auto* metadata = new ui::MetadataPane;
    auto* layout = new QHBoxLayout(&window);
    layout->addWidget(information);
    layout->addWidget(metadata, 1);
    window.resize(820, 560);
    fileinspect::PXMetadataController controller;
    metadata->setMetadataForFile(picture, controller.readFromURL(picture));
    QEventLoop loop;
    QObject::connect(information, &ui::InformationPane::previewReady, &loop, &QEventLoop::quit);
    QTimer::singleShot(10000, &loop, &QEventLoop::quit);
    information->setInfoForFile({{links::kLinkPathKey, QFileInfo(picture).canonicalFilePath()},
                                 {links::kLinkNameKey, QFileInfo(picture).fileName()},
                                 {links::kLinkKindKey, kind},
                                 {links::kLinkStatusKey, links::kLinkStatusOK},
                                 {links::kLinkColorKey, QStringLiteral("RGB")},
                                 {links::kLinkActualResKey, QStringLiteral("72")},
                                 {links::kLinkEffectiveResKey, QStringLiteral("144")},
                                 {links::kLinkScaleKey, QStringLiteral("50")},
                                 {links::kLinkPageKey, QStringLiteral("3")}});
    loop.exec();
    return writePicture(window, path);
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: shell_screenshots <output folder> <samples folder>\n");
        return 64;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    const QDir samples(QString::fromLocal8Bit(argv[2]));
    QDir().mkpath(out.path());
    bool ok = saveAlert(QStringLiteral("The file is locked."), out.filePath(QStringLiteral("shell-alert-short.png")));
    ok &= saveAlert(QStringLiteral("These links could not be copied into the package folder because they are missing "
                                   "or cannot be read:\n\n") +
                        QStringLiteral("/Volumes/Work/Spring catalogue/Links/cover-photo-final-v3.tif\n").repeated(14) +
                        QStringLiteral("\nPackaging can continue without them."),
                    out.filePath(QStringLiteral("shell-alert-long.png")));
    ui::LegendWindow legend;
    ok &= save(legend, out.filePath(QStringLiteral("shell-legend.png")));
    ok &= saveDetailPanes(samples.filePath(QStringLiteral("jpeg/flower.jpg")), QStringLiteral("JPEG"),
                          out.filePath(QStringLiteral("shell-panes-jpeg.png")));
    ok &= saveDetailPanes(samples.filePath(QStringLiteral("tiff/hopper.tif")), QStringLiteral("TIFF"),
                          out.filePath(QStringLiteral("shell-panes-tiff.png")));
    return ok ? 0 : 1;
}
