#pragma once

// HamlibRadio, a real radio behind the reference host, reached through rigctld.

#include "radiobackend.h"
#include "rigctlconnection.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QTimer>

#include <optional>

namespace rig {
struct Mapping;
}

// A radio that Hamlib knows, driven through rigctld: the host's device
// manager for the plug-in. Everything runs on the owner's event loop through
// one RigctlConnection, one command at a time, in this order:
//  1. transmit on/off (the newest wish only);
//  2. queued settings (a newer value of the same setting replaces a queued one);
//  3. the frequency: the dial's steps are added into one target, and the
//     newest target is sent once the previous set is answered, so the radio
//     ends exactly where the operator stopped;
//  4. while nothing else waits, the radio's state is polled four times a
//     second; a poll answer for a setting that has a newer set waiting is
//     dropped.
// Transmit reported by the radio, whoever keyed it, is announced through
// moxChanged(0, state). The radio is one transceiver; every receiver number
// the panel sends addresses it.
class HamlibRadio : public RadioBackend
{
    Q_OBJECT

public:
    static constexpr int PollIntervalMs = 250;

    explicit HamlibRadio(QObject *parent = nullptr);
    ~HamlibRadio() override;

    void open(const QString &host, quint16 port);
    RigctlConnection *connection() { return &link; }
    // Un-keys the transmitter if this host keyed it, waiting for the radio's
    // answer at most `waitMs` (an event loop runs meanwhile).
    void shutDown(int waitMs = 1000);

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
    quint32 tranceivers() const override { return 1; }
    bool mox(quint32 tranceiver) const override;
    bool rit(quint32 receiver) const override;
    bool xit(quint32 receiver) const override;
    double mainVolume() const override;
    void setMainVolume(double dB) override;

    // RadioBackend
    void panelCommand(const QVariantList &message) override;
    void setMox(quint32 tranceiver, bool state) override;
    QString describe() const override;

    // What the radio reported last.
    bool isConnected() const { return link.isReady(); }
    double frequency(int vfo) const { return freq[vfo & 1]; }
    int tunedVfo() const;
    QString mode() const { return reported.value("M"); }
    bool transmitting() const { return pttOn; }
    // A setting as rigctld writes it ("L AF" -> "0.500000", "U RIT" -> "1").
    QString value(const QByteArray &key) const { return reported.value(key); }
    // Nothing waits to be sent and nothing is in flight.
    bool idle() const;

signals:
    // The radio's reported state or the connection changed.
    void stateChanged();

private:
    struct Op
    {
        QByteArray key; // "L AF", "U RIT", "M", "G CPY"
        QString value; // what follows the key on the line, "" for a get
        QString name; // the panel command or operation, for the log
        bool poll = false;
        int vfo = 0; // F: the VFO it tunes
    };

    void apply(const rig::Mapping &m, const QVariantList &message);
    void queueSet(const QByteArray &key, const QString &value, const QString &name,
                  bool coalesce = true);
    void stepLevel(const rig::Mapping &m, int steps);
    void toggle(const QByteArray &key, const QString &name);
    void tune(int vfo, double hz);
    void setPtt(bool state);
    QString intended(const QByteArray &key) const;
    double base(int vfo) const;
    bool pendingSet(const QByteArray &key) const;
    void pump();
    void send(const Op &op);
    void onReplied(const QByteArray &command, const QStringList &values, int code);
    void report(const QByteArray &key, const QString &value);
    void say(const QString &line) { emit changed(line); }

    RigctlConnection link;
    QTimer pollTimer;
    bool pollDue = false;
    int pollAt = 0;
    QList<Op> queue;
    std::optional<double> target[2];
    std::optional<bool> pttWanted;
    std::optional<Op> inFlight;
    double freq[2] = {0, 0};
    bool known[2] = {false, false};
    double unknownOffset[2] = {0, 0};
    bool pttOn = false;
    bool keyedHere = false;
    QHash<QByteArray, QString> reported;
    QSet<QByteArray> unsupported;
    QSet<QString> said;
    bool everReady = false;
    bool gone = false;
};
