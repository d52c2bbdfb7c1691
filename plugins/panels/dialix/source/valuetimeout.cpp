#include "plugins/panels/dialix/source/valuetimeout.h"

#include <QTimerEvent>

#include <algorithm>

ValueTimeout::ValueTimeout(QObject *parent)
    : QObject(parent)
{
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
}

void ValueTimeout::setTimeout(uint val)
{
    if (val == timeout)
        return;
    timeout = std::clamp(val, MinimumTimeout, MaximumTimeout);
    timer.start(static_cast<int>(timeout), this);
}

void ValueTimeout::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != timer.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    if (!changed)
        return;
    const QVariant out = value;
    value = QVariant(0);
    changed = false;
    emit valueChanged(out);
}
