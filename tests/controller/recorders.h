#pragma once

// Test doubles of the host for the controller tests, recording calls as text.

#include "command/qrvcommand.h"
#include "interfaces/cwkeycontrolabstract.h"
#include "interfaces/devicemanagerabstract.h"
#include "plugins/panels/dialix/source/dialixcontrol.h"
#include "tests/support/dialixtestaccess.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMap>
#include <QPushButton>
#include <QStringList>
#include <QVariant>

// Calls and messages as text, so that expectations read like the calls:
// "setLock(1,true)", and command messages with their element types,
// "[143 int, 0 uint, -3 int]", so a wrong type fails as clearly as a wrong value.
inline QString text(bool v)
{
    return v ? QStringLiteral("true") : QStringLiteral("false");
}
inline QString text(quint32 v)
{
    return QString::number(v);
}
inline QString text(double v)
{
    return QString::number(v);
}
template<typename... Args>
QString call(const char *name, Args... args)
{
    return QStringLiteral("%1(%2)").arg(QLatin1String(name), QStringList {text(args)...}.join(','));
}
inline QString describeMessage(const QVariantList &message)
{
    QStringList parts;
    for (const QVariant &v : message)
        parts << v.toString() + QLatin1Char(' ') + QString::fromLatin1(v.typeName());
    return QLatin1Char('[') + parts.join(QStringLiteral(", ")) + QLatin1Char(']');
}
inline QStringList msg(const QVariantList &m)
{
    return {describeMessage(m)};
}

// A device manager over a small radio model. It records every operation that
// changes something and every one of its signals, whoever emitted them.
class RecordingManager : public DeviceManagerAbstract
{
    Q_OBJECT

public:
    RecordingManager()
    {
        using D = DeviceManagerAbstract;
        connect(this, &D::mixerVfoMode,
                [this](quint32 r, quint32 m) { sig("mixerVfoMode", r, m); });
        connect(this, &D::switchedApf, [this](quint32 r) { sig("switchedApf", r); });
        connect(this, &D::switchNF, [this](quint32 r) { sig("switchNF", r); });
        connect(this, &D::switchRx2Enable, [this]() { sig("switchRx2Enable"); });
        connect(this, &D::txTransfer, [this](quint32 r, bool s) { sig("txTransfer", r, s); });
    }

    void setLock(quint32 r, bool s) override { calls << call("setLock", r, locks[r] = s); }
    bool lock(quint32 r) const override { return locks.value(r); }
    void setVox(quint32 r, bool s) override { calls << call("setVox", r, voxes[r] = s); }
    bool vox(quint32 r) const override { return voxes.value(r); }
    void setVfoaToVfob(quint32 r) override { calls << call("setVfoaToVfob", r); }
    void setVfobToVfoa(quint32 r) override { calls << call("setVfobToVfoa", r); }
    void setVfoaSwapVfob(quint32 r) override { calls << call("setVfoaSwapVfob", r); }
    void setMixerMode(quint32 mode) override { calls << call("setMixerMode", mode); }
    void setMute(quint32 t, bool s) override { calls << call("setMute", t, s); }
    quint32 tranceivers() const override { return transceiverCount; }
    bool mox(quint32 t) const override { return ++moxQueries, moxes.value(t); }
    bool rit(quint32 r) const override { return rits.value(r); }
    bool xit(quint32 r) const override { return xits.value(r); }
    double mainVolume() const override { return volume; }
    void setMainVolume(double dB) override { calls << call("setMainVolume", volume = dB); }

    quint32 transceiverCount = 2;
    QMap<quint32, bool> locks, voxes, moxes, rits, xits;
    double volume = -20.0;
    mutable int moxQueries = 0;
    QStringList calls;

private:
    template<typename... Args>
    void sig(const char *name, Args... args)
    {
        calls << "signal " + call(name, args...);
    }
};

class RecordingCwKey : public CwKeyControlAbstract
{
    Q_OBJECT

public:
    void setKey(quint32 tx, quint32 src, bool dash, bool dot) override
    {
        calls << call("setKey", tx, src, dash, dot);
    }
    void setTrx(quint32 t, quint32 ptt, bool s) override { calls << call("setTrx", t, ptt, s); }
    QStringList calls;
};

// A controller bound to a recording manager (with a CW-key object), three
// receivers with receiver 1 selected unless told otherwise, and the command
// messages its codec sends.
struct Rig
{
    explicit Rig(bool bind = true, uint receivers = 3, int rx = 1)
    {
        QObject::connect(ctrl.command(), &qrvCommand::sCommand, &ctrl,
                         [this](const QVariant &m) { sent << describeMessage(m.toList()); });
        manager.setCwKeyControl(&cwKey);
        ctrl.setChannels(receivers);
        ui()->cbReceiver->setCurrentIndex(rx);
        if (bind)
            ctrl.setDevManager(&manager);
    }

    Ui::DialixOptions *ui() { return DialixTestAccess::ui(*ctrl.optionsWidget()); }
    QPushButton *button(const QString &name)
    {
        return ctrl.optionsWidget()->findChild<QPushButton *>(name);
    }

    // A panel event as the reader thread raises it: the device's signal, then
    // the controller's slot, which runs queued.
    template<typename... Params, typename... Args>
    void event(void (Dialix::*signal)(Params...), Args... args)
    {
        (ctrl.panel().*signal)(Params(args)...);
        QCoreApplication::sendPostedEvents(&ctrl, QEvent::MetaCall);
    }

    // Function key n (1 .. 17) through the device's signals.
    void press(int n, bool down)
    {
        if (n <= 14)
            event(&Dialix::button, Dialix::Buttons(n), down);
        else
            event(&Dialix::dialButton, Dialix::DialButtons(Dialix::KeyEnc1 + n - 15), down);
    }

    RecordingCwKey cwKey;
    RecordingManager manager;
    DialixControl ctrl;
    QStringList sent;
};
