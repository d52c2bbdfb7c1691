#pragma once

// Dialix, the panel device: one USB control panel seen through hidapi.

#include "plugins/panels/dialix/source/panelprotocol.h"

#include <QByteArray>
#include <QList>
#include <QQueue>
#include <QThread>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include <hidapi.h>

// The Dialix USB control panel: 14 keys, four push-dials, a PTT input, CW paddle
// contacts and five LEDs, seen through hidapi as one HID device.
//
// The object lives on its owner's (GUI) thread. findDevices(), openDevice(),
// setLed() and closeDevice() are called there. While the panel is open, the
// object's own thread (run()) does every read and write of the HID handle: it
// writes the queued LED reports and reads the 17-byte input reports, and emits
// there one signal per switch edge and per dial movement, in the report's
// order. Receivers on the owner's thread connect to them with queued
// connections, so their slots run on their own thread in that same order; the
// three enumerations are registered meta-types ("Dialix::Buttons",
// "Dialix::DialButtons", "Dialix::Dials") for that.
//
// The reports' layout and their decoding are in panelprotocol.h.
class Dialix : public QThread
{
    Q_OBJECT

public:
    // Front-panel keys; the value is the bit number in the switch word.
    enum Buttons {
        Key0 = 0,
        Key1,
        Key2,
        Key3,
        Key4,
        Key5,
        Key6,
        Key7,
        Key8,
        Key9,
        Key10,
        Key11,
        Key12,
        Key13,
        Key14,
    };
    Q_ENUM(Buttons)

    // Pushes on the dials; the value is the bit number in the switch word, so the
    // first one is 15, not 0.
    enum DialButtons {
        KeyEnc0 = 15,
        KeyEnc1,
        KeyEnc2,
        KeyEnc3,
    };
    Q_ENUM(DialButtons)

    // Dials; the value is the dial index (its movement is in report byte 13 + index).
    enum Dials {
        Enc0 = 0,
        Enc1,
        Enc2,
        Enc3,
    };
    Q_ENUM(Dials)

    static constexpr int ReadTimeoutMs = 5; // longest wait for input per loop turn
    static constexpr int PopLimitMs = 2; // longest wait for a queued LED report
    static constexpr int CloseWaitMs = 10; // time given to the LED-off reports on close
    static constexpr int FailedReadsBeforeBackOff = 20; // failed reads in a row at the 5 ms pace
    static constexpr int FailedReadPaceMs = 100; // then: reads of a failing (unplugged) handle

    // closeDevice() results.
    static constexpr qint32 Closed = 0;
    static constexpr qint32 NotOpen = 2;

    explicit Dialix(QObject *parent = nullptr);
    ~Dialix() override;

    // Enumerates the panels (vendor 0x1FC9, product 0x0003) and keeps the list,
    // giving back the previous one. Never touches an open handle.
    void findDevices();

    // Opens the first panel of the last enumeration (by its serial number) and
    // starts the reader thread. Does nothing when the list is empty or the
    // panel is already open. Returns true when this call opened the panel.
    bool openDevice();

    // Sets or clears LED bit `bit` (0..7, see dialix::protocol::Led) and queues
    // the whole mask. Ignored while the panel is closed: the mask does not
    // change then.
    void setLed(int bit, bool on);

    // Queues a report for the reader thread to write before its next read.
    // Callable from any thread.
    void pushReport(const QByteArray &bytes);

    // Takes the oldest queued report into `out`, waiting up to `limitMs` for one.
    // Returns false when none arrived in time.
    bool popReport(QByteArray &out, int limitMs);

    // Turns the LEDs off (five reports), lets the reader write them for 10 ms,
    // stops the reader thread and closes the handle. Returns Closed (0), or
    // NotOpen (2) without doing anything when the panel was not open. Reports
    // that the reader has not written within the 10 ms stay queued and go out
    // first at the next open. The PTT and paddle bits of the previous switch
    // word are forgotten, so that contacts still held key again after the next
    // open. Never call it from the reader thread.
    qint32 closeDevice();

    // Decodes one read of `length` bytes against the previous switch word
    // (dialix::protocol::decode) and emits its events, in their order, on the
    // calling thread. Only a read of exactly ReportSize bytes is decoded;
    // anything else is ignored. The reader thread calls it for every read;
    // while the panel is closed it may be called on any one thread.
    void processReport(const unsigned char *data, int length);

    // True from a successful openDevice() until closeDevice().
    bool isOpen() const { return running.load(); }
    // True while closeDevice() serves events for the LED reports.
    bool isClosing() const { return closing.load() > 0; }
    // The panels found by the last findDevices(), in hidapi's order.
    const QList<hid_device_info *> &devices() const { return deviceList; }
    // Head of the last enumeration's linked list (null when nothing was found).
    const hid_device_info *enumeration() const { return deviceInfo; }
    // The LED mask last queued (owner's thread only).
    quint8 ledMask() const { return ledReport[1]; }

signals:
    void button(Dialix::Buttons button, bool state);
    void dialButton(Dialix::DialButtons button, bool state);
    void dial(Dialix::Dials dial, int value);
    void ptt(bool state);
    void dash(bool state);
    void dot(bool state);

protected:
    void run() override;

private:
    void waitForWrites(std::chrono::steady_clock::time_point deadline);
    void noteRead(int got);
    void emitEvent(const dialix::protocol::Event &event);

    QList<hid_device_info *> deviceList;
    hid_device_info *deviceInfo = nullptr;
    hid_device *handle = nullptr;
    std::atomic<bool> running {false};
    std::atomic<int> closing {0};
    quint32 previousSwitches = 0;
    bool readsFailing = false; // reader thread only
    unsigned char inputBuffer[dialix::protocol::ReportSize] = {};
    unsigned char ledReport[dialix::protocol::LedReportSize] = {};
    QQueue<QByteArray> writeQueue;
    std::mutex queueMutex;
    std::condition_variable queueCondition;
};
