#pragma once

// RadioBackend, the radio behind the reference host.

#include "interfaces/devicemanagerabstract.h"

#include <QString>
#include <QVariantList>

// The radio the reference host drives: the host's device manager for the
// plug-in, plus the host's side of it. The simulated radio (RadioModel) and a
// Hamlib radio reached through rigctld (HamlibRadio) both sit behind it.
class RadioBackend : public DeviceManagerAbstract
{
    Q_OBJECT

public:
    explicit RadioBackend(QObject *parent = nullptr)
        : DeviceManagerAbstract(parent)
    { }

    // One panel command message that the host received from the plug-in.
    virtual void panelCommand(const QVariantList &message) = 0;
    // Transmit on or off, asked by the host itself (its MOX box, the CW-key
    // object keyed by the panel's PTT input).
    virtual void setMox(quint32 tranceiver, bool state) = 0;
    // The radio's state as a few lines for the host window.
    virtual QString describe() const = 0;

    // The host's spectrum display switched to or from its 4K mode.
    void setDisplay4k(bool state)
    {
        if (display4k == state)
            return;
        display4k = state;
        emit display4kModeChanged(state);
    }

signals:
    // A readable line for every change of the radio's state.
    void changed(const QString &line);

private:
    bool display4k = false;
};
