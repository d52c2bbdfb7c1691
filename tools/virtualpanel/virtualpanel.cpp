// The virtual panel: hidapi's functions over simulated panels.

#include "tools/virtualpanel/virtualpanel.h"

#include <hidapi.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace protocol = dialix::protocol;

namespace {

struct Input
{
    QByteArray data;
    bool error = false;
};

struct Panel
{
    int id = 0;
    VirtualPanel::PanelInfo info;
    QByteArray path;
    bool plugged = true;
    quint32 switches = 0;
    std::deque<Input> input;
    QList<QByteArray> written;
    bool readsFail = false;
    bool writesFail = false;
    bool writesBlock = false;
    bool openFails = false;
    int reportIntervalMs = 0;
    std::chrono::steady_clock::time_point lastReport;
    int handles = 0;
    int readCalls = 0;
    int failedWrites = 0;
    int blockedWrites = 0;
    // Wakes the readers of this panel only (input queued, unplugged, reads
    // failing, a handle closed), as hidraw's poll wakes per device: the
    // readers of other panels sleep on.
    std::condition_variable readable;
};

struct Bus
{
    std::mutex mutex;
    std::condition_variable changed; // any change of any panel or handle
    std::map<int, std::shared_ptr<Panel>> panels; // plugged panels, by id
    int nextId = 1;
    int openHandles = 0;
    int enumerations = 0;
    bool enumerateFails = false;
    std::map<int, VirtualPanel::WriteListener> listeners;
    int nextListener = 1;
    std::wstring error;
};

Bus &bus()
{
    static Bus instance;
    return instance;
}

std::shared_ptr<Panel> findLocked(int id)
{
    const auto it = bus().panels.find(id);
    return it == bus().panels.end() ? nullptr : it->second;
}

std::wstring toWide(const QString &text)
{
    return text.toStdWString();
}

wchar_t *dupWide(const QString &text)
{
    const std::wstring wide = toWide(text);
    auto *copy = new wchar_t[wide.size() + 1];
    std::copy(wide.begin(), wide.end(), copy);
    copy[wide.size()] = L'\0';
    return copy;
}

char *dupBytes(const QByteArray &text)
{
    auto *copy = new char[static_cast<size_t>(text.size()) + 1];
    std::memcpy(copy, text.constData(), static_cast<size_t>(text.size()));
    copy[text.size()] = '\0';
    return copy;
}

hid_device_info *makeInfo(const Panel &panel)
{
    auto *info = new hid_device_info();
    info->path = dupBytes(panel.path);
    info->vendor_id = panel.info.vendorId;
    info->product_id = panel.info.productId;
    info->serial_number = dupWide(panel.info.serial);
    info->release_number = panel.info.releaseNumber;
    info->manufacturer_string = dupWide(panel.info.manufacturer);
    info->product_string = dupWide(panel.info.product);
    info->usage_page = panel.info.usagePage;
    info->usage = panel.info.usage;
    info->interface_number = panel.info.interfaceNumber;
    info->next = nullptr;
#if HID_API_VERSION >= HID_API_MAKE_VERSION(0, 13, 0)
    info->bus_type = HID_API_BUS_USB;
#endif
    return info;
}

void freeInfo(hid_device_info *info)
{
    while (info) {
        hid_device_info *next = info->next;
        delete[] info->path;
        delete[] info->serial_number;
        delete[] info->manufacturer_string;
        delete[] info->product_string;
        delete info;
        info = next;
    }
}

// Queues a full report with the panel's switch word (caller holds the lock).
void queueStateLocked(Panel &panel, int dial, int delta)
{
    int dials[protocol::DialCount] = {};
    if (dial >= 0 && dial < protocol::DialCount)
        dials[dial] = delta;
    panel.input.push_back(
        {VirtualPanel::makeReport(panel.switches, dials[0], dials[1], dials[2], dials[3]), false});
}

void changeSwitches(int id, quint32 mask, bool on)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    if (!panel)
        return;
    const quint32 next = on ? (panel->switches | mask) : (panel->switches & ~mask);
    if (next == panel->switches)
        return;
    panel->switches = next;
    queueStateLocked(*panel, -1, 0);
    panel->readable.notify_all();
    bus().changed.notify_all();
}

} // namespace

// The opaque handle type of hidapi.
struct hid_device_
{
    std::shared_ptr<Panel> panel;
    std::wstring error;
    bool nonblocking = false;
    bool closed = false;
    hid_device_info *info = nullptr;
};

