#pragma once

#include <QString>

#include <atomic>

namespace quillon::app {

// Where long work reports how far it is. Calls come from the worker thread; an implementation
// that drives widgets queues them to the main thread. Every method has a do-nothing default so
// a sink implements only what it shows.
class ProgressSink {
public:
    virtual ~ProgressSink() = default;
    // A named stage begins ("links", "fonts", ...); `text` is what the user reads.
    virtual void stage(const QString& name, const QString& text)
    {
        (void)name;
        (void)text;
    }
    virtual void setMaximum(double maximum) { (void)maximum; }
    virtual void setValue(double value) { (void)value; }
    virtual void increment(double by) { (void)by; }
    virtual void status(const QString& text) { (void)text; }
    // The bar is no longer needed (the work ended or failed).
    virtual void finished() {}
};

// A sink that shows nothing.
class NullProgressSink : public ProgressSink {};

// Set from any thread to ask the work to stop; checked by the work between its steps.
class CancelFlag {
public:
    void cancel() { m_cancelled.store(true, std::memory_order_relaxed); }
    void reset() { m_cancelled.store(false, std::memory_order_relaxed); }
    bool isCancelled() const { return m_cancelled.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> m_cancelled{false};
};

} // namespace quillon::app
