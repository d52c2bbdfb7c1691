// Fuzzes the panel's input-report decoder with arbitrary reads: any length, any
// bytes, many reads in a row against one device object, so the previous switch
// word carries from read to read. Every signal is checked against a reference
// model of the report format; a difference aborts.

#include "plugins/panels/dialix/source/dialix.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

enum class Kind { Button, DialButton, Dial, Ptt, Dash, Dot };

struct Event
{
    Kind kind;
    int index;
    int value;
    bool operator==(const Event &o) const
    {
        return kind == o.kind && index == o.index && value == o.value;
    }
};

// What a correct decoder emits for one read, given the previous switch word.
void expectedEvents(const std::vector<unsigned char> &read, quint32 &previous,
                    std::vector<Event> &out)
{
    if (read.size() != static_cast<size_t>(Dialix::ReportSize))
        return;
    const quint32 word = read[1] | (quint32(read[2]) << 8) | (quint32(read[3]) << 16);
    for (int bit = 0; bit < 24; ++bit) {
        const quint32 mask = 1u << bit;
        if ((word & mask) == (previous & mask))
            continue;
        const int state = (word & mask) ? 1 : 0;
        if (bit <= 14)
            out.push_back({Kind::Button, bit, state});
        else if (bit <= 18)
            out.push_back({Kind::DialButton, bit, state});
        else if (bit == 19)
            out.push_back({Kind::Ptt, 0, state});
        else if (bit == 20)
            out.push_back({Kind::Dash, 0, state});
        else if (bit == 21)
            out.push_back({Kind::Dot, 0, state});
    }
    for (int k = 0; k < 4; ++k) {
        const int movement = static_cast<signed char>(read[13 + k]);
        if (movement != 0)
            out.push_back({Kind::Dial, k, movement});
    }
    previous = word;
}

[[noreturn]] void mismatch(size_t readNo, const std::vector<Event> &want,
                           const std::vector<Event> &got)
{
    std::fprintf(stderr, "decoder mismatch at read %zu: expected %zu signals, got %zu\n", readNo,
                 want.size(), got.size());
    for (size_t i = 0; i < want.size() || i < got.size(); ++i) {
        std::fprintf(stderr, "  %zu: expected ", i);
        if (i < want.size())
            std::fprintf(stderr, "(%d,%d,%d)", int(want[i].kind), want[i].index, want[i].value);
        std::fprintf(stderr, " got ");
        if (i < got.size())
            std::fprintf(stderr, "(%d,%d,%d)", int(got[i].kind), got[i].index, got[i].value);
        std::fprintf(stderr, "\n");
    }
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider input(data, size);
    Dialix device;
    std::vector<Event> got;
    QObject::connect(&device, &Dialix::button, [&](Dialix::Buttons b, bool s) {
        got.push_back({Kind::Button, int(b), int(s)});
    });
    QObject::connect(&device, &Dialix::dialButton, [&](Dialix::DialButtons b, bool s) {
        got.push_back({Kind::DialButton, int(b), int(s)});
    });
    QObject::connect(&device, &Dialix::dial, [&](Dialix::Dials d, int v) {
        got.push_back({Kind::Dial, int(d), v});
    });
    QObject::connect(&device, &Dialix::ptt, [&](bool s) { got.push_back({Kind::Ptt, 0, int(s)}); });
    QObject::connect(&device, &Dialix::dash, [&](bool s) {
        got.push_back({Kind::Dash, 0, int(s)});
    });
    QObject::connect(&device, &Dialix::dot, [&](bool s) { got.push_back({Kind::Dot, 0, int(s)}); });

    quint32 previous = 0;
    std::vector<Event> want;
    for (size_t readNo = 0; input.remaining_bytes() > 0 && readNo < 4096; ++readNo) {
        // Mostly whole reports; sometimes a short, long or empty read.
        const uint8_t pick = input.ConsumeIntegral<uint8_t>();
        const size_t length = pick < 192 ? size_t(Dialix::ReportSize) : size_t(pick % 40);
        // An exactly sized heap copy, so that any read past its end is caught.
        std::vector<unsigned char> read = input.ConsumeBytes<unsigned char>(length);
        want.clear();
        got.clear();
        expectedEvents(read, previous, want);
        device.processReport(read.empty() ? nullptr : read.data(), int(read.size()));
        if (want != got)
            mismatch(readNo, want, got);
    }
    return 0;
}
