#pragma once

#include <QElapsedTimer>
#include <QString>

#include <mutex>

namespace quillon::cli {

// One line on standard error that shows how far a run is: documents done, and the last stage
// text of a document being preflighted. Drawn only when standard error is a terminal; safe to
// call from several threads.
class ProgressLine {
public:
    ProgressLine(int documents, bool enabled);

    void status(const QString& documentName, const QString& text);
    void documentDone();
    // Takes the line away so that other output can be written, and draws it again.
    void clear();
    void redraw();

private:
    void draw(bool force);

    std::mutex m_mutex;
    const int m_documents;
    const bool m_enabled;
    int m_done = 0;
    QString m_text;
    QElapsedTimer m_sinceDrawn;
    bool m_shown = false;
};

// Whether standard error is a terminal.
bool standardErrorIsTerminal();

} // namespace quillon::cli
