#pragma once

// Declaration of the host's device-manager interface.

#include <QObject>

class CwKeyControlAbstract;

// The host's device manager, as far as the panel controller uses it. The host
// owns the object and hands it to the plug-in; the plug-in only borrows it and
// never deletes it.
//
// The operations are the host's to implement. The signals are the host's too,
// but the controller also raises some of them on the host's behalf
// (mixerVfoMode, switchedApf, switchNF, switchRx2Enable, txTransfer): the host
// listens to its own signals and does not care who emitted them.
//
// Spelling follows the host ("tranceiver", "tranceivers").
class DeviceManagerAbstract : public QObject
{
    Q_OBJECT

public:
    explicit DeviceManagerAbstract(QObject *parent = nullptr)
        : QObject(parent)
    { }
    ~DeviceManagerAbstract() override = default;

    // Frequency lock of a receiver.
    virtual void setLock(quint32 receiver, bool state) = 0;
    virtual bool lock(quint32 receiver) const = 0;

    // VOX of a receiver's transmitter.
    virtual void setVox(quint32 receiver, bool state) = 0;
    virtual bool vox(quint32 receiver) const = 0;

    // VFO copy and exchange of a receiver.
    virtual void setVfoaToVfob(quint32 receiver) = 0;
    virtual void setVfobToVfoa(quint32 receiver) = 0;
    virtual void setVfoaSwapVfob(quint32 receiver) = 0;

    // Audio mixing of the two receivers: 0 both, 1 RX1 only, 2 RX2 only,
    // 3 RX1 left / RX2 right, 4 RX1 right / RX2 left.
    virtual void setMixerMode(quint32 mode) = 0;

    // Mute of one transceiver's audio.
    virtual void setMute(quint32 tranceiver, bool state) = 0;

    // Number of transceivers the host runs.
    virtual quint32 tranceivers() const = 0;

    // Transmit (MOX) state of one transceiver.
    virtual bool mox(quint32 tranceiver) const = 0;

    // RIT and XIT enabled on a receiver.
    virtual bool rit(quint32 receiver) const = 0;
    virtual bool xit(quint32 receiver) const = 0;

    // Main audio volume in dB (0.0 is full, -60.0 the bottom of the range).
    virtual double mainVolume() const = 0;
    virtual void setMainVolume(double dB) = 0;

    // The host's CW-key control object, or null while it has none. Borrowed.
    virtual CwKeyControlAbstract *cwKeyControl() const { return cwKeyControlObject; }
    void setCwKeyControl(CwKeyControlAbstract *control) { cwKeyControlObject = control; }

signals:
    // The spectrum display switched to or from its 4K mode.
    void display4kModeChanged(bool state);
    // A transceiver started (state true) or ended transmitting.
    void moxChanged(quint32 tranceiver, bool state);
    // Audio mixing of VFO A and B of a receiver: 0 both, 1 A only, 2 B only,
    // 3 A left / B right, 4 A right / B left.
    void mixerVfoMode(quint32 receiver, quint32 mode);
    // Toggle the audio peak filter of a receiver.
    void switchedApf(quint32 receiver);
    // Toggle the notch filter of a receiver.
    void switchNF(quint32 receiver);
    // Toggle the second receiver.
    void switchRx2Enable();
    // PTT of a receiver's transceiver from an external source.
    void txTransfer(quint32 receiver, bool state);

protected:
    CwKeyControlAbstract *cwKeyControlObject = nullptr;
};