namespace VirtualPanel {

int plug(const PanelInfo &info)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    auto panel = std::make_shared<Panel>();
    panel->id = bus().nextId++;
    panel->info = info;
    panel->path = "virtualpanel:" + QByteArray::number(panel->id);
    bus().panels.emplace(panel->id, panel);
    bus().changed.notify_all();
    return panel->id;
}

int plug(const QString &serial)
{
    PanelInfo info;
    info.serial = serial;
    return plug(info);
}

void unplug(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    if (!panel)
        return;
    panel->plugged = false;
    panel->input.clear();
    panel->readable.notify_all();
    bus().panels.erase(id);
    bus().changed.notify_all();
}

void reset()
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    for (auto &entry : bus().panels) {
        entry.second->plugged = false;
        entry.second->input.clear();
        entry.second->readable.notify_all();
    }
    bus().panels.clear();
    bus().listeners.clear();
    bus().enumerations = 0;
    bus().enumerateFails = false;
    bus().error.clear();
    bus().changed.notify_all();
}

QList<int> panels()
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    QList<int> ids;
    for (const auto &entry : bus().panels)
        ids.append(entry.first);
    return ids;
}

bool isPlugged(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    return findLocked(id) != nullptr;
}

QByteArray path(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    return panel ? panel->path : QByteArray();
}

QByteArray makeReport(quint32 switches, int dial0, int dial1, int dial2, int dial3)
{
    QByteArray report(protocol::ReportSize, '\0');
    for (int i = 0; i < protocol::SwitchBytes; ++i)
        report[protocol::FirstSwitchByte + i] = static_cast<char>((switches >> (8 * i)) & 0xFF);
    const int dials[protocol::DialCount] = {dial0, dial1, dial2, dial3};
    for (int k = 0; k < protocol::DialCount; ++k)
        report[protocol::FirstDialByte + k] =
            static_cast<char>(static_cast<signed char>(std::clamp(dials[k], -128, 127)));
    return report;
}

void queueReport(int id, const QByteArray &report)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    if (!panel)
        return;
    panel->input.push_back({report, false});
    panel->readable.notify_all();
    bus().changed.notify_all();
}

void queueReadError(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    if (!panel)
        return;
    panel->input.push_back({QByteArray(), true});
    panel->readable.notify_all();
    bus().changed.notify_all();
}

int pendingReports(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    return panel ? static_cast<int>(panel->input.size()) : 0;
}

bool waitUntilRead(int id, int timeoutMs)
{
    std::unique_lock<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    if (!panel)
        return false;
    return bus().changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                  [&] { return panel->input.empty(); });
}

void setSwitches(int id, quint32 word)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    if (!panel || panel->switches == (word & protocol::SwitchMask))
        return;
    panel->switches = word & protocol::SwitchMask;
    queueStateLocked(*panel, -1, 0);
    panel->readable.notify_all();
    bus().changed.notify_all();
}

quint32 switches(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    return panel ? panel->switches : 0;
}

void pressKey(int id, int key)
{
    if (key >= 0 && key < protocol::KeyCount)
        changeSwitches(id, 1u << (protocol::FirstKeyBit + key), true);
}

void releaseKey(int id, int key)
{
    if (key >= 0 && key < protocol::KeyCount)
        changeSwitches(id, 1u << (protocol::FirstKeyBit + key), false);
}

void pushDial(int id, int dial, bool down)
{
    if (dial >= 0 && dial < protocol::DialCount)
        changeSwitches(id, 1u << (protocol::FirstDialPushBit + dial), down);
}

void turnDial(int id, int dial, int delta)
{
    if (dial < 0 || dial >= protocol::DialCount || delta == 0)
        return;
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    if (!panel)
        return;
    while (delta != 0) {
        const int step = std::clamp(delta, -128, 127);
        queueStateLocked(*panel, dial, step);
        delta -= step;
    }
    panel->readable.notify_all();
    bus().changed.notify_all();
}

void setPtt(int id, bool down)
{
    changeSwitches(id, 1u << protocol::PttBit, down);
}

void setDash(int id, bool down)
{
    changeSwitches(id, 1u << protocol::DashBit, down);
}

void setDot(int id, bool down)
{
    changeSwitches(id, 1u << protocol::DotBit, down);
}

