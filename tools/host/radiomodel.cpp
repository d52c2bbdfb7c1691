// The reference host's radio.

#include "radiomodel.h"

#include "command/qrvcommand.h"

#include <QtGlobal>

#include <array>

namespace {

struct Band
{
    const char *name;
    double start;
};
const std::array<Band, 11> bands = {{{"160m", 1840000.0},
                                     {"80m", 3573000.0},
                                     {"60m", 5357000.0},
                                     {"40m", 7074000.0},
                                     {"30m", 10136000.0},
                                     {"20m", 14074000.0},
                                     {"17m", 18100000.0},
                                     {"15m", 21074000.0},
                                     {"12m", 24915000.0},
                                     {"10m", 28074000.0},
                                     {"6m", 50313000.0}}};
const std::array<const char *, 7> modes = {"LSB", "USB", "CW", "AM", "FM", "DIGU", "DIGL"};

QString onOff(bool state)
{
    return state ? QStringLiteral("on") : QStringLiteral("off");
}

QString mhz(double hz)
{
    return QString::number(hz / 1e6, 'f', 6) + QStringLiteral(" MHz");
}

} // namespace

RadioModel::RadioModel(quint32 receivers, QObject *parent)
    : RadioBackend(parent)
    , rx(int(qMax<quint32>(receivers, 1)))
    , decoder(std::make_shared<qrvCommand>())
{
    // Hertz per VFO encoder step.
    constexpr double tuningStep = 10.0;
    qrvCommand *d = decoder.get();
    connect(d, &qrvCommand::sPanelBandUp, this, [this](uint r) { bandStep(r, +1); });
    connect(d, &qrvCommand::sPanelBandDown, this, [this](uint r) { bandStep(r, -1); });
    connect(d, &qrvCommand::sPanelModeUp, this, [this](uint r) { modeStep(r, +1); });
    connect(d, &qrvCommand::sPanelModeDown, this, [this](uint r) { modeStep(r, -1); });
    connect(d, &qrvCommand::sPanelVolume, this,
            [this](uint r, int step) { setVolume(r, volume(r) + step); });
    connect(d, &qrvCommand::sPanelMuteChange, this, [this](uint r) { setMute(r, !muted(r)); });
    // The panel asks for a change-over; the radio knows the state.
    connect(d, &qrvCommand::sPanelMox, this, [this](uint r, bool) { setMox(r, !mox(r)); });
    connect(d, &qrvCommand::sPanelRitEnable, this, [this](uint r, uint) { setRit(r, !rit(r)); });
    connect(d, &qrvCommand::sPanelXitEnable, this, [this](uint r, uint) { setXit(r, !xit(r)); });
    connect(d, &qrvCommand::sPanelVFO, this,
            [this](uint r, uint channel, int step) { tune(r, channel, step * tuningStep); });
}

RadioModel::~RadioModel() = default;

void RadioModel::panelCommand(const QVariantList &message)
{
    decoder->setCommand(message);
}

QString RadioModel::describe() const
{
    QStringList lines;
    for (quint32 r = 0; r < receivers(); ++r) {
        lines << tr("RX%1  %2  %3  %4   A %5 MHz  B %6 MHz")
                     .arg(r + 1)
                     .arg(band(r), -4)
                     .arg(mode(r), -4)
                     .arg(muted(r) ? tr("muted") : tr("%1 dB").arg(volume(r), 0, 'f', 1))
                     .arg(frequency(r, 0) / 1e6, 0, 'f', 6)
                     .arg(frequency(r, 1) / 1e6, 0, 'f', 6);
        lines << tr("      MOX %1  RIT %2  XIT %3  lock %4  VOX %5")
                     .arg(mox(r) ? tr("on") : tr("off"), rit(r) ? tr("on") : tr("off"),
                          xit(r) ? tr("on") : tr("off"), lock(r) ? tr("on") : tr("off"),
                          vox(r) ? tr("on") : tr("off"));
    }
    lines << tr("Mixer mode %1").arg(mixer);
    return lines.join(QLatin1Char('\n'));
}

RadioModel::Receiver *RadioModel::at(quint32 receiver)
{
    return receiver < quint32(rx.size()) ? &rx[int(receiver)] : nullptr;
}

const RadioModel::Receiver *RadioModel::at(quint32 receiver) const
{
    return receiver < quint32(rx.size()) ? &rx[int(receiver)] : nullptr;
}

void RadioModel::setLock(quint32 receiver, bool state)
{
    if (Receiver *r = at(receiver)) {
        r->lock = state;
        report(QStringLiteral("RX%1 lock %2").arg(receiver + 1).arg(onOff(state)));
    }
}

bool RadioModel::lock(quint32 receiver) const
{
    const Receiver *r = at(receiver);
    return r && r->lock;
}

void RadioModel::setVox(quint32 receiver, bool state)
{
    if (Receiver *r = at(receiver)) {
        r->vox = state;
        report(QStringLiteral("RX%1 VOX %2").arg(receiver + 1).arg(onOff(state)));
    }
}

bool RadioModel::vox(quint32 receiver) const
{
    const Receiver *r = at(receiver);
    return r && r->vox;
}

void RadioModel::setVfoaToVfob(quint32 receiver)
{
    if (Receiver *r = at(receiver)) {
        r->vfo[1] = r->vfo[0];
        report(QStringLiteral("RX%1 VFO A -> B, B at %2").arg(receiver + 1).arg(mhz(r->vfo[1])));
    }
}

