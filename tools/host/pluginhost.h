#pragma once

// PluginHost, which loads a panel plug-in and serves it as the host does.

#include "interfaces/dialixabstract.h"
#include "radiomodel.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include <memory>

class QLayout;
class QPluginLoader;
class QSettings;
class qrvCommand;

// The host's side of the plug-in protocol: loads a panel plug-in, checks what
// it says about itself, hands it the host's radio, and decodes every command
// it sends with the host's own codec, applying the panel commands to the radio.
class PluginHost : public QObject
{
    Q_OBJECT

public:
    static constexpr const char *ExpectedIid = "Brindlecraft.Quorvane2.plugin";
    explicit PluginHost(quint32 receivers = 2, QObject *parent = nullptr);
    ~PluginHost() override;

    // Reads the metadata, checks IID, class name and name, loads the library
    // and casts its root object. False with errorString() on any failure.
    bool load(const QString &path);
    QString errorString() const { return error; }
    QJsonObject metaData() const { return meta; }

    // Hands over, in the host's order: layout, device manager, settings,
    // channel count and the CW-key object (as a command message).
    void bind(QLayout *layout, QSettings *settings, uint channels);
    // Closes the panels and stores the settings, as the host does before it
    // quits.
    void shutDown();

    DialixAbstract *plugin() const { return instance; }
    // The radio the plug-in drives: the simulated one unless another was set.
    RadioBackend *radio() { return backend; }
    // Puts another radio behind the host (before bind()); borrowed.
    void setRadio(RadioBackend *radio);
    HostCwKey *cwKey() { return &key; }
    // The host's encoder: every message it sends goes to the plug-in.
    qrvCommand *commands() const { return encoder.get(); }

signals:
    // Every message the plug-in sent, with its readable form.
    void commandReceived(const QVariant &message, const QString &text);

private:
    RadioModel model;
    RadioBackend *backend = &model;
    HostCwKey key;
    std::shared_ptr<qrvCommand> encoder;
    std::unique_ptr<QPluginLoader> loader;
    QPointer<DialixAbstract> instance;
    QSettings *settings = nullptr;
    QJsonObject meta;
    QString error;
};
