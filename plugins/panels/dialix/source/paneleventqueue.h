#pragma once

// PanelEventQueue, which carries the panel's events from its reader thread over
// to the thread of the panel's owner.

#include "plugins/panels/dialix/source/panelprotocol.h"

#include <QObject>

#include <functional>
#include <mutex>
#include <vector>

// Carries the events of the panel's reports from the thread that decodes them
// to the thread this object lives on, in the order they were decoded.
//
// add() takes the events of one report. On this object's own thread it hands
// them (after any still waiting) to the sink at once. On any other thread it
// queues them and posts one wake-up for the report, unless one is already on
// its way: a report's five events cost one wake-up, not five queued calls.
// deliver() hands the waiting events to the sink one at a time, so a sink that
// spins an event loop (which may deliver again) keeps their order and sees each
// event once.
//
// Movements of the lazy dial post no wake-up while the owner has said that
// deliver() is called soon anyway: `waits`, asked on this object's thread
// after every delivery, tells whether it is (the VFO coalescer still ticks and
// delivers before each tick). Its movements then reach the owner on that call,
// as if they had been delivered at once.
class PanelEventQueue : public QObject
{
    Q_OBJECT

public:
    using Event = dialix::protocol::Event;
    using Sink = std::function<void(const Event &)>;

    explicit PanelEventQueue(Sink sink, QObject *parent = nullptr);

    // Any thread.
    void add(const dialix::protocol::Events &report);

    // This object's thread only.
    void deliver();
    void setLazyDial(int dial, std::function<bool()> waits);

protected:
    void customEvent(QEvent *event) override;

private:
    QEvent *takeWakeLocked();

    Sink sink;
    std::function<bool()> lazyWaits; // this object's thread only
    std::mutex mutex; // guards everything below
    std::vector<Event> events;
    std::size_t next = 0; // the next one to deliver
    int lazyDial = -1;
    bool lazyDelivered = false; // a delivery is sure to come for the lazy dial's movements
    bool urgent = false; // some waiting event needs a wake-up
    bool wakePosted = false; // a posted event will deliver them
};
