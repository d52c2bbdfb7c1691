#pragma once

#include "command/qrvcommand.h"
#include "interfaces/cwkeycontrolabstract.h"
#include "interfaces/devicemanagerabstract.h"
#include "plugins/panels/dialix/source/dialixcontrol.h"

#include <QPushButton>

#include <QMap>
#include <QStringList>
#include <QVariant>

// A device manager over a small radio model that records, as text, every
// operation that changes something and every one of its signals (whoever
// emitted it): "setLock(1,true)", "signal switchedApf(1)". Queries are counted,
// not recorded.
class RecordingManager : public DeviceManagerAbstract
{
    Q_OBJECT

public:
    explicit RecordingManager(QObject *parent = nullptr)
        : DeviceManagerAbstract(parent)
    {
        connect(this, &DeviceManagerAbstract::display4kModeChanged, this, [this](bool s) {
            record(QStringLiteral("signal display4kModeChanged(%1)").arg(b(s)));
        });
        connect(this, &DeviceManagerAbstract::moxChanged, this, [this](quint32 t, bool s) {
            record(QStringLiteral("signal moxChanged(%1,%2)").arg(t).arg(b(s)));
        });
        connect(this, &DeviceManagerAbstract::mixerVfoMode, this, [this](quint32 r, quint32 m) {
            record(QStringLiteral("signal mixerVfoMode(%1,%2)").arg(r).arg(m));
        });
        connect(this, &DeviceManagerAbstract::switchedApf, this,
                [this](quint32 r) { record(QStringLiteral("signal switchedApf(%1)").arg(r)); });
        connect(this, &DeviceManagerAbstract::switchNF, this,
                [this](quint32 r) { record(QStringLiteral("signal switchNF(%1)").arg(r)); });
        connect(this, &DeviceManagerAbstract::switchRx2Enable, this,
                [this]() { record(QStringLiteral("signal switchRx2Enable()")); });
        connect(this, &DeviceManagerAbstract::txTransfer, this, [this](quint32 r, bool s) {
            record(QStringLiteral("signal txTransfer(%1,%2)").arg(r).arg(b(s)));
        });
    }

    void setLock(quint32 receiver, bool state) override
    {
        locks[receiver] = state;
        record(QStringLiteral("setLock(%1,%2)").arg(receiver).arg(b(state)));
    }
    bool lock(quint32 receiver) const override { return locks.value(receiver); }
    void setVox(quint32 receiver, bool state) override
    {
        voxes[receiver] = state;
        record(QStringLiteral("setVox(%1,%2)").arg(receiver).arg(b(state)));
    }
    bool vox(quint32 receiver) const override { return voxes.value(receiver); }
    void setVfoaToVfob(quint32 receiver) override
    {
        record(QStringLiteral("setVfoaToVfob(%1)").arg(receiver));
    }
    void setVfobToVfoa(quint32 receiver) override
    {
        record(QStringLiteral("setVfobToVfoa(%1)").arg(receiver));
    }
    void setVfoaSwapVfob(quint32 receiver) override
    {
        record(QStringLiteral("setVfoaSwapVfob(%1)").arg(receiver));
    }
    void setMixerMode(quint32 mode) override
    {
        record(QStringLiteral("setMixerMode(%1)").arg(mode));
    }
    void setMute(quint32 tranceiver, bool state) override
    {
        record(QStringLiteral("setMute(%1,%2)").arg(tranceiver).arg(b(state)));
    }
    quint32 tranceivers() const override { return transceiverCount; }
    bool mox(quint32 tranceiver) const override
    {
        ++moxQueries;
        return moxes.value(tranceiver);
    }
    bool rit(quint32 receiver) const override { return rits.value(receiver); }
    bool xit(quint32 receiver) const override { return xits.value(receiver); }
    double mainVolume() const override { return volume; }
    void setMainVolume(double dB) override
    {
        volume = dB;
        record(QStringLiteral("setMainVolume(%1)").arg(dB));
    }

    // The model.
    quint32 transceiverCount = 2;
    QMap<quint32, bool> locks, voxes, moxes, rits, xits;
    double volume = -20.0;
    mutable int moxQueries = 0;

    QStringList calls;

private:
    static QString b(bool v) { return v ? QStringLiteral("true") : QStringLiteral("false"); }
    void record(const QString &call) { calls << call; }
};

// The host's CW-key object, recording the calls the panel makes.
class RecordingCwKey : public CwKeyControlAbstract
{
    Q_OBJECT

public:
    using CwKeyControlAbstract::CwKeyControlAbstract;

    void setKey(quint32 transmitter, quint32 src, bool dash, bool dot) override
    {
        calls << QStringLiteral("setKey(%1,%2,%3,%4)")
                     .arg(transmitter)
                     .arg(src)
                     .arg(b(dash))
                     .arg(b(dot));
    }
    void setTrx(quint32 tranceiver, quint32 ptt, bool state) override
    {
        calls << QStringLiteral("setTrx(%1,%2,%3)").arg(tranceiver).arg(ptt).arg(b(state));
    }

    QStringList calls;

private:
    static QString b(bool v) { return v ? QStringLiteral("true") : QStringLiteral("false"); }
};

// Command messages as text with their element types, "[143 int, 0 uint, -3 int]",
// so that a wrong type fails as clearly as a wrong value.
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

// A controller bound to a recording device manager, with three receivers and
// receiver 1 selected unless told otherwise, and every command message the
// codec sends.
struct Rig
{
    explicit Rig(bool bind = true, uint receivers = 3, int rx = 1)
    {
        QObject::connect(ctrl.command(), &qrvCommand::sCommand, &ctrl,
                         [this](const QVariant &m) { messages << m.toList(); });
        manager.setCwKeyControl(&cwKey);
        ctrl.setChannels(receivers);
        ui()->cbReceiver->setCurrentIndex(rx);
        if (bind)
            ctrl.setDevManager(&manager);
    }

    Ui::DialixOptions *ui() { return ctrl.optionsWidget()->ui.get(); }
    QPushButton *button(const QString &name)
    {
        return ctrl.optionsWidget()->findChild<QPushButton *>(name);
    }

    QStringList sent() const
    {
        QStringList out;
        for (const QVariantList &m : messages)
            out << describeMessage(m);
        return out;
    }

    // The option-page state that functions may change.
    QString state()
    {
        return QStringLiteral("useIf=%1 useIfRit=%2 vfoB=%3 rx=%4")
            .arg(ui()->chbUseIf->isChecked())
            .arg(ui()->chbUseIf_Rit->isChecked())
            .arg(ui()->chbVfoB->isChecked())
            .arg(ui()->cbReceiver->currentIndex());
    }

    // Presses and releases function key n (1 .. 17) through the device signals.
    void press(int n, bool down)
    {
        if (n <= 14)
            emit ctrl.panel().button(Dialix::Buttons(n), down);
        else
            emit ctrl.panel().dialButton(Dialix::DialButtons(Dialix::KeyEnc1 + n - 15), down);
    }

    RecordingCwKey cwKey;
    RecordingManager manager;
    DialixControl ctrl;
    QList<QVariantList> messages;
};
