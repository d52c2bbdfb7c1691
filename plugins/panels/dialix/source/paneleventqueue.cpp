// The hand-over of the panel's events between threads.

#include "plugins/panels/dialix/source/paneleventqueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <utility>

using dialix::protocol::Line;

namespace {

QEvent::Type wakeType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

} // namespace

PanelEventQueue::PanelEventQueue(Sink sink, QObject *parent)
    : QObject(parent)
    , sink(std::move(sink))
{ }

void PanelEventQueue::setLazyDial(int dial, std::function<bool()> waits)
{
    lazyWaits = std::move(waits);
    std::lock_guard<std::mutex> lock(mutex);
    lazyDial = dial;
    lazyDelivered = false;
}

void PanelEventQueue::add(const dialix::protocol::Events &report)
{
    if (report.count == 0)
        return;
    const bool here = QThread::currentThread() == thread();
    QEvent *wake = nullptr;
    {
        std::lock_guard<std::mutex> lock(mutex);
        for (const Event &event : report) {
            events.push_back(event);
            const bool lazy = event.line == Line::Dial && event.index == lazyDial;
            urgent = urgent || !(lazy && lazyDelivered);
        }
        if (!here)
            wake = takeWakeLocked();
    }
    if (here)
        deliver();
    else if (wake)
        QCoreApplication::postEvent(this, wake);
}

// Made under the lock that customEvent() takes before it looks at the queue:
// the hand-over is then ordered by a lock that ThreadSanitizer sees, not only
// by Qt's own posting lock.
QEvent *PanelEventQueue::takeWakeLocked()
{
    if (!urgent || wakePosted)
        return nullptr;
    wakePosted = true;
    urgent = false;
    return new QEvent(wakeType());
}

void PanelEventQueue::deliver()
{
    for (;;) {
        Event event;
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (next == events.size()) {
                events.clear();
                next = 0;
                urgent = false;
                lazyDelivered = lazyWaits && lazyWaits();
                return;
            }
            event = events[next++];
        }
        sink(event);
    }
}

// The lock comes first, also for the event's type (see takeWakeLocked()).
void PanelEventQueue::customEvent(QEvent *event)
{
    std::unique_lock<std::mutex> lock(mutex);
    if (event->type() != wakeType()) {
        lock.unlock();
        QObject::customEvent(event);
        return;
    }
    wakePosted = false;
    lock.unlock();
    deliver();
}