QList<QByteArray> writes(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    return panel ? panel->written : QList<QByteArray>();
}

int writeCount(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    return panel ? panel->written.size() : 0;
}

QList<quint8> ledMasks(int id)
{
    QList<quint8> masks;
    for (const QByteArray &report : writes(id)) {
        if (report.size() == protocol::LedReportSize && report[0] == char(protocol::LedReportId))
            masks.append(static_cast<quint8>(report[1]));
    }
    return masks;
}

int ledMask(int id)
{
    const QList<quint8> masks = ledMasks(id);
    return masks.isEmpty() ? -1 : masks.last();
}

void clearWrites(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    if (const auto panel = findLocked(id))
        panel->written.clear();
}

bool waitForWrites(int id, int count, int timeoutMs)
{
    std::unique_lock<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    if (!panel)
        return false;
    return bus().changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                  [&] { return panel->written.size() >= count; });
}

int addWriteListener(WriteListener listener)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const int id = bus().nextListener++;
    bus().listeners.emplace(id, std::move(listener));
    return id;
}

void removeWriteListener(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    bus().listeners.erase(id);
}

int openHandles(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    return panel ? panel->handles : 0;
}

int openHandles()
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    return bus().openHandles;
}

int readCalls(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    return panel ? panel->readCalls : 0;
}

int failedWrites(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    return panel ? panel->failedWrites : 0;
}

int enumerations()
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    return bus().enumerations;
}

void setReadsFail(int id, bool fail)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    if (const auto panel = findLocked(id)) {
        panel->readsFail = fail;
        panel->readable.notify_all();
    }
    bus().changed.notify_all();
}

void setWritesFail(int id, bool fail)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    if (const auto panel = findLocked(id))
        panel->writesFail = fail;
}

void setWritesBlock(int id, bool block)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    if (const auto panel = findLocked(id))
        panel->writesBlock = block;
    bus().changed.notify_all();
}

int blockedWrites(int id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const auto panel = findLocked(id);
    return panel ? panel->blockedWrites : 0;
}

void setReportInterval(int id, int milliseconds)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    if (const auto panel = findLocked(id)) {
        panel->reportIntervalMs = std::max(0, milliseconds);
        panel->readable.notify_all();
    }
    bus().changed.notify_all();
}

void setOpenFails(int id, bool fail)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    if (const auto panel = findLocked(id))
        panel->openFails = fail;
}

void setEnumerateFails(bool fail)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    bus().enumerateFails = fail;
}

} // namespace VirtualPanel

// ---- hidapi -------------------------------------------------------------------

namespace {

hid_device *openLocked(const std::shared_ptr<Panel> &panel)
{
    if (panel->openFails) {
        bus().error = L"Failed to open a device with path '"
            + toWide(QString::fromLatin1(panel->path)) + L"': Permission denied";
        return nullptr;
    }
    auto *dev = new hid_device_();
    dev->panel = panel;
    ++panel->handles;
    ++bus().openHandles;
    bus().error.clear();
    bus().changed.notify_all();
    return dev;
}

int readLocked(std::unique_lock<std::mutex> &lock, hid_device *dev, unsigned char *data,
               size_t length, int milliseconds)
{
    Panel &panel = *dev->panel;
    ++panel.readCalls;
    const auto ready = [&] {
        return !panel.input.empty() || !panel.plugged || panel.readsFail || dev->closed;
    };
    using Clock = std::chrono::steady_clock;
    const auto now = Clock::now();
    const auto repeat = panel.lastReport + std::chrono::milliseconds(panel.reportIntervalMs);
    if (panel.reportIntervalMs > 0
        && (milliseconds < 0 || repeat < now + std::chrono::milliseconds(milliseconds))) {
        // The panel sends its state again when its interval is up.
        if (!panel.readable.wait_until(lock, repeat, ready))
            queueStateLocked(panel, -1, 0);
    } else if (milliseconds < 0) {
        panel.readable.wait(lock, ready);
    } else if (milliseconds > 0) {
        panel.readable.wait_for(lock, std::chrono::milliseconds(milliseconds), ready);
    }

    if (!panel.plugged) {
        dev->error = L"hid_read_timeout: device disconnected";
        return -1;
    }
    if (panel.readsFail) {
        dev->error = L"hid_read_timeout: error polling device";
        return -1;
    }
    if (panel.input.empty())
        return 0;
    const Input input = panel.input.front();
    panel.input.pop_front();
    panel.lastReport = Clock::now();
    bus().changed.notify_all();
    if (input.error) {
        dev->error = L"hid_read_timeout: read error";
        return -1;
    }
    const size_t n = std::min(length, static_cast<size_t>(input.data.size()));
    if (n > 0)
        std::memcpy(data, input.data.constData(), n);
    return static_cast<int>(n);
}

int copyString(const QString &text, wchar_t *string, size_t maxlen)
{
    if (!string || maxlen == 0)
        return -1;
    const std::wstring wide = toWide(text);
    const size_t n = std::min(wide.size(), maxlen - 1);
    std::copy(wide.begin(), wide.begin() + static_cast<std::ptrdiff_t>(n), string);
    string[n] = L'\0';
    return 0;
}

} // namespace

