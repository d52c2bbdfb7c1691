#pragma once

// DialixAbstract, the interface the host drives a panel plug-in through.

#include <QObject>
#include <QString>
#include <QVariant>
#include <QtPlugin>

class QLayout;
class QSettings;
class qrvCommand;
class DeviceManagerAbstract;

// The interface through which the host drives a panel plug-in. The host loads
// the plug-in, casts its root object to this interface and then hands over, in
// any order and as often as it likes, its layout, device manager, settings,
// channel count and command messages. Messages for the host leave through
// sCommand().
//
// Everything the host passes in (layout, manager, settings) is borrowed.
class DialixAbstract : public QObject
{
    Q_OBJECT

public:
    explicit DialixAbstract(QObject *parent = nullptr)
        : QObject(parent)
    { }
    ~DialixAbstract() override = default;

    virtual QString name() const { return QStringLiteral("No name"); }
    // Places the plug-in's own widget into the host's layout. False when the
    // plug-in has nothing to show.
    virtual bool addWidget(QLayout *layout)
    {
        Q_UNUSED(layout)
        return false;
    }
    virtual void closeDevices() { }
    virtual void saveSettings(QSettings *settings) = 0;
    virtual void readSettings(QSettings *settings) = 0;
    virtual void saveExtraSettings(QSettings *settings) { Q_UNUSED(settings) }
    virtual void readExtraSettings(QSettings *settings) { Q_UNUSED(settings) }
    virtual void refreshState() { }
    virtual qrvCommand *command() = 0;
    virtual void setManager(DeviceManagerAbstract *manager) { Q_UNUSED(manager) }

public slots:
    // One command message from the host (a QVariantList led by the command id).
    virtual void setCommand(QVariant cmd) = 0;
    // Number of receive channels the host runs.
    virtual void setChannels(uint value) { Q_UNUSED(value) }

signals:
    // One command message for the host.
    void sCommand(QVariant cmd);
};

#define DialixAbstract_iid "Brindlecraft.Quorvane2.plugin"
Q_DECLARE_INTERFACE(DialixAbstract, DialixAbstract_iid)
