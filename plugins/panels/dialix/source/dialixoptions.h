#pragma once

// DialixOptions, the options page of one panel.

#include <QList>
#include <QWidget>

#include <memory>

#include "ui_dialixoptions.h"

class QSettings;
class QSignalMapper;
class QTimer;

// The options page of one panel.
//
// The page holds the controls whose state the panel's controller reads live
// (switches, receiver, PTT transfer, dial steps) and the picture of the panel:
// one push button per key and dial push, and the VFO dial. The controller
// reaches the controls through `ui` (object names as in dialixoptions.ui), gives
// the buttons their function menus and labels, and restarts the dial-release
// timers while a small dial turns.
//
// The page stores nothing by itself; the controller calls the option-key
// functions with its settings group open, and they use the sub-group "Options".
class DialixOptions : public QWidget
{
    Q_OBJECT

public:
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

    // Maps timer i to unpressDial1(i).
    QSignalMapper *signalMapper = nullptr;
    // Release timers of the dial buttons, index 0 to 3 (single-shot, 50 ms). Timer j
    // restarted by the controller un-lights "pbDial" + j when it fires.
    QList<QTimer *> timers;
    std::unique_ptr<Ui::DialixOptions> ui;

signals:
    void setLedKey(bool state);
    void setLedEncoder(bool state);

public slots:
    // Un-lights pbDial1..pbDial3 for value 1..3 and stops that timer; any other
    // value does nothing.
    void unpressDial1(int value);
};
