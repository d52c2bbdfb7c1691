// The VFO coalescing timer.

#include "plugins/panels/dialix/source/valuetimeout.h"

#include <QTimerEvent>

#include <algorithm>

ValueTimeout::ValueTimeout(QObject *parent)
    : QObject(parent)
{
    grid.start();
    timer.start(static_cast<int>(timeout), this);
}

ValueTimeout::~ValueTimeout()
{
    timer.stop();
}

void ValueTimeout::setValue(QVariant val)
{
    if (val == value)
        return;
    value = val;
    changed = true;
    if (!timer.isActive())
        resume();
}

void ValueTimeout::setTimeout(uint val)
{
    if (val == timeout)
        return;
    timeout = std::clamp(val, MinimumTimeout, MaximumTimeout);
    grid.start();
    aligning = false;
    timer.start(static_cast<int>(timeout), this);
}

// Starts the resting timer for the time left to the grid's next tick.
void ValueTimeout::resume()
{
    const qint64 interval = qint64(timeout) * 1000000;
    const qint64 left = interval - grid.nsecsElapsed() % interval;
    const int ms = int(std::max<qint64>(1, (left + 999999) / 1000000));
    aligning = ms != int(timeout);
    timer.start(ms, this);
}

void ValueTimeout::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != timer.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    if (!changed) {
        // Nothing came since the last tick: rest until a value does.
        aligning = false;
        timer.stop();
        return;
    }
    if (aligning) {
        aligning = false;
        timer.start(static_cast<int>(timeout), this);
    }
    const QVariant out = value;
    value = QVariant(0);
    changed = false;
    emit valueChanged(out);
}
