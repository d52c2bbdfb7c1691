#pragma once

// The virtual panel: simulated Dialix panels behind hidapi's own API.
//
// The library dialix_virtualpanel defines the hidapi functions (hid_init,
// hid_exit, hid_enumerate, hid_free_enumeration, hid_open, hid_open_path,
// hid_read, hid_read_timeout, hid_set_nonblocking, hid_write, hid_close,
// hid_error, hid_get_manufacturer_string, hid_get_product_string,
// hid_get_serial_number_string, hid_get_device_info, hid_version, ...) over the
// panels plugged in through the control API below. Link it INSTEAD of the real
// libhidapi, after the code that calls hidapi:
//
//     target_link_libraries(my_test PRIVATE dialix_device dialix_virtualpanel)
//
// The code that calls hidapi is then exactly the code that ships; only the bus
// underneath is simulated.
//
// Behaviour of the simulated bus, modelled on hidapi over Linux hidraw:
//  - hid_enumerate(vid, pid) lists the plugged panels in plug order (0 matches
//    any id). Each entry has a path "virtualpanel:<id>", the serial number,
//    product and manufacturer strings and the interface number of its PanelInfo.
//  - hid_open(vid, pid, serial) opens the first plugged panel with those ids
//    and, when serial is not null, that serial number. Several handles may be
//    open on one panel; they share its input queue.
//  - Each panel has ONE input queue. Reports queued while no handle is open stay
//    queued and are read after the next open. A read returns the oldest queued
//    report, cut to the buffer length (a longer report is truncated, as on
//    hidraw); a shorter report is returned with its own length.
//  - hid_read_timeout really waits (condition variable, the given timeout; -1
//    waits without limit) and wakes at once when a report is queued, the panel
//    is unplugged, a fault is switched on or the handle is closed. Timing seen
//    through it is real.
//  - After unplug(), open handles stay valid: every read and write fails at
//    once with -1 (as hidraw does once the device node is gone), and
//    hid_error(handle) says why. hid_close() must still be called.
//  - hid_write records the report (every byte, report id included) and returns
//    its length. Writes are recorded per panel, in order, for the test to read.
//
// Thread safety: every function here and every hidapi function may be called
// from any thread at any time (one internal mutex). Typically a test thread
// drives the panel while the code under test reads and writes on its own thread.
//
// Ids: plug() returns a panel id (1, 2, ...; never reused within a process).
// Functions given an unknown or unplugged id do nothing and return 0, false,
// -1 or an empty list, as fits their type.

#include "plugins/panels/dialix/source/panelprotocol.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>

