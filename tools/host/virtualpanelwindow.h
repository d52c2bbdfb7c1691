#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QWidget>

class LedLamp;

// Brings the LED reports that the plug-in's reader threads write to the
// virtual panels over to the GUI thread. One relay serves every panel; it must
// outlive the plug-in's open panels (create it before loading the plug-in).
class LedRelay : public QObject
{
    Q_OBJECT

public:
    explicit LedRelay(QObject *parent = nullptr);
    ~LedRelay() override;

    // The last mask written to the panel, -1 before the first.
    int mask(int panel) const { return masks.value(panel, -1); }

    // Names of the lit LEDs of a mask, e.g. "TX Keys".
    static QString describe(int mask);

signals:
    // A panel received an LED report whose mask differs from the previous one.
    void ledChanged(int panel, int previous, int mask);

private:
    void onReport(int panel, int mask);

    int listener = -1;
    QHash<int, int> masks;
};

// The picture of one virtual panel: its fourteen keys, four push-dials, PTT and
// paddle contacts, and five LEDs that show what the plug-in wrote.
class VirtualPanelWindow : public QWidget
{
    Q_OBJECT

public:
    VirtualPanelWindow(int panel, LedRelay *relay, QWidget *parent = nullptr);

    int panel() const { return panelId; }

private:
    void showMask(int mask);

    int panelId;
    QList<LedLamp *> leds; // bit order of the LED mask
};
