#pragma once

#include "app/Settings.h"

#include <QString>

namespace quillon::host {

class InDesignHost;

// The PDF export preset the user chose for packages.
inline const app::SettingKey kSelectedPdfPresetSetting{"selectedPDFPreset", QStringLiteral("[Smallest File Size]")};

// Has the host export a package's document as PDF or IDML straight into the package folder.
// Shows nothing: a failure keeps the host's message in lastErrorMsg() for the package pipeline
// to word. Runs on the package pipeline's worker thread.
class QNPDFIDMLController {
public:
    // `docName` is the document's file name as open in InDesign.
    static QNPDFIDMLController PDFIDMLControllerWithFileItem(const QString& docName, const QString& packageFolderPath,
                                                             InDesignHost& host, const app::Settings& settings);

    // Replace whatever is at the target, then export; false with lastErrorMsg() on failure.
    bool exportDocToPDF();
    bool exportDocToIDML();

    // "<package folder>/<document name with the extension pdf or idml>".
    QString targetPathWithExtension(const QString& extension) const;
    // The chosen preset, or "[Smallest File Size]" when none was chosen.
    QString selectedPdfPreset() const;
    const QString& lastErrorMsg() const { return m_lastErrorMsg; }

private:
    QNPDFIDMLController(QString docName, QString packageFolderPath, InDesignHost& host, const app::Settings& settings);
    void removeTarget(const QString& target) const;

    QString m_docName;
    QString m_packageFolderPath;
    InDesignHost& m_host;
    const app::Settings& m_settings;
    QString m_lastErrorMsg;
};

} // namespace quillon::host
