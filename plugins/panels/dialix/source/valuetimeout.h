#pragma once

// ValueTimeout, which lets a fast stream of values out at most once per tick.

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QVariant>

// Coalesces a fast stream of values into at most one emission per interval.
//
// The latest value set within an interval wins; a value equal to the pending
// one is dropped. After each emission the pending value goes back to 0, so the
// next non-zero value is emitted on a later tick while a repeated 0 is not.
// A tick without a new value emits nothing.
//
// The ticks fall on one fixed grid from the object's construction (or the last
// setTimeout()) on. While nothing is pending the timer rests instead of waking
// the thread every interval: the first tick that finds nothing to emit stops
// it, and the next new value starts it again for the time left to the next
// tick of the grid. A value is therefore emitted on the same tick, whether the
// timer rested before or not.
class ValueTimeout : public QObject
{
    Q_OBJECT

public:
    static constexpr uint MinimumTimeout = 10;
    static constexpr uint MaximumTimeout = 1000;

    explicit ValueTimeout(QObject *parent = nullptr);
    ~ValueTimeout() override;

    uint interval() const { return timeout; }
    QVariant pendingValue() const { return value; }
    bool isPending() const { return changed; }

signals:
    void valueChanged(QVariant value);

public slots:
    void setValue(QVariant val);
    void setTimeout(uint val);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void resume();

    bool changed = false;
    uint timeout = MinimumTimeout;
    QVariant value = QVariant(0);
    QBasicTimer timer;
    QElapsedTimer grid; // time since the grid's first tick was set
    bool aligning = false; // the timer runs for the rest of an interval, not a whole one
};