// The reports follow the panel's protocol (panelprotocol.h): the virtual panel
// builds them from the same constants that the device decodes them with.
namespace VirtualPanel {

struct PanelInfo
{
    QString serial = QStringLiteral("DLX0001");
    QString product = QStringLiteral("Dialix");
    QString manufacturer = QStringLiteral("Brindlecraft");
    unsigned short vendorId = dialix::protocol::VendorId;
    unsigned short productId = dialix::protocol::ProductId;
    unsigned short releaseNumber = 0x0100;
    unsigned short usagePage = 0xFF00;
    unsigned short usage = 0x0001;
    int interfaceNumber = 0;
};

// ---- Bus -----------------------------------------------------------------

// Plugs in a panel; it shows up in the next hid_enumerate. Returns its id.
int plug(const PanelInfo &info = PanelInfo());
// Shorthand: a Dialix with this serial number (and the default strings).
int plug(const QString &serial);
// Unplugs a panel: it leaves the enumeration; its open handles fail every read
// and write from now on. Its queued input is dropped.
void unplug(int panel);
// Unplugs every panel, switches every fault off, forgets the write listeners and
// the global counters. Call it between tests.
void reset();
// The plugged panels' ids, in plug order.
QList<int> panels();
bool isPlugged(int panel);
// The path that hid_enumerate reports for the panel ("virtualpanel:<id>").
QByteArray path(int panel);

// ---- Input: what the panel sends -------------------------------------------

// Builds a 17-byte input report: byte 0 = 0, the switch word and the four dial
// movements (each cut to -128..127) where the protocol puts them.
QByteArray makeReport(quint32 switches, int dial0 = 0, int dial1 = 0, int dial2 = 0, int dial3 = 0);

// Queues raw bytes as one input report (any length, empty included).
void queueReport(int panel, const QByteArray &report);
// Queues one read that fails with -1 (the queue then goes on normally).
void queueReadError(int panel);
// Number of queued reports not yet read.
int pendingReports(int panel);
// Blocks until the panel's input queue is empty (all read) or the timeout
// passes. Returns whether it emptied.
bool waitUntilRead(int panel, int timeoutMs);
// The panel sends its whole state again every `milliseconds` while a handle
// reads it and nothing else was sent meanwhile, like a panel that answers every
// poll of its interrupt endpoint (0, the default: it reports changes only).
// Such a report carries no dial movement.
void setReportInterval(int panel, int milliseconds);

// Operator actions. Each one changes the panel's switch word and queues one full
// report with the new word and no dial movement (turnDial: with the movement).
// Nothing is queued when the word does not change (a press of a key that is
// already down), like a real panel that reports changes only.
void setSwitches(int panel, quint32 switches); // whole word, bits 22/23 included
quint32 switches(int panel);
void pressKey(int panel, int key); // key 0..14
void releaseKey(int panel, int key);
void pushDial(int panel, int dial, bool down); // dial 0..3 (bits 15..18)
// Turns a dial by `delta` steps (negative = the other way). A movement beyond
// -128..127 is split over several reports, as the panel would.
void turnDial(int panel, int dial, int delta);
void setPtt(int panel, bool down);
void setDash(int panel, bool down);
void setDot(int panel, bool down);

// ---- Output: what the panel received ---------------------------------------

// Every report written to the panel since plug / clearWrites, in order.
QList<QByteArray> writes(int panel);
int writeCount(int panel);
// The LED mask (byte 1) of every 2-byte report written, in order.
QList<quint8> ledMasks(int panel);
// The LED mask of the last 2-byte report written; -1 when none was written yet.
int ledMask(int panel);
void clearWrites(int panel);
// Blocks until at least `count` reports were recorded or the timeout passes.
bool waitForWrites(int panel, int count, int timeoutMs);

// Called for every report written to any panel, on the writing thread (the
// reader thread of the code under test), after it was recorded and with no lock
// held. A GUI should hand the call over to its own thread (for example with
// QMetaObject::invokeMethod and Qt::QueuedConnection). Returns an id for
// removeWriteListener(). A call already under way on another thread is not
// waited for: stop the writer first, or keep what the listener uses alive.
using WriteListener = std::function<void(int panel, const QByteArray &report)>;
int addWriteListener(WriteListener listener);
void removeWriteListener(int id);

// ---- Counters ----------------------------------------------------------------

int openHandles(int panel); // handles open on this panel
int openHandles(); // handles open on every panel, unplugged ones included
int readCalls(int panel); // hid_read/hid_read_timeout calls on the panel
int failedWrites(int panel); // writes refused by failWrites or after unplug
int enumerations(); // hid_enumerate calls since reset()

// ---- Faults --------------------------------------------------------------------

// Every read fails at once with -1, as on hidraw after an unplug (but the panel
// stays enumerated).
void setReadsFail(int panel, bool fail);
// Every write fails with -1 and is not recorded.
void setWritesFail(int panel, bool fail);
// Every write blocks until this is switched off again (or the panel is
// unplugged, which makes the blocked writes fail).
void setWritesBlock(int panel, bool block);
// Number of writers blocked right now by setWritesBlock.
int blockedWrites(int panel);
// hid_open / hid_open_path of this panel fail (as "Permission denied" does on
// hidraw right after a plug).
void setOpenFails(int panel, bool fail);
// hid_enumerate returns null (an enumeration that failed).
void setEnumerateFails(bool fail);

} // namespace VirtualPanel
