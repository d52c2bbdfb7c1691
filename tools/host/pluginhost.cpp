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
    , encoder(std::make_shared<qrvCommand>())
{
    model.setCwKeyControl(&key);
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
        backend->panelCommand(message.toList());
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
    instance->setManager(backend);
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

void PluginHost::setRadio(RadioBackend *radio)
{
    backend = radio ? radio : &model;
    backend->setCwKeyControl(&key);
    key.setRadio(backend);
}