void RadioModel::setVfobToVfoa(quint32 receiver)
{
    if (Receiver *r = at(receiver)) {
        r->vfo[0] = r->vfo[1];
        report(QStringLiteral("RX%1 VFO B -> A, A at %2").arg(receiver + 1).arg(mhz(r->vfo[0])));
    }
}

void RadioModel::setVfoaSwapVfob(quint32 receiver)
{
    if (Receiver *r = at(receiver)) {
        std::swap(r->vfo[0], r->vfo[1]);
        report(QStringLiteral("RX%1 VFO A <-> B, A at %2").arg(receiver + 1).arg(mhz(r->vfo[0])));
    }
}

void RadioModel::setMixerMode(quint32 mode)
{
    mixer = mode;
    report(QStringLiteral("mixer mode %1").arg(mode));
}

void RadioModel::setMute(quint32 tranceiver, bool state)
{
    if (Receiver *r = at(tranceiver)) {
        r->mute = state;
        report(QStringLiteral("RX%1 mute %2").arg(tranceiver + 1).arg(onOff(state)));
    }
}

quint32 RadioModel::tranceivers() const
{
    return quint32(rx.size());
}

bool RadioModel::mox(quint32 tranceiver) const
{
    const Receiver *r = at(tranceiver);
    return r && r->mox;
}

bool RadioModel::rit(quint32 receiver) const
{
    const Receiver *r = at(receiver);
    return r && r->rit;
}

bool RadioModel::xit(quint32 receiver) const
{
    const Receiver *r = at(receiver);
    return r && r->xit;
}

double RadioModel::mainVolume() const
{
    return rx.first().volume;
}

void RadioModel::setMainVolume(double dB)
{
    setVolume(0, dB);
}

void RadioModel::setMox(quint32 tranceiver, bool state)
{
    Receiver *r = at(tranceiver);
    if (!r || r->mox == state)
        return;
    r->mox = state;
    report(QStringLiteral("TRX%1 MOX %2").arg(tranceiver + 1).arg(onOff(state)));
    emit moxChanged(tranceiver, state);
}

void RadioModel::setRit(quint32 receiver, bool state)
{
    if (Receiver *r = at(receiver)) {
        r->rit = state;
        report(QStringLiteral("RX%1 RIT %2").arg(receiver + 1).arg(onOff(state)));
    }
}

void RadioModel::setXit(quint32 receiver, bool state)
{
    if (Receiver *r = at(receiver)) {
        r->xit = state;
        report(QStringLiteral("RX%1 XIT %2").arg(receiver + 1).arg(onOff(state)));
    }
}

bool RadioModel::muted(quint32 tranceiver) const
{
    const Receiver *r = at(tranceiver);
    return r && r->mute;
}

quint32 RadioModel::vfoMixerMode(quint32 receiver) const
{
    const Receiver *r = at(receiver);
    return r ? r->vfoMixer : 0;
}

double RadioModel::volume(quint32 receiver) const
{
    const Receiver *r = at(receiver);
    return r ? r->volume : MinVolume;
}

void RadioModel::setVolume(quint32 receiver, double dB)
{
    if (Receiver *r = at(receiver)) {
        r->volume = qBound(MinVolume, dB, MaxVolume);
        report(QStringLiteral("RX%1 volume %2 dB").arg(receiver + 1).arg(r->volume, 0, 'f', 1));
    }
}

double RadioModel::frequency(quint32 receiver, quint32 vfo) const
{
    const Receiver *r = at(receiver);
    return r && vfo < 2 ? r->vfo[vfo] : 0.0;
}

void RadioModel::tune(quint32 receiver, quint32 vfo, double hz)
{
    Receiver *r = at(receiver);
    if (!r || vfo > 1 || r->lock)
        return;
    r->vfo[vfo] = qMax(0.0, r->vfo[vfo] + hz);
    report(QStringLiteral("RX%1 VFO %2 %3")
               .arg(receiver + 1)
               .arg(vfo ? QLatin1Char('B') : QLatin1Char('A'))
               .arg(mhz(r->vfo[vfo])));
}

void RadioModel::bandStep(quint32 receiver, int direction)
{
    Receiver *r = at(receiver);
    if (!r)
        return;
    const int n = int(bands.size());
    r->band = ((r->band + direction) % n + n) % n;
    r->vfo[0] = bands[size_t(r->band)].start;
    report(QStringLiteral("RX%1 band %2, VFO A %3")
               .arg(receiver + 1)
               .arg(band(receiver), mhz(r->vfo[0])));
}

void RadioModel::modeStep(quint32 receiver, int direction)
{
    Receiver *r = at(receiver);
    if (!r)
        return;
    const int n = int(modes.size());
    r->mode = ((r->mode + direction) % n + n) % n;
    report(QStringLiteral("RX%1 mode %2").arg(receiver + 1).arg(mode(receiver)));
}

QString RadioModel::band(quint32 receiver) const
{
    const Receiver *r = at(receiver);
    return r ? QString::fromLatin1(bands[size_t(r->band)].name) : QString();
}

QString RadioModel::mode(quint32 receiver) const
{
    const Receiver *r = at(receiver);
    return r ? QString::fromLatin1(modes[size_t(r->mode)]) : QString();
}

HostCwKey::HostCwKey(RadioBackend *radio, QObject *parent)
    : CwKeyControlAbstract(parent)
    , radio(radio)
{ }

void HostCwKey::setKey(quint32 transmitter, quint32 src, bool dash, bool dot)
{
    emit key(transmitter, src, dash, dot);
}

void HostCwKey::setTrx(quint32 tranceiver, quint32 ptt, bool state)
{
    radio->setMox(tranceiver, state);
    emit trx(tranceiver, ptt, state);
}