extern "C" {

int HID_API_EXPORT HID_API_CALL hid_init(void)
{
    return 0;
}

int HID_API_EXPORT HID_API_CALL hid_exit(void)
{
    return 0;
}

struct hid_device_info HID_API_EXPORT *HID_API_CALL hid_enumerate(unsigned short vendor_id,
                                                                  unsigned short product_id)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    ++bus().enumerations;
    if (bus().enumerateFails) {
        bus().error = L"hid_enumerate: failed";
        return nullptr;
    }
    hid_device_info *head = nullptr;
    hid_device_info *tail = nullptr;
    for (const auto &entry : bus().panels) {
        const Panel &panel = *entry.second;
        if ((vendor_id != 0 && vendor_id != panel.info.vendorId)
            || (product_id != 0 && product_id != panel.info.productId))
            continue;
        hid_device_info *info = makeInfo(panel);
        (tail ? tail->next : head) = info;
        tail = info;
    }
    bus().error = head ? L"" : L"No HID devices found in the system.";
    return head;
}

void HID_API_EXPORT HID_API_CALL hid_free_enumeration(struct hid_device_info *devs)
{
    freeInfo(devs);
}

HID_API_EXPORT hid_device *HID_API_CALL hid_open(unsigned short vendor_id,
                                                 unsigned short product_id,
                                                 const wchar_t *serial_number)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    for (const auto &entry : bus().panels) {
        const auto &panel = entry.second;
        if (panel->info.vendorId != vendor_id || panel->info.productId != product_id)
            continue;
        if (serial_number && toWide(panel->info.serial) != serial_number)
            continue;
        return openLocked(panel);
    }
    bus().error = L"hid_open: no matching device";
    return nullptr;
}

HID_API_EXPORT hid_device *HID_API_CALL hid_open_path(const char *path)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    for (const auto &entry : bus().panels) {
        if (path && entry.second->path == path)
            return openLocked(entry.second);
    }
    bus().error = L"hid_open_path: no such device";
    return nullptr;
}

int HID_API_EXPORT HID_API_CALL hid_write(hid_device *dev, const unsigned char *data, size_t length)
{
    if (!dev || !data)
        return -1;
    QByteArray report;
    std::vector<VirtualPanel::WriteListener> listeners;
    int panelId = 0;
    {
        std::unique_lock<std::mutex> lock(bus().mutex);
        Panel &panel = *dev->panel;
        if (panel.writesBlock && panel.plugged) {
            ++panel.blockedWrites;
            bus().changed.notify_all();
            bus().changed.wait(lock, [&] { return !panel.writesBlock || !panel.plugged; });
            --panel.blockedWrites;
        }
        if (!panel.plugged || panel.writesFail) {
            ++panel.failedWrites;
            dev->error =
                panel.plugged ? L"hid_write: write failed" : L"hid_write: device disconnected";
            return -1;
        }
        report = QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(length));
        panel.written.append(report);
        panelId = panel.id;
        for (const auto &entry : bus().listeners)
            listeners.push_back(entry.second);
        bus().changed.notify_all();
    }
    for (const auto &listener : listeners)
        listener(panelId, report);
    return static_cast<int>(length);
}

int HID_API_EXPORT HID_API_CALL hid_read_timeout(hid_device *dev, unsigned char *data,
                                                 size_t length, int milliseconds)
{
    if (!dev || !data)
        return -1;
    std::unique_lock<std::mutex> lock(bus().mutex);
    return readLocked(lock, dev, data, length, milliseconds);
}

