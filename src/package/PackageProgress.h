#pragma once

#include "package/FileCopyOperation.h"

#include <QMap>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

namespace quillon::package {

enum class PackageMode { Unified, Separate };

// A progress bar and its status line, as the window shows them.
struct ProgressBarState {
    double value = 0;
    double maximum = 0;
    QString status;
};

// A stage of one document: bar 2's value and status line while it runs.
struct StageValue {
    int value = 0;
    QString text;
};

// The time the estimate is measured with; tests pass a clock they move themselves.
using Clock = std::function<std::chrono::steady_clock::time_point()>;

// The two progress bars of a package run: bar 1 counts documents, bar 2 shows the stages of one
// document or the bytes of a copy phase, with the file counter, the total size and the time
// left. A plain model: the window shows the bars and, while ticksWanted() holds, calls
// updateProgress() every 0.1 s. The delegate calls come on the copy thread, everything else on
// the caller's; all state is guarded here.
class PackageProgress : public FileCopyDelegate {
public:
    explicit PackageProgress(PackageMode mode, Clock clock = std::chrono::steady_clock::now);

    // Copy phases: bar 2's maximum is the phase's total bytes (0 for extras, whose total is not
    // known); then the files are counted.
    void startLinksPhase(qint64 totalBytes);
    void startExtrasPhase();
    void prepareProgr2ForFilesArr(int numberOfFiles);

    void fileCopyOperationWillStart(const std::shared_ptr<FileCopyOperation>& operation) override;
    void fileCopyOperationDidFinished(const std::shared_ptr<FileCopyOperation>& operation) override;
    // The copy queue's observer. True when the phase is over: ticks stop and bar 2 is cleared,
    // and the caller goes on to the next phase.
    bool copyQueueDidChange(int operationCount);
    bool ticksWanted() const;

    // One tick: bar 2's value and its status line from the bytes written so far.
    void updateProgress();
    // Recomputes the time left at most every 0.9 s, from the rate of the last interval only.
    void setRemainingTimeStrForTotalBytesWritten(double totalWritten);
    // "59 sec", "About 59 min", "About 1 hr 60 min": the minutes of the hour form are the
    // total minutes, a form operators know; kept on purpose.
    static QString formatTimeLeftFromSeconds(long seconds);

    void setProgr1Maximum(double maximum);
    // Bar 1's status line, the bar moved on by `increment` (the relinking's lines).
    void setProgr1Status(const QString& status, double increment);
    void startProgr1ForDocName(const QString& docName, long indexOfCurrDoc, long numOfDocs);
    void setProgr2ValueToStageOfSingleDoc(const QString& stageKey);
    void setProgr2MaxValue(const QString& maximum);
    void setProgr2Status(const QString& status, const QString& increment);
    // 1 clears bar 1, anything else bar 2.
    void clearProgressArea(int area);

    static const QMap<QString, StageValue>& stageValuesDictProgr2SingleDocOfUnified();
    static const QMap<QString, StageValue>& stageValuesDictProgr2SingleDocOfSeparate();

    ProgressBarState bar1() const;
    ProgressBarState bar2() const;
    QString timeRemainingStr() const;

private:
    void setRemainingTimeLocked(double totalWritten);
    void clearAreaLocked(int area);

    const PackageMode m_mode;
    const Clock m_clock;
    mutable std::mutex m_mutex;
    ProgressBarState m_bar1;
    ProgressBarState m_bar2;
    int m_numOfFilesProgr2 = 0;
    int m_fileNumProgr2 = 0;
    QString m_fileNameProgr2;
    QString m_totalSizeStrProgr2;
    double m_progrStartValueForCopyOperation = 0;
    std::shared_ptr<FileCopyOperation> m_currCopyOp;
    bool m_ticking = false;
    std::chrono::steady_clock::time_point m_savedTimeMarker;
    qint64 m_savedBytesWrittenForBatch = 0;
    QString m_timeRemainingStr = QStringLiteral("Calculating time");
};

} // namespace quillon::package
