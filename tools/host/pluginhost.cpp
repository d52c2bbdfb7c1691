// The reference host's side of the plug-in protocol.

#include "pluginhost.h"

#include "command/qrvcommand.h"
#include "commandtext.h"
#include "interfaces/dialixabstract.h"

#include <QJsonArray>
#include <QPluginLoader>
#include <QSettings>

PluginHost::PluginHost(quint32 receivers, QObject *parent)
    : QObject(parent)
    , model(receivers)
    , key(&model)
    , decoder(std::make_shared<qrvCommand>())
    , encoder(std::make_shared<qrvCommand>())
{
    model.setCwKeyControl(&key);
    connectDecoder();
    connect(encoder.get(), &qrvCommand::sCommand, this, [this](const QVariant &message) {
        if (instance)
            instance->setCommand(message);
    });
}

PluginHost::~PluginHost()
{
    // The root object goes with the loader's library; the host keeps the
    // plug-in's widgets in its own tree until then.
    delete instance.data();
}

bool PluginHost::load(const QString &path)
{
    loader = std::make_unique<QPluginLoader>(path);
    meta = loader->metaData();
    if (meta.isEmpty()) {
        error = tr("%1 is not a plug-in: %2").arg(path, loader->errorString());
        return false;
    }
    const QString iid = meta.value(QLatin1String("IID")).toString();
    if (iid != QLatin1String(ExpectedIid)) {
        error = tr("%1 implements %2, not %3").arg(path, iid, QLatin1String(ExpectedIid));
        return false;
    }
    const QJsonObject data = meta.value(QLatin1String("MetaData")).toObject();
    if (data.value(QLatin1String("name")).toString().isEmpty()) {
        error = tr("%1 has no name in its metadata").arg(path);
        return false;
    }
    QObject *root = loader->instance();
    if (!root) {
        error = tr("cannot load %1: %2").arg(path, loader->errorString());
        return false;
    }
    instance = qobject_cast<DialixAbstract *>(root);
    if (!instance) {
        error = tr("%1 is not a panel plug-in").arg(path);
        return false;
    }
    connect(instance.data(), &DialixAbstract::sCommand, this, [this](const QVariant &message) {
        emit commandReceived(message, commandText(message));
        decoder->setCommand(message);
    });
    return true;
}

void PluginHost::bind(QLayout *layout, QSettings *s, uint channels)
{
    if (!instance)
        return;
    settings = s;
    if (layout)
        instance->addWidget(layout);
    instance->setManager(&model);
    if (settings)
        instance->readSettings(settings);
    instance->setChannels(channels);
    encoder->setCWKeyObject(&key);
}

void PluginHost::shutDown()
{
    if (!instance)
        return;
    instance->closeDevices();
    if (settings) {
        instance->saveSettings(settings);
        settings->sync();
    }
}

void PluginHost::connectDecoder()
{
    qrvCommand *d = decoder.get();
    RadioModel *r = &model;
    connect(d, &qrvCommand::sPanelBandUp, r, [r](uint rx) { r->bandStep(rx, +1); });
    connect(d, &qrvCommand::sPanelBandDown, r, [r](uint rx) { r->bandStep(rx, -1); });
    connect(d, &qrvCommand::sPanelModeUp, r, [r](uint rx) { r->modeStep(rx, +1); });
    connect(d, &qrvCommand::sPanelModeDown, r, [r](uint rx) { r->modeStep(rx, -1); });
    connect(d, &qrvCommand::sPanelVolume, r,
            [r](uint rx, int step) { r->setVolume(rx, r->volume(rx) + step); });
    connect(d, &qrvCommand::sPanelMuteChange, r, [r](uint rx) { r->setMute(rx, !r->muted(rx)); });
    // The panel asks for a change-over; the host knows the state.
    connect(d, &qrvCommand::sPanelMox, r, [r](uint rx, bool) { r->setMox(rx, !r->mox(rx)); });
    connect(d, &qrvCommand::sPanelRitEnable, r, [r](uint rx, uint) { r->setRit(rx, !r->rit(rx)); });
    connect(d, &qrvCommand::sPanelXitEnable, r, [r](uint rx, uint) { r->setXit(rx, !r->xit(rx)); });
    connect(d, &qrvCommand::sPanelVFO, r,
            [r](uint rx, uint channel, int step) { r->tune(rx, channel, step * TuningStep); });
}
