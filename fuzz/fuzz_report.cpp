// Fuzzes the panel's input-report decoding with arbitrary reads: any length,
// any bytes, many reads in a row against one device object, so the previous
// switch word carries from read to read. Checks, for every read, that the
// device emits exactly the events of dialix::protocol::decode() (nothing for a
// read of the wrong length), and that those events have the properties below;
// before the first input, a few hand-written reports give their known events.
// A failed check aborts.

#include "plugins/panels/dialix/source/dialix.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace dialix::protocol;

namespace {

struct Seen
{
    Line line;
    int index;
    int value;
    bool operator==(const Seen &o) const
    {
        return line == o.line && index == o.index && value == o.value;
    }
};

void check(bool ok, const char *what, size_t readNo)
{
    if (ok)
        return;
    std::fprintf(stderr, "read %zu: %s\n", readNo, what);
    std::abort();
}

std::vector<Seen> listOf(const Events &events)
{
    std::vector<Seen> list;
    for (const Event &e : events)
        list.push_back({e.line, e.index, e.value});
    return list;
}

// The properties of one decoded report: switch edges in rising bit order, one
// for each changed bit that has a line and none other, each with the bit's new
// state; then the non-zero dials in rising order. Re-encoding the events with
// the virtual panel gives back the interpreted bytes of the report.
void checkProperties(const unsigned char *report, quint32 previous, const Events &events,
                     size_t readNo)
{
    constexpr quint32 Lines = (1u << (DotBit + 1)) - 1; // bits 22 and 23 have no line
    quint32 edges = 0;
    int lastBit = -1, lastDial = -1;
    int dials[DialCount] = {};
    check(events.count <= Events::Capacity, "too many events", readNo);
    for (const Event &e : events) {
        if (e.line == Line::Dial) {
            check(e.index > lastDial && e.index < DialCount && e.value != 0, "dial order", readNo);
            lastDial = e.index;
            dials[e.index] = e.value;
            continue;
        }
        check(lastDial < 0 && e.index > lastBit, "edge order", readNo);
        check(e.line == lineOfBit(e.index) && e.line != Line::None, "edge line", readNo);
        check(e.value == int(events.switches >> e.index & 1u), "edge state", readNo);
        lastBit = e.index;
        edges |= 1u << e.index;
    }
    check(edges == ((events.switches ^ previous) & Lines), "edges of the changed bits", readNo);
    const QByteArray again =
        VirtualPanel::makeReport(events.switches, dials[0], dials[1], dials[2], dials[3]);
    for (int i = 1; i < ReportSize; ++i) {
        if (i < FirstSwitchByte + SwitchBytes || i >= FirstDialByte)
            check(static_cast<unsigned char>(again[i]) == report[i], "re-encoded byte", readNo);
    }
}

// Hand-written reports (bytes 0..16) after a previous word, and their events.
struct Case
{
    const char *hex;
    quint32 previous;
    std::vector<Seen> events;
};

void checkCases()
{
    // clang-format off
    const Case cases[] = {
        // key 3, dial 1's push, dot; dial 0 +5, dial 3 -1
        {"00 08 00 21 000000000000000000 05 00 00 ff", 0,
         {{Line::Key, 3, 1}, {Line::DialPush, 16, 1}, {Line::Dot, 21, 1},
          {Line::Dial, 0, 5}, {Line::Dial, 3, -1}}},
        // byte 2 bit 7 is dial 0's push (bit 15); bytes 0 and 4..12 are ignored
        {"ff 00 80 00 ffffffffffffffffff 00 00 00 00", 0, {{Line::DialPush, 15, 1}}},
        // PTT down; bits 22 and 23 say nothing
        {"00 00 00 c8 000000000000000000 00 00 00 00", 0, {{Line::Ptt, 19, 1}}},
        // key 14 up, PTT and dash up, key 0 down; dial extremes
        {"00 01 00 00 000000000000000000 80 7f 00 01", 0x184000,
         {{Line::Key, 0, 1}, {Line::Key, 14, 0}, {Line::Ptt, 19, 0}, {Line::Dash, 20, 0},
          {Line::Dial, 0, -128}, {Line::Dial, 1, 127}, {Line::Dial, 3, 1}}},
    };
    // clang-format on
    for (const Case &c : cases) {
        const QByteArray bytes = QByteArray::fromHex(c.hex);
        const auto *report = reinterpret_cast<const unsigned char *>(bytes.constData());
        if (bytes.size() != ReportSize || listOf(decode(report, c.previous)) != c.events) {
            std::fprintf(stderr, "hand-written report %s: not decoded as written\n", c.hex);
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    checkCases();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider input(data, size);
    Dialix device;
    std::vector<Seen> got;
    QObject::connect(&device, &Dialix::button, [&](Dialix::Buttons b, bool s) {
        got.push_back({Line::Key, int(b), int(s)});
    });
    QObject::connect(&device, &Dialix::dialButton, [&](Dialix::DialButtons b, bool s) {
        got.push_back({Line::DialPush, int(b), int(s)});
    });
    QObject::connect(&device, &Dialix::dial, [&](Dialix::Dials d, int v) {
        got.push_back({Line::Dial, int(d), v});
    });
    QObject::connect(&device, &Dialix::ptt, [&](bool s) {
        got.push_back({Line::Ptt, PttBit, int(s)});
    });
    QObject::connect(&device, &Dialix::dash, [&](bool s) {
        got.push_back({Line::Dash, DashBit, int(s)});
    });
    QObject::connect(&device, &Dialix::dot, [&](bool s) {
        got.push_back({Line::Dot, DotBit, int(s)});
    });

    quint32 previous = 0;
    for (size_t readNo = 0; input.remaining_bytes() > 0 && readNo < 4096; ++readNo) {
        // Mostly whole reports; sometimes a short, long or empty read.
        const uint8_t pick = input.ConsumeIntegral<uint8_t>();
        const size_t length = pick < 192 ? size_t(ReportSize) : size_t(pick % 40);
        // An exactly sized heap copy, so that any read past its end is caught.
        std::vector<unsigned char> read = input.ConsumeBytes<unsigned char>(length);
        got.clear();
        device.processReport(read.empty() ? nullptr : read.data(), int(read.size()));
        if (read.size() != size_t(ReportSize)) {
            check(got.empty(), "a read of the wrong length was decoded", readNo);
            continue;
        }
        const Events events = decode(read.data(), previous);
        checkProperties(read.data(), previous, events, readNo);
        check(got == listOf(events), "the device did not emit the decoded events", readNo);
        previous = events.switches;
    }
    return 0;
}
