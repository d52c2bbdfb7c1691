#pragma once

// RadioModel, the small radio behind the reference host.

#include "interfaces/cwkeycontrolabstract.h"
#include "radiobackend.h"

#include <QString>
#include <QVector>

#include <memory>

class qrvCommand;

// A small radio for the reference host: enough state for every operation the
// panel plug-in calls on a device manager, and for the commands the panel
// sends. Each receiver has one transceiver of the same number.
//
// Every change of state is announced through changed() with a readable line,
// which the host prints to its log.
class RadioModel : public RadioBackend
{
    Q_OBJECT

public:
    static constexpr double MinVolume = -60.0;
    static constexpr double MaxVolume = 0.0;

    explicit RadioModel(quint32 receivers = 2, QObject *parent = nullptr);
    ~RadioModel() override;

    // DeviceManagerAbstract
    void setLock(quint32 receiver, bool state) override;
    bool lock(quint32 receiver) const override;
    void setVox(quint32 receiver, bool state) override;
    bool vox(quint32 receiver) const override;
    void setVfoaToVfob(quint32 receiver) override;
    void setVfobToVfoa(quint32 receiver) override;
    void setVfoaSwapVfob(quint32 receiver) override;
    void setMixerMode(quint32 mode) override;
    void setMute(quint32 tranceiver, bool state) override;
    quint32 tranceivers() const override;
    bool mox(quint32 tranceiver) const override;
    bool rit(quint32 receiver) const override;
    bool xit(quint32 receiver) const override;
    double mainVolume() const override;
    void setMainVolume(double dB) override;

    // RadioBackend
    void panelCommand(const QVariantList &message) override;
    void setMox(quint32 tranceiver, bool state) override;
    QString describe() const override;

    // Host side of the radio.
    quint32 receivers() const { return quint32(rx.size()); }
    void setRit(quint32 receiver, bool state);
    void setXit(quint32 receiver, bool state);
    bool muted(quint32 tranceiver) const;
    quint32 mixerMode() const { return mixer; }
    quint32 vfoMixerMode(quint32 receiver) const;
    double volume(quint32 receiver) const;
    void setVolume(quint32 receiver, double dB);
    double frequency(quint32 receiver, quint32 vfo) const;
    void tune(quint32 receiver, quint32 vfo, double hz);

    // Applies one panel command that the host decoded: the radio's answer to
    // the keys and dials. Unknown receivers are ignored.
    void bandStep(quint32 receiver, int direction);
    void modeStep(quint32 receiver, int direction);
    QString band(quint32 receiver) const;
    QString mode(quint32 receiver) const;

private:
    struct Receiver
    {
        double volume = -20.0;
        double vfo[2] = {7074000.0, 7074000.0};
        int band = 3;
        int mode = 0;
        bool mox = false;
        bool mute = false;
        bool rit = false;
        bool xit = false;
        bool lock = false;
        bool vox = false;
        quint32 vfoMixer = 0;
    };

    Receiver *at(quint32 receiver);
    const Receiver *at(quint32 receiver) const;
    void report(const QString &line) { emit changed(line); }

    QVector<Receiver> rx;
    // Decodes the panel commands the host hands over.
    std::shared_ptr<qrvCommand> decoder;
    quint32 mixer = 0;
};

// The host's CW-key object: keys the radio's transmitter from the panel's PTT
// input and passes paddle contacts on through its signals.
class HostCwKey : public CwKeyControlAbstract
{
    Q_OBJECT

public:
    explicit HostCwKey(RadioBackend *radio, QObject *parent = nullptr);
    void setRadio(RadioBackend *r) { radio = r; }

    void setKey(quint32 transmitter, quint32 src, bool dash, bool dot) override;
    void setTrx(quint32 tranceiver, quint32 ptt, bool state) override;

private:
    RadioBackend *radio;
};
