#include "package/PackageProgress.h"

#include "app/Log.h"
#include "app/Numbers.h"

namespace quillon::package {

namespace {

constexpr double kSecondsBetweenEstimates = 0.9;

} // namespace

PackageProgress::PackageProgress(PackageMode mode, Clock clock) : m_mode(mode), m_clock(std::move(clock))
{
    m_savedTimeMarker = m_clock();
}

void PackageProgress::startLinksPhase(qint64 totalBytes)
{
    std::lock_guard lock(m_mutex);
    if (m_mode == PackageMode::Unified)
        m_bar1 = {1, m_bar1.maximum, QStringLiteral("Copying links...")};
    m_bar2.maximum = static_cast<double>(totalBytes);
    m_progrStartValueForCopyOperation = 0;
    m_totalSizeStrProgr2 = app::fileSizeStrFromBytes(static_cast<std::uint64_t>(std::max<qint64>(totalBytes, 0)));
}

void PackageProgress::startExtrasPhase()
{
    std::lock_guard lock(m_mutex);
    if (m_mode == PackageMode::Unified)
        m_bar1 = {1, m_bar1.maximum, QStringLiteral("Copying extra files...")};
    m_bar2.maximum = 0;
    m_progrStartValueForCopyOperation = 0;
    m_totalSizeStrProgr2 = app::fileSizeStrFromBytes(0);
}

void PackageProgress::prepareProgr2ForFilesArr(int numberOfFiles)
{
    std::lock_guard lock(m_mutex);
    m_numOfFilesProgr2 = numberOfFiles;
    m_fileNumProgr2 = 0;
    m_savedTimeMarker = m_clock();
    m_savedBytesWrittenForBatch = 0;
    m_timeRemainingStr = QStringLiteral("Calculating time");
}

void PackageProgress::fileCopyOperationWillStart(const std::shared_ptr<FileCopyOperation>& operation)
{
    std::lock_guard lock(m_mutex);
    ++m_fileNumProgr2;
    m_currCopyOp = operation;
    // A phase of one file gets its ticks as soon as the copy starts.
    m_ticking = true;
    m_fileNameProgr2 = operation->fName();
}

void PackageProgress::fileCopyOperationDidFinished(const std::shared_ptr<FileCopyOperation>& operation)
{
    std::lock_guard lock(m_mutex);
    // With several files copied at once the next one may have started already: it stays shown.
    if (m_currCopyOp == operation)
        m_currCopyOp.reset();
    // Separate packages count each file from 0 again: each document is a run of its own.
    if (m_mode == PackageMode::Unified)
        m_progrStartValueForCopyOperation = m_bar2.value;
}

bool PackageProgress::copyQueueDidChange(int operationCount)
{
    std::lock_guard lock(m_mutex);
    if (operationCount == 0) {
        m_currCopyOp.reset();
        m_ticking = false;
        clearAreaLocked(2);
        return true;
    }
    if (m_currCopyOp)
        m_ticking = true;
    else
        app::logLine(QStringLiteral("copy queue: %1 operations, none copying").arg(operationCount));
    return false;
}

bool PackageProgress::ticksWanted() const
{
    std::lock_guard lock(m_mutex);
    return m_ticking;
}

void PackageProgress::updateProgress()
{
    std::lock_guard lock(m_mutex);
    const double written =
        m_progrStartValueForCopyOperation + (m_currCopyOp ? static_cast<double>(m_currCopyOp->bWritten()) : 0);
    setRemainingTimeLocked(written);
    m_bar2.status = m_currCopyOp
                        ? QStringLiteral("%1 (%2 of %3): %4 of %5 - %6 remaining")
                              .arg(m_fileNameProgr2)
                              .arg(m_fileNumProgr2)
                              .arg(m_numOfFilesProgr2)
                              .arg(app::fileSizeStrFromBytes(static_cast<std::uint64_t>(std::max(written, 0.0))),
                                   m_totalSizeStrProgr2, m_timeRemainingStr)
                        : QString();
    m_bar2.value = written;
}

void PackageProgress::setRemainingTimeStrForTotalBytesWritten(double totalWritten)
{
    std::lock_guard lock(m_mutex);
    setRemainingTimeLocked(totalWritten);
}

void PackageProgress::setRemainingTimeLocked(double totalWritten)
{
    const auto now = m_clock();
    const double elapsed = std::chrono::duration<double>(now - m_savedTimeMarker).count();
    if (elapsed < kSecondsBetweenEstimates)
        return;
    m_savedTimeMarker = now;
    const auto bytesDone = static_cast<qint64>(totalWritten - static_cast<double>(m_savedBytesWrittenForBatch));
    m_savedBytesWrittenForBatch = static_cast<qint64>(totalWritten);
    if (bytesDone < 0)
        return;
    const auto bytesPerSec = static_cast<qint64>(static_cast<double>(bytesDone) / elapsed);
    if (bytesPerSec == 0) {
        app::logError(QStringLiteral("bytesPerSec == 0"));
        return;
    }
    const auto bytesLeft = static_cast<qint64>(m_bar2.maximum - totalWritten);
    m_timeRemainingStr = formatTimeLeftFromSeconds(static_cast<long>(bytesLeft / bytesPerSec));
}

QString PackageProgress::formatTimeLeftFromSeconds(long seconds)
{
    if (seconds <= 59)
        return QStringLiteral("%1 sec").arg(seconds);
    if (seconds <= 3599)
        return QStringLiteral("About %1 min").arg(seconds / 60);
    return QStringLiteral("About %1 hr %2 min").arg(seconds / 3600).arg(seconds / 60);
}

void PackageProgress::setProgr1Maximum(double maximum)
{
    std::lock_guard lock(m_mutex);
    m_bar1.maximum = maximum;
}

void PackageProgress::setProgr1Status(const QString& status, double increment)
{
    std::lock_guard lock(m_mutex);
    m_bar1.status = status;
    m_bar1.value += increment;
}

void PackageProgress::startProgr1ForDocName(const QString& docName, long indexOfCurrDoc, long numOfDocs)
{
    std::lock_guard lock(m_mutex);
    m_bar1.status = QStringLiteral("%1 (%2 of %3)...").arg(docName).arg(indexOfCurrDoc).arg(numOfDocs);
    m_bar1.value += 1;
}

void PackageProgress::setProgr2ValueToStageOfSingleDoc(const QString& stageKey)
{
    const auto& table = m_mode == PackageMode::Unified ? stageValuesDictProgr2SingleDocOfUnified()
                                                       : stageValuesDictProgr2SingleDocOfSeparate();
    const auto stage = table.constFind(stageKey);
    if (stage == table.cend()) {
        app::logError(QStringLiteral("no stage %1 in this mode").arg(stageKey));
        return;
    }
    std::lock_guard lock(m_mutex);
    m_bar2.value = stage->value;
    m_bar2.status = stage->text;
}

void PackageProgress::setProgr2MaxValue(const QString& maximum)
{
    std::lock_guard lock(m_mutex);
    m_bar2.maximum = maximum.toDouble();
}

void PackageProgress::setProgr2Status(const QString& status, const QString& increment)
{
    std::lock_guard lock(m_mutex);
    m_bar2.status = status;
    m_bar2.value += increment.toDouble();
}

void PackageProgress::clearProgressArea(int area)
{
    std::lock_guard lock(m_mutex);
    clearAreaLocked(area);
}

void PackageProgress::clearAreaLocked(int area)
{
    ProgressBarState& bar = area == 1 ? m_bar1 : m_bar2;
    bar.value = 0;
    bar.status.clear();
}

const QMap<QString, StageValue>& PackageProgress::stageValuesDictProgr2SingleDocOfUnified()
{
    static const QMap<QString, StageValue> table{
        {QStringLiteral("collectFonts"), {1, QStringLiteral("Collecting fonts...")}},
        {QStringLiteral("pdf"), {2, QStringLiteral("Creating PDF...")}},
        {QStringLiteral("idml"), {3, QStringLiteral("Creating IDML...")}},
        {QStringLiteral("moveDoc"), {4, QStringLiteral("Copying InDesign document...")}},
        {QStringLiteral("moveFonts"), {5, QStringLiteral("Finalizing fonts...")}},
        {QStringLiteral("report"), {6, QStringLiteral("Creating report...")}},
        {QStringLiteral("end"), {7, QStringLiteral("Finishing...")}},
        {QStringLiteral("done"), {0, QString()}},
    };
    return table;
}

const QMap<QString, StageValue>& PackageProgress::stageValuesDictProgr2SingleDocOfSeparate()
{
    static const QMap<QString, StageValue> table{
        {QStringLiteral("collectFonts"), {1, QStringLiteral("Collecting document and fonts...")}},
        {QStringLiteral("pdf"), {2, QStringLiteral("Creating PDF...")}},
        {QStringLiteral("idml"), {3, QStringLiteral("Creating IDML...")}},
        {QStringLiteral("report"), {4, QStringLiteral("Creating report...")}},
        {QStringLiteral("end"), {5, QStringLiteral("Finishing...")}},
        {QStringLiteral("done"), {0, QString()}},
    };
    return table;
}

ProgressBarState PackageProgress::bar1() const
{
    std::lock_guard lock(m_mutex);
    return m_bar1;
}

ProgressBarState PackageProgress::bar2() const
{
    std::lock_guard lock(m_mutex);
    return m_bar2;
}

QString PackageProgress::timeRemainingStr() const
{
    std::lock_guard lock(m_mutex);
    return m_timeRemainingStr;
}

} // namespace quillon::package
