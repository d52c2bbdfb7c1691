#pragma once

// The virtual panel window and the relay of its LED reports.

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QWidget>

class DialKnob;
class LedLamp;
class QPushButton;

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

// The picture of one virtual panel, laid out as the panel is: the three small
// push-dials on top, two rows of five keys, keys 11 to 14 either side of the
// VFO dial, then PTT and the paddle contacts; five LEDs show what the plug-in
// wrote. Everything can be played with the mouse or from the keyboard (each
// control's tool tip names its key); a held key or a pushed dial looks pressed.
class VirtualPanelWindow : public QWidget
{
    Q_OBJECT

public:
    VirtualPanelWindow(int panel, LedRelay *relay, QWidget *parent = nullptr);
    ~VirtualPanelWindow() override;

    int panel() const { return panelId; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showMask(int mask);
    // Plays the control bound to a keyboard key; false when none is.
    bool play(int key, bool down, bool autoRepeat);
    void releaseHeld();

    int panelId;
    QList<LedLamp *> leds; // bit order of the LED mask
    QList<QPushButton *> keys; // keys 1 to 14
    QList<DialKnob *> dials; // dial 0 (VFO) to 3
    QPushButton *ptt = nullptr;
    QPushButton *dash = nullptr;
    QPushButton *dot = nullptr;
    QSet<int> held; // keyboard keys down now
};
