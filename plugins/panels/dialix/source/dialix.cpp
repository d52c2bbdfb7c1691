// The panel device: enumeration, open and close, the reader thread, LED reports.

#include "plugins/panels/dialix/source/dialix.h"

#include "interfaces/dialixlogging.h"

#include <QEventLoop>
#include <QTimer>

#include <chrono>

using namespace dialix::protocol;

// The event enumerations carry the report's bit and byte positions.
static_assert(Dialix::Key0 == FirstKeyBit && Dialix::Key14 == FirstKeyBit + KeyCount - 1);
static_assert(Dialix::KeyEnc0 == FirstDialPushBit
              && Dialix::KeyEnc3 == FirstDialPushBit + DialCount - 1);
static_assert(Dialix::Enc0 == 0 && Dialix::Enc3 == DialCount - 1);

namespace {

// The contacts a panel holds down for as long as the operator does.
constexpr quint32 HeldContacts = 1u << PttBit | 1u << DashBit | 1u << DotBit;

} // namespace

Dialix::Dialix(QObject *parent)
    : QThread(parent)
{ }

Dialix::~Dialix()
{
    if (running.load())
        closeDevice();
    hid_free_enumeration(deviceInfo);
    deviceInfo = nullptr;
}

void Dialix::findDevices()
{
    hid_free_enumeration(deviceInfo);
    deviceList.clear();
    deviceInfo = hid_enumerate(VendorId, ProductId);
    for (hid_device_info *info = deviceInfo; info; info = info->next)
        deviceList.append(info);
}

bool Dialix::openDevice()
{
    if (deviceList.isEmpty() || running.load())
        return false;
    hid_device *opened = hid_open(VendorId, ProductId, deviceList.first()->serial_number);
    if (!opened)
        return false;
    handle = opened;
    running.exchange(true);
    start(QThread::InheritPriority);
    return true;
}

void Dialix::setLed(int bit, bool on)
{
    if (!running.load() || bit < 0 || bit > 7)
        return;
    const auto mask = static_cast<unsigned char>(1u << bit);
    if (on)
        ledReport[1] |= mask;
    else
        ledReport[1] &= static_cast<unsigned char>(~mask);
    pushReport(QByteArray(reinterpret_cast<const char *>(ledReport), LedReportSize));
}

void Dialix::pushReport(const QByteArray &bytes)
{
    {
        std::lock_guard<std::mutex> lock(queueMutex);
        writeQueue.enqueue(bytes);
    }
    queueCondition.notify_one();
}

bool Dialix::popReport(QByteArray &out, int limitMs)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(limitMs);
    std::unique_lock<std::mutex> lock(queueMutex);
    while (writeQueue.isEmpty()) {
        if (queueCondition.wait_until(lock, deadline) == std::cv_status::timeout)
            break;
    }
    if (writeQueue.isEmpty())
        return false;
    out = writeQueue.dequeue();
    return true;
}

qint32 Dialix::closeDevice()
{
    if (!running.load())
        return NotOpen;

    // Lamps off in a fixed order, one whole report per step.
    for (const int bit : {LedVfoB, LedTransmit, LedReceiver2, LedDials, LedKeys}) {
        ledReport[1] &= static_cast<unsigned char>(~(1u << bit));
        pushReport(QByteArray(reinterpret_cast<const char *>(ledReport), LedReportSize));
    }

    // Give the reader time to write them while this thread keeps serving events.
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(CloseWaitMs);
    ++closing;
    loop.exec();
    --closing;

    // An event handled in the loop above may have closed the panel already.
    // The flag changes under the queue's lock, so that a reader waiting in
    // waitForWrites() cannot miss the wake-up.
    bool wasRunning = false;
    {
        std::lock_guard<std::mutex> lock(queueMutex);
        wasRunning = running.exchange(false);
    }
    queueCondition.notify_all();
    if (!wasRunning)
        return Closed;
    wait();
    // Pairs with the lock that ends run(): everything the reader did is ordered
    // before what follows here, also for tools that cannot see into wait().
    {
        std::lock_guard<std::mutex> lock(queueMutex);
    }
    hid_close(handle);
    handle = nullptr;
    // Whoever drove the PTT and paddle lets go of them now, since no release
    // could be reported any more. Forgetting their bits makes a contact that is
    // still held when the panel opens again come out as a new press, so the
    // transmitter keys again, while one let go meanwhile stays released. The
    // keys keep theirs: a key still held must not run its function twice.
    previousSwitches &= ~HeldContacts;
    return Closed;
}

