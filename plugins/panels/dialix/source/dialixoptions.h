#pragma once

// DialixOptions, the options page of one panel.

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QList>
#include <QWidget>

#include <memory>

class QPushButton;
class QSettings;
class QSignalMapper;
class QString;
class QStringList;
class QTimer;

namespace Ui {
class DialixOptions;
}

// The options page of one panel.
//
// The page holds the controls whose state the panel's controller reads live
// (switches, receiver, PTT transfer, dial steps) and the picture of the panel:
// one push button per key and dial push, and the VFO dial. The Designer form
// stays private: the controller reads and sets the controls through the typed
// functions below and hears their changes through the signals, finds the panel
// buttons by object name (as in dialixoptions.ui) to give them their function
// menus and labels, and tells the page which keys are held and which dials turn.
//
// The page lights those buttons itself and paints them at most once per frame
// while it is visible, however fast the panel reports; while it is hidden it
// only keeps their state, and shows it as it is the moment it is shown.
//
// The page stores nothing by itself; the controller calls the option-key
// functions with its settings group open, and they use the sub-group "Options".
class DialixOptions : public QWidget
{
    Q_OBJECT

public:
    static constexpr int DialReleaseMs = 50; // a dial's button stays lit this long after it turns
    // The shortest time between two paintings of the lights: 25 a second are
    // smooth enough for a highlight, and each painting of the panel picture
    // (the VFO dial above all) costs about a millisecond.
    static constexpr int FrameMs = 40;

    explicit DialixOptions(QWidget *parent = nullptr);
    ~DialixOptions() override;

    // The plug-in's own file: a missing, out-of-range or malformed value loads
    // the key's fixed default.
    void writeOptionKeys(QSettings *settings);
    void readOptionKeys(QSettings *settings);
    // The host's settings: a missing, out-of-range or malformed value leaves the
    // control as it is.
    void writeHostOptionKeys(QSettings *settings);
    void readHostOptionKeys(QSettings *settings);

    // The step spin boxes: how far one click of a dial moves its function.
    enum class Step {
        Volume,
        MicGain,
        Sql,
        FilterHigh,
        FilterLow,
        FilterWidth,
        FilterShift,
        Drive,
        RfGain
    };
    int step(Step which) const;

    bool isEnabledChecked() const;
    bool isKeyLedChecked() const;
    bool isEncoderLedChecked() const;
    bool isUseIfChecked() const;
    void setUseIfChecked(bool on);
    bool isUseIfRitChecked() const;
    void setUseIfRitChecked(bool on);
    bool isVfoBChecked() const;
    void setVfoBChecked(bool on);

    // The receiver choice: one item per name, the first one current; -1 while empty.
    void setReceiverNames(const QStringList &names);
    int receiverCount() const;
    int receiver() const;
    void setReceiver(int index);
    // Sets every item's text again, so that the box lays its items out anew.
    void refreshReceiverTexts();

    int pttTransferMode() const;
    void setPttPortVisible(bool visible);
    void setDeviceListVisible(bool visible);
    void setPortNames(const QStringList &names);
    QString portName() const;
    bool isPortEnabledChecked() const;
    void setPortEnabledChecked(bool on);
    bool isDtrChecked() const;
    bool isRtsChecked() const;

    // Turns the VFO dial's picture by `steps`, wrapping at its maximum, with
    // the lights' next painting.
    void turnVfoDial(int steps);

    // Key n ("pbFunc" + n, 1 to 17) is lit while it is held. Dial j's button
    // ("pbDial" + j, 1 to 3) is lit from a movement until DialReleaseMs after
    // the last one. Out-of-range numbers are ignored.
    void lightKey(int n, bool on);
    void lightDial(int j);
    bool isKeyLit(int n) const;
    bool isDialLit(int j) const;

    // Maps timer i to unpressDial1(i).
    QSignalMapper *signalMapper = nullptr;
    // Release timers of the dial buttons, index 0 to 3 (single-shot, 50 ms). Timer j
    // restarted by the controller un-lights "pbDial" + j when it fires.
    QList<QTimer *> timers;

signals:
    void setLedKey(bool state);
    void setLedEncoder(bool state);
    // The controls' own changes, passed on.
    void enableToggled(bool on);
    void vfoBToggled(bool on);
    void receiverChanged(int index);
    void pttTransferChanged(int index);
    void portEnableToggled(bool on);

public slots:
    // Un-lights pbDial1..pbDial3 for value 1..3 and stops that timer, unless
    // the dial moved again since the timer started: then the timer runs on for
    // the time left to DialReleaseMs after that movement. Any other value does
    // nothing.
    void unpressDial1(int value);

protected:
    void showEvent(QShowEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void lightsChanged();
    void paintLights();

    friend class DialixTestAccess;
    std::unique_ptr<Ui::DialixOptions> ui;
    QList<QPushButton *> keyButtons; // pbFunc1 .. pbFunc17
    QList<QPushButton *> dialButtons; // pbDial0 .. pbDial3
    quint32 keysLit = 0; // bit n - 1 for key n
    quint32 dialsLit = 0; // bit j for dial j
    QElapsedTimer clock;
    qint64 dialMovedMs[4] = {};
    int vfoSteps = 0; // not yet painted
    QBasicTimer frame; // runs while lights wait to be painted on a visible page
};
