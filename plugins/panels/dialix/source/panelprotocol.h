#pragma once

// The Dialix panel's HID protocol: the layout of its input and LED reports as
// data, and the decoding of one input report into the panel's events. Pure:
// no Qt, no I/O, no allocation. The device (dialix.cpp) emits what decode()
// returns; the virtual panel (tools/virtualpanel) builds its reports from the
// same constants.

#include <array>
#include <cstdint>

namespace dialix::protocol {

// USB identity: every HID interface with these ids is a panel.
constexpr unsigned short VendorId = 0x1FC9;
constexpr unsigned short ProductId = 0x0003;

// ---- Input report (17 bytes as read) ----------------------------------------
// Byte 0 is not interpreted (the report id of a panel that numbers its
// reports), bytes 1..3 hold the switch word (byte 1 = bits 0..7), bytes 4..12
// are not interpreted, bytes 13..16 hold the signed movement of dials 0..3.
constexpr int ReportSize = 17;
constexpr int FirstSwitchByte = 1;
constexpr int SwitchBytes = 3;
constexpr int FirstDialByte = 13;

// Switch word: a set bit is a closed contact.
constexpr int SwitchBits = 24;
constexpr int FirstKeyBit = 0; // keys 0..14: bits 0..14
constexpr int KeyCount = 15;
constexpr int FirstDialPushBit = 15; // pushes of dials 0..3: bits 15..18
constexpr int DialCount = 4;
constexpr int PttBit = 19;
constexpr int DashBit = 20;
constexpr int DotBit = 21;
// Bits 22 and 23 carry no line: they change nothing but the remembered word.
constexpr std::uint32_t SwitchMask = (1u << SwitchBits) - 1;

// What one switch bit or dial byte reports.
enum class Line : std::uint8_t { Key, DialPush, Ptt, Dash, Dot, Dial, None };

constexpr Line lineOfBit(int bit)
{
    if (bit >= FirstKeyBit && bit < FirstKeyBit + KeyCount)
        return Line::Key;
    if (bit >= FirstDialPushBit && bit < FirstDialPushBit + DialCount)
        return Line::DialPush;
    switch (bit) {
    case PttBit:
        return Line::Ptt;
    case DashBit:
        return Line::Dash;
    case DotBit:
        return Line::Dot;
    default:
        return Line::None;
    }
}

// ---- LED report (2 bytes as written) ------------------------------------------
// Byte 0 is the report id (0), byte 1 the LED mask; bits 5..7 stay 0.
constexpr int LedReportSize = 2;
constexpr std::uint8_t LedReportId = 0x00;

// The LEDs by bit number in the mask.
enum Led : int {
    LedVfoB = 0, // VFO B selected
    LedReceiver2 = 1, // a receiver other than the first selected
    LedTransmit = 2, // a transceiver transmits
    LedDials = 3, // the dials' LEDs ("Encoder Led")
    LedKeys = 4, // the keys' LEDs ("Key Led")
};
constexpr int LedCount = 5;

constexpr std::uint8_t ledMask(Led led)
{
    return std::uint8_t(1u << led);
}

// ---- Decoding -----------------------------------------------------------------

// One event of a report: an edge of a switch line (index = its bit number,
// value = 1 pressed, 0 released) or a dial movement (index = the dial, value =
// the signed movement, never 0).
struct Event
{
    Line line;
    std::int8_t index;
    std::int16_t value;
};

// The events of one report, in the order they are to be delivered: the
// switch edges in rising bit order, then the dials 0..3.
struct Events
{
    static constexpr int Capacity = SwitchBits + DialCount;

    std::uint32_t switches = 0; // the report's switch word, to compare the next one with
    int count = 0;
    std::array<Event, Capacity> list; // the first `count` are set

    const Event *begin() const { return list.data(); }
    const Event *end() const { return list.data() + count; }
};

constexpr std::uint32_t switchWord(const unsigned char *report)
{
    std::uint32_t word = 0;
    for (int i = 0; i < SwitchBytes; ++i)
        word |= std::uint32_t(report[FirstSwitchByte + i]) << (8 * i);
    return word;
}

// The switch bits that carry a line (bits 22 and 23 do not).
constexpr std::uint32_t LineBits = [] {
    std::uint32_t bits = 0;
    for (int bit = 0; bit < SwitchBits; ++bit)
        bits |= lineOfBit(bit) == Line::None ? 0u : 1u << bit;
    return bits;
}();

// Decodes one input report of ReportSize bytes against the previous switch word.
inline Events decode(const unsigned char *report, std::uint32_t previous)
{
    Events out;
    out.switches = switchWord(report);
    const std::uint32_t changed = (out.switches ^ previous) & LineBits;
    for (int bit = 0; changed >> bit; ++bit) {
        if (changed >> bit & 1u)
            out.list[out.count++] = {lineOfBit(bit), std::int8_t(bit),
                                     std::int16_t(out.switches >> bit & 1u)};
    }
    for (int dial = 0; dial < DialCount; ++dial) {
        const auto movement = static_cast<std::int8_t>(report[FirstDialByte + dial]);
        if (movement != 0)
            out.list[out.count++] = {Line::Dial, std::int8_t(dial), movement};
    }
    return out;
}

} // namespace dialix::protocol
