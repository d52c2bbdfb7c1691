#pragma once

// Declaration of the host's CW-key control interface.

#include <QObject>

// The host's CW-key control object. The host owns it and hands its address to
// the plug-in (through the device manager, or as a command message); the
// plug-in only borrows it.
//
// The panel drives it in two ways:
//  - its PTT input keys a transceiver through setTrx();
//  - its paddle contacts are passed on through setKey(), always as the complete
//    dash/dot pair so that a squeeze of both contacts reads as both closed.
// The plug-in always calls them with src == 1, which marks the panel as the
// origin of the event.
class CwKeyControlAbstract : public QObject
{
    Q_OBJECT

public:
    explicit CwKeyControlAbstract(QObject *parent = nullptr)
        : QObject(parent)
    { }
    ~CwKeyControlAbstract() override = default;

    // Paddle state of `transmitter` from source `src`: dash and dot contact
    // closed or open. Same argument list as the signal key().
    virtual void setKey(quint32 transmitter, quint32 src, bool dash, bool dot) = 0;

    // PTT of `tranceiver` from source `ptt` (the origin of the PTT, 1 for the
    // panel), keyed when `state` is true. Same argument list as the signal trx().
    virtual void setTrx(quint32 tranceiver, quint32 ptt, bool state) = 0;

signals:
    void key(quint32 transmitter, quint32 src, bool dash, bool dot);
    void trx(quint32 tranceiver, quint32 ptt, bool state);
};