void Dialix::processReport(const unsigned char *data, int length)
{
    if (!data || length != ReportSize)
        return;
    const Events events = decode(data, previousSwitches);
    previousSwitches = events.switches;
    for (const Event &event : events)
        emitEvent(event);
}

void Dialix::emitEvent(const Event &event)
{
    const bool state = event.value != 0;
    switch (event.line) {
    case Line::Key:
        emit button(static_cast<Buttons>(event.index), state);
        break;
    case Line::DialPush:
        emit dialButton(static_cast<DialButtons>(event.index), state);
        break;
    case Line::Ptt:
        emit ptt(state);
        break;
    case Line::Dash:
        emit dash(state);
        break;
    case Line::Dot:
        emit dot(state);
        break;
    case Line::Dial:
        emit dial(static_cast<Dials>(event.index), event.value);
        break;
    case Line::None:
        break;
    }
}

void Dialix::waitForWrites(std::chrono::steady_clock::time_point deadline)
{
    // Sleeps until the deadline, but wakes at once for a queued report, which
    // always goes out before the next read, and for closeDevice().
    std::unique_lock<std::mutex> lock(queueMutex);
    queueCondition.wait_until(lock, deadline,
                              [this] { return !writeQueue.isEmpty() || !running.load(); });
}

// One debug line when the reads start failing and one when they work again,
// however many reads fail in between.
void Dialix::noteRead(int got)
{
    if ((got < 0) == readsFailing)
        return;
    readsFailing = got < 0;
    if (readsFailing) {
        const wchar_t *error = hid_error(handle);
        qCDebug(dialixLog, "Dialix: reading the panel fails: %s",
                error ? qUtf8Printable(QString::fromWCharArray(error)) : "(no reason given)");
    } else {
        qCDebug(dialixLog, "Dialix: reading the panel works again");
    }
}

void Dialix::run()
{
    using Clock = std::chrono::steady_clock;

    int failedReads = 0; // in a row
    while (running.load()) {
        // Every queued report is written before the next read, in queue order.
        for (;;) {
            int pending = 0;
            {
                std::lock_guard<std::mutex> lock(queueMutex);
                pending = writeQueue.size();
            }
            QByteArray report;
            if (pending == 0 || !popReport(report, PopLimitMs))
                break;
            // A failed write drops the report; hidapi keeps the error text.
            hid_write(handle, reinterpret_cast<const unsigned char *>(report.constData()),
                      static_cast<size_t>(report.size()));
        }
        if (!running.load())
            break;

        const auto started = Clock::now();
        const int got = hid_read_timeout(handle, inputBuffer, ReportSize, ReadTimeoutMs);
        if (got >= 0)
            failedReads = 0;
        noteRead(got);
        if (got == ReportSize) {
            processReport(inputBuffer, got);
        } else if (got < 0) {
            // An unplugged panel fails every read at once, for good. The error
            // is ignored (the owner closes the panel), but the loop does not
            // spin: it keeps the 5 ms pace for a while, in case the error was a
            // one-off, then slows down to one read per FailedReadPaceMs (at
            // the 5 ms pace a failing handle costs several percent of a core on
            // a slow machine). LED reports and closeDevice() wake it at once.
            const int pace =
                ++failedReads > FailedReadsBeforeBackOff ? FailedReadPaceMs : ReadTimeoutMs;
            waitForWrites(started + std::chrono::milliseconds(pace));
        }
    }
    std::lock_guard<std::mutex> lock(queueMutex); // see closeDevice()
}