int HID_API_EXPORT HID_API_CALL hid_read(hid_device *dev, unsigned char *data, size_t length)
{
    if (!dev || !data)
        return -1;
    std::unique_lock<std::mutex> lock(bus().mutex);
    return readLocked(lock, dev, data, length, dev->nonblocking ? 0 : -1);
}

int HID_API_EXPORT HID_API_CALL hid_set_nonblocking(hid_device *dev, int nonblock)
{
    if (!dev)
        return -1;
    std::lock_guard<std::mutex> lock(bus().mutex);
    dev->nonblocking = nonblock != 0;
    return 0;
}

int HID_API_EXPORT HID_API_CALL hid_send_feature_report(hid_device *dev, const unsigned char *,
                                                        size_t)
{
    if (!dev)
        return -1;
    std::lock_guard<std::mutex> lock(bus().mutex);
    dev->error = L"hid_send_feature_report: not supported by the virtual panel";
    return -1;
}

int HID_API_EXPORT HID_API_CALL hid_get_feature_report(hid_device *dev, unsigned char *, size_t)
{
    if (!dev)
        return -1;
    std::lock_guard<std::mutex> lock(bus().mutex);
    dev->error = L"hid_get_feature_report: not supported by the virtual panel";
    return -1;
}

int HID_API_EXPORT HID_API_CALL hid_get_input_report(hid_device *dev, unsigned char *, size_t)
{
    if (!dev)
        return -1;
    std::lock_guard<std::mutex> lock(bus().mutex);
    dev->error = L"hid_get_input_report: not supported by the virtual panel";
    return -1;
}

void HID_API_EXPORT HID_API_CALL hid_close(hid_device *dev)
{
    if (!dev)
        return;
    {
        std::lock_guard<std::mutex> lock(bus().mutex);
        dev->closed = true;
        --dev->panel->handles;
        --bus().openHandles;
        freeInfo(dev->info);
        dev->panel->readable.notify_all();
        bus().changed.notify_all();
    }
    delete dev;
}

int HID_API_EXPORT_CALL hid_get_manufacturer_string(hid_device *dev, wchar_t *string, size_t maxlen)
{
    if (!dev)
        return -1;
    std::lock_guard<std::mutex> lock(bus().mutex);
    return copyString(dev->panel->info.manufacturer, string, maxlen);
}

int HID_API_EXPORT_CALL hid_get_product_string(hid_device *dev, wchar_t *string, size_t maxlen)
{
    if (!dev)
        return -1;
    std::lock_guard<std::mutex> lock(bus().mutex);
    return copyString(dev->panel->info.product, string, maxlen);
}

int HID_API_EXPORT_CALL hid_get_serial_number_string(hid_device *dev, wchar_t *string,
                                                     size_t maxlen)
{
    if (!dev)
        return -1;
    std::lock_guard<std::mutex> lock(bus().mutex);
    return copyString(dev->panel->info.serial, string, maxlen);
}

int HID_API_EXPORT_CALL hid_get_indexed_string(hid_device *dev, int, wchar_t *, size_t)
{
    if (!dev)
        return -1;
    std::lock_guard<std::mutex> lock(bus().mutex);
    dev->error = L"hid_get_indexed_string: not supported by the virtual panel";
    return -1;
}

#if HID_API_VERSION >= HID_API_MAKE_VERSION(0, 13, 0)
struct hid_device_info HID_API_EXPORT *HID_API_CALL hid_get_device_info(hid_device *dev)
{
    if (!dev)
        return nullptr;
    std::lock_guard<std::mutex> lock(bus().mutex);
    if (!dev->info)
        dev->info = makeInfo(*dev->panel);
    return dev->info;
}
#endif

HID_API_EXPORT const wchar_t *HID_API_CALL hid_error(hid_device *dev)
{
    std::lock_guard<std::mutex> lock(bus().mutex);
    const std::wstring &text = dev ? dev->error : bus().error;
    return text.empty() ? L"Success" : text.c_str();
}

HID_API_EXPORT const struct hid_api_version *HID_API_CALL hid_version(void)
{
    static const hid_api_version version = {HID_API_VERSION_MAJOR, HID_API_VERSION_MINOR,
                                            HID_API_VERSION_PATCH};
    return &version;
}

HID_API_EXPORT const char *HID_API_CALL hid_version_str(void)
{
    return HID_API_VERSION_STR;
}

} // extern "C"
