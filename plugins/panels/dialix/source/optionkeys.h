#pragma once

// The settings keys of the options page, in one table.
//
// Each row names a key, the control of DialixOptions that it stands for (the
// control's object name), how the value is stored, and the value that loading
// from the plug-in's own file falls back to. The table order is the write order
// of both stores; the two stores read the serial-port keys in orders of their
// own (below), because the port is opened from the toggles of these boxes and
// each store has always seen them in its own order.

#include <array>
#include <iterator>

namespace dialix {

enum class OptionType {
    Bool, // a check box, stored as bool
    SpinBox, // a spin box's value; must lie within the box's range
    Index, // a combo box's current index; must lie within 0 .. count-1
    Text // a combo box's current text; selected only when it is one of its items
};

struct OptionKey
{
    const char *key;
    const char *control;
    OptionType type;
    int defaultValue; // own-file fallback (bools: 0 = false); unused for Text
};

// clang-format off
inline constexpr OptionKey optionKeys[] = {
    {"UseIF",           "chbUseIf",          OptionType::Bool,    0},
    {"UseIFasRit",      "chbUseIf_Rit",      OptionType::Bool,    0},
    {"UseIFasXit",      "chbUseIf_Xit",      OptionType::Bool,    0},
    {"VfoB",            "chbVfoB",           OptionType::Bool,    0},
    {"KeyLed",          "chbKeyLed",         OptionType::Bool,    0},
    {"EncLed",          "chbEncoderLed",     OptionType::Bool,    0},
    {"Volume",          "sbVolumeStep",      OptionType::SpinBox, 1},
    {"MicGain",         "sbMicGainStep",     OptionType::SpinBox, 1},
    {"Sql",             "sbSqlStep",         OptionType::SpinBox, 1},
    {"FilterHigh",      "sbFilterHighStep",  OptionType::SpinBox, 10},
    {"FilterLow",       "sbFilterLowStep",   OptionType::SpinBox, 10},
    {"FilterWidth",     "sbFilterWidthStep", OptionType::SpinBox, 10},
    {"FilterShift",     "sbFilterShiftStep", OptionType::SpinBox, 10},
    {"Drive",           "sbDriveStep",       OptionType::SpinBox, 1},
    {"RfGain",          "sbRfGainStep",      OptionType::SpinBox, 1},
    {"Receiver",        "cbReceiver",        OptionType::Index,   0},
    {"Enable",          "chbEnable",         OptionType::Bool,    0},
    {"PttTransferMode", "cbPttTransfer",     OptionType::Index,   0},
    {"PttComName",      "cbPortName",        OptionType::Text,    0},
    {"PttComEnable",    "chbEnableComPort",  OptionType::Bool,    0},
    {"PttTransferDtr",  "chbDTR",            OptionType::Bool,    0},
    {"PttTransferRts",  "chbRTS",            OptionType::Bool,    0},
};
// clang-format on

inline constexpr int OptionKeyCount = int(std::size(optionKeys));

// The row of a key, -1 when there is none.
constexpr int optionKeyIndex(const char *key)
{
    for (int i = 0; i < OptionKeyCount; ++i) {
        const char *a = optionKeys[i].key;
        const char *b = key;
        while (*a && *a == *b) {
            ++a;
            ++b;
        }
        if (*a == *b)
            return i;
    }
    return -1;
}

using OptionReadOrder = std::array<int, std::size(optionKeys)>;

namespace detail {
// The table's order up to the serial keys, then the serial keys as given.
constexpr OptionReadOrder readOrder(const char *const (&serial)[5])
{
    OptionReadOrder order {};
    const int first = optionKeyIndex("PttTransferMode");
    for (int i = 0; i < first; ++i)
        order[i] = i;
    for (int i = 0; i < 5; ++i)
        order[first + i] = optionKeyIndex(serial[i]);
    return order;
}
inline constexpr const char *ownFileSerial[5] = {"PttTransferMode", "PttTransferRts",
                                                 "PttTransferDtr", "PttComName", "PttComEnable"};
inline constexpr const char *hostSerial[5] = {"PttTransferMode", "PttComName", "PttTransferRts",
                                              "PttTransferDtr", "PttComEnable"};

constexpr bool isPermutation(const OptionReadOrder &order)
{
    for (int row = 0; row < OptionKeyCount; ++row) {
        int hits = 0;
        for (int i : order)
            hits += i == row ? 1 : 0;
        if (hits != 1)
            return false;
    }
    return true;
}
} // namespace detail

// Rows of optionKeys in the order each store reads them.
inline constexpr OptionReadOrder ownFileReadOrder = detail::readOrder(detail::ownFileSerial);
inline constexpr OptionReadOrder hostReadOrder = detail::readOrder(detail::hostSerial);

static_assert(OptionKeyCount == 22, "the options page saves 22 keys");
static_assert(optionKeyIndex("PttTransferMode") == OptionKeyCount - 5,
              "the serial keys close the table");
static_assert(detail::isPermutation(ownFileReadOrder) && detail::isPermutation(hostReadOrder),
              "each store reads every key exactly once");

} // namespace dialix
