#ifndef DIALIX_FUNCTIONTABLE_H
#define DIALIX_FUNCTIONTABLE_H

// The functions a panel key or dial can be given, in one place.
//
// Two X-macro tables list every function once. Everything else is derived from
// them: the enumerations, the label lookups, the sub-menu layout of the key
// menus, the translations (lupdate reads the QT_TRANSLATE_NOOP marks below) and
// the controller's per-function slots and dispatch.
//
//   DIALIX_BUTTON_FUNCTIONS(X)   X(id, Name, full label, short label, sub-menu, place)
//   DIALIX_DIAL_FUNCTIONS(X)     X(id, Name, full label, short label)
//
//   id         the function id: the position of the action in the key's or dial's
//              action group (0 = "Unused"); row i holds id i
//   Name       a C identifier naming the function (for enumerators and handlers)
//   full       the label shown in menus and as the button's tool tip
//   short      the label shown on the small buttons of the panel picture
//   sub-menu   where the action sits in every key menu (SubMenu::Top is id 0 only)
//   place      the action's position inside its sub-menu (0-based)
//
// All labels are Latin-1 (ASCII in fact) and are translated in the context
// "DialixOptions": the raw text is the translation source, the *Text() functions
// below return the translated QString.
//
// Using the tables, e.g. in a QObject that wants one slot per function:
//
//   #define DECLARE(id, Name, ...) void DIALIX_FUNC_BUTTON_SLOT(id)();
//   public slots:
//       DIALIX_BUTTON_FUNCTIONS(DECLARE)   // setFuncButton1() ... setFuncButton61()
//
// DIALIX_FUNC_BUTTON_SLOT(id) names the slot "setFuncButton" + (id + 1) (the slot
// numbered N runs function id N - 1); DIALIX_FUNC_DIAL_SLOT(id) names
// "setFuncDial" + id. moc expands both.

#include <QLatin1String>
#include <QString>
#include <QVector>

#include <array>
#include <iterator>

namespace dialix {

// Where a key function's action is placed in a key menu. The top level of every
// key menu shows "Unused" and then the four sub-menus in buttonMenuOrder.
enum class SubMenu : int { Top, Main, VfoRx2, Audio, Dsp };

} // namespace dialix

// A label literal together with its length.
#define DIALIX_LABEL(text) QLatin1String(text, int(sizeof(text) - 1))
#define DIALIX_TR(text) QT_TRANSLATE_NOOP("DialixOptions", text)

// clang-format off
#define DIALIX_BUTTON_FUNCTIONS(X) \
    X( 0, Unused,                  DIALIX_TR("Unused"),                                        DIALIX_TR("NO"),    dialix::SubMenu::Top,     0) \
    X( 1, BandUp,                  DIALIX_TR("Band Up"),                                       DIALIX_TR("BU"),    dialix::SubMenu::Main,    2) \
    X( 2, BandDown,                DIALIX_TR("Band Down"),                                     DIALIX_TR("BD"),    dialix::SubMenu::Main,    3) \
    X( 3, ModeUp,                  DIALIX_TR("Mode Up"),                                       DIALIX_TR("MU"),    dialix::SubMenu::Main,    6) \
    X( 4, ModeDown,                DIALIX_TR("Mode Down"),                                     DIALIX_TR("MD"),    dialix::SubMenu::Main,    7) \
    X( 5, VolumeUp,                DIALIX_TR("Volume Up"),                                     DIALIX_TR("V+"),    dialix::SubMenu::Audio,  14) \
    X( 6, VolumeDown,              DIALIX_TR("Volume Down"),                                   DIALIX_TR("V-"),    dialix::SubMenu::Audio,  15) \
    X( 7, Mute,                    DIALIX_TR("Mute"),                                          DIALIX_TR("Mute"),  dialix::SubMenu::Audio,  10) \
    X( 8, Bin,                     DIALIX_TR("BIN"),                                           DIALIX_TR("BIN"),   dialix::SubMenu::Dsp,     2) \
    X( 9, Nr,                      DIALIX_TR("NR"),                                            DIALIX_TR("NR"),    dialix::SubMenu::Dsp,     3) \
    X(10, Anf,                     DIALIX_TR("ANF"),                                           DIALIX_TR("ANF"),   dialix::SubMenu::Dsp,     0) \
    X(11, Nb1,                     DIALIX_TR("NB1"),                                           DIALIX_TR("NB1"),   dialix::SubMenu::Dsp,     4) \
    X(12, Nb2,                     DIALIX_TR("NB2"),                                           DIALIX_TR("NB2"),   dialix::SubMenu::Dsp,     5) \
    X(13, FilterUp,                DIALIX_TR("Filter Up"),                                     DIALIX_TR("FU"),    dialix::SubMenu::Main,    4) \
    X(14, FilterDown,              DIALIX_TR("Filter Down"),                                   DIALIX_TR("FD"),    dialix::SubMenu::Main,    5) \
    X(15, Sql,                     DIALIX_TR("SQL"),                                           DIALIX_TR("SQL"),   dialix::SubMenu::Dsp,     6) \
    X(16, Pa,                      DIALIX_TR("PA"),                                            DIALIX_TR("PA"),    dialix::SubMenu::Main,    9) \
    X(17, AgcUp,                   DIALIX_TR("Agc Up"),                                        DIALIX_TR("AgcU"),  dialix::SubMenu::Main,    0) \
    X(18, AgcDown,                 DIALIX_TR("Agc Down"),                                      DIALIX_TR("AgcD"),  dialix::SubMenu::Main,    1) \
    X(19, PreampUp,                DIALIX_TR("Preamp Up"),                                     DIALIX_TR("PrU"),   dialix::SubMenu::Main,   11) \
    X(20, PreampDown,              DIALIX_TR("Preamp Down"),                                   DIALIX_TR("PrD"),   dialix::SubMenu::Main,   12) \
    X(21, StepUp,                  DIALIX_TR("Step Up"),                                       DIALIX_TR("StU"),   dialix::SubMenu::Main,   14) \
    X(22, StepDown,                DIALIX_TR("Step Down"),                                     DIALIX_TR("StD"),   dialix::SubMenu::Main,   15) \
    X(23, ZoomIn,                  DIALIX_TR("Zoom In"),                                       DIALIX_TR("ZM+"),   dialix::SubMenu::Main,   18) \
    X(24, ZoomOut,                 DIALIX_TR("Zoom Out"),                                      DIALIX_TR("ZM-"),   dialix::SubMenu::Main,   19) \
    X(25, Mox,                     DIALIX_TR("MOX"),                                           DIALIX_TR("MOX"),   dialix::SubMenu::Main,    8) \
    X(26, Tune,                    DIALIX_TR("Tune"),                                          DIALIX_TR("Tun"),   dialix::SubMenu::Main,   16) \
    X(27, Wf,                      DIALIX_TR("WF"),                                            DIALIX_TR("WF"),    dialix::SubMenu::Main,   17) \
    X(28, PowerOnOff,              DIALIX_TR("Power On/Off"),                                  DIALIX_TR("PWR"),   dialix::SubMenu::Main,   10) \
    X(29, SwitchDdsIf,             DIALIX_TR("Switch DDS/IF"),                                 DIALIX_TR("D/I"),   dialix::SubMenu::VfoRx2, 11) \
    X(30, SwitchReceiver,          DIALIX_TR("Switch Receiver"),                               DIALIX_TR("SR"),    dialix::SubMenu::VfoRx2, 12) \
    X(31, ChangeVfoAB,             DIALIX_TR("Change VFOA/VFOB"),                              DIALIX_TR("A/B"),   dialix::SubMenu::VfoRx2,  3) \
    X(32, SubRxOnOff,              DIALIX_TR("SubRX On/Off"),                                  DIALIX_TR("VfB"),   dialix::SubMenu::VfoRx2,  9) \
    X(33, RitOnOff,                DIALIX_TR("RIT On/Off"),                                    DIALIX_TR("Rit"),   dialix::SubMenu::VfoRx2,  7) \
    X(34, RitReset,                DIALIX_TR("RIT Reset"),                                     DIALIX_TR("Rt0"),   dialix::SubMenu::VfoRx2,  8) \
    X(35, IfAsRit,                 DIALIX_TR("IF as RIT"),                                     DIALIX_TR("IfR"),   dialix::SubMenu::VfoRx2,  4) \
    X(36, XitOnOff,                DIALIX_TR("XIT On/Off"),                                    DIALIX_TR("Xit"),   dialix::SubMenu::VfoRx2, 13) \
    X(37, XitReset,                DIALIX_TR("XIT Reset"),                                     DIALIX_TR("Xt0"),   dialix::SubMenu::VfoRx2, 14) \
    X(38, Split,                   DIALIX_TR("Split"),                                         DIALIX_TR("Spl"),   dialix::SubMenu::VfoRx2, 10) \
    X(39, TxPlay,                  DIALIX_TR("TX / Play"),                                     DIALIX_TR("T/P"),   dialix::SubMenu::Audio,  12) \
    X(40, VoiceRecording,          DIALIX_TR("Voice recording"),                               DIALIX_TR("V/R"),   dialix::SubMenu::Audio,  13) \
    X(41, RxAnt,                   DIALIX_TR("RX ANT"),                                        DIALIX_TR("RxA"),   dialix::SubMenu::Main,   13) \
    X(42, Lock,                    DIALIX_TR("LOCK"),                                          DIALIX_TR("Lock"),  dialix::SubMenu::VfoRx2,  5) \
    X(43, AToB,                    DIALIX_TR("A->B"),                                          DIALIX_TR("A->B"),  dialix::SubMenu::VfoRx2,  0) \
    X(44, BToA,                    DIALIX_TR("B->A"),                                          DIALIX_TR("B->A"),  dialix::SubMenu::VfoRx2,  1) \
    X(45, SwapAB,                  DIALIX_TR("B<->A"),                                         DIALIX_TR("Swap"),  dialix::SubMenu::VfoRx2,  2) \
    X(46, Apf,                     DIALIX_TR("APF"),                                           DIALIX_TR("APF"),   dialix::SubMenu::Dsp,     1) \
    X(47, ListenBothRx,            DIALIX_TR("Listen both RX1, RX2"),                          DIALIX_TR("V.D"),   dialix::SubMenu::Audio,   0) \
    X(48, ListenRx1Only,           DIALIX_TR("Listen RX1 only"),                               DIALIX_TR("V.RX1"), dialix::SubMenu::Audio,   1) \
    X(49, ListenRx2Only,           DIALIX_TR("Listen RX2 only"),                               DIALIX_TR("V.RX2"), dialix::SubMenu::Audio,   2) \
    X(50, ListenRx1LeftRx2Right,   DIALIX_TR("Listen RX1 in left channel - RX2 in right"),     DIALIX_TR("V.R1L"), dialix::SubMenu::Audio,   3) \
    X(51, ListenRx1RightRx2Left,   DIALIX_TR("Listen RX1 in right channel - RX2 in left"),     DIALIX_TR("V.R1R"), dialix::SubMenu::Audio,   4) \
    X(52, SwitchRxMuteFormer,      DIALIX_TR("Switch RX and mute former"),                     DIALIX_TR("SR.M"),  dialix::SubMenu::Audio,  11) \
    X(53, Rx2OnOff,                DIALIX_TR("RX2 On/Off"),                                    DIALIX_TR("RX2"),   dialix::SubMenu::VfoRx2,  6) \
    X(54, ListenBothVfo,           DIALIX_TR("Listen both VFO A/B"),                           DIALIX_TR("V.AB"),  dialix::SubMenu::Audio,   5) \
    X(55, ListenVfoAOnly,          DIALIX_TR("Listen VFO A only"),                             DIALIX_TR("V.A"),   dialix::SubMenu::Audio,   6) \
    X(56, ListenVfoBOnly,          DIALIX_TR("Listen VFO B only"),                             DIALIX_TR("V.B"),   dialix::SubMenu::Audio,   7) \
    X(57, ListenVfoALeftVfoBRight, DIALIX_TR("Listen VFO A in left channel - VFO B in right"), DIALIX_TR("V.AL"),  dialix::SubMenu::Audio,   8) \
    X(58, ListenVfoARightVfoBLeft, DIALIX_TR("Listen VFO A in right channel - VFO B in left"), DIALIX_TR("V.AR"),  dialix::SubMenu::Audio,   9) \
    X(59, Vox,                     DIALIX_TR("VOX"),                                           DIALIX_TR("VOX"),   dialix::SubMenu::Audio,  16) \
    X(60, Nf,                      DIALIX_TR("NF"),                                            DIALIX_TR("NF"),    dialix::SubMenu::Dsp,     7)

#define DIALIX_DIAL_FUNCTIONS(X) \
    X( 0, Unused,      DIALIX_TR("Unused"),       DIALIX_TR("NO"))  \
    X( 1, Volume,      DIALIX_TR("Volume"),       DIALIX_TR("Vol")) \
    X( 2, MicGain,     DIALIX_TR("Mic Gain"),     DIALIX_TR("Mic")) \
    X( 3, Sql,         DIALIX_TR("SQL"),          DIALIX_TR("SQL")) \
    X( 4, FilterLow,   DIALIX_TR("Filter Low"),   DIALIX_TR("FL"))  \
    X( 5, FilterHigh,  DIALIX_TR("Filter High"),  DIALIX_TR("FH"))  \
    X( 6, FilterWidth, DIALIX_TR("Filter Width"), DIALIX_TR("FW"))  \
    X( 7, FilterShift, DIALIX_TR("Filter Shift"), DIALIX_TR("FS"))  \
    X( 8, Drive,       DIALIX_TR("Drive"),        DIALIX_TR("Drv")) \
    X( 9, If,          DIALIX_TR("IF"),           DIALIX_TR("IF"))  \
    X(10, RfGain,      DIALIX_TR("RF Gain"),      DIALIX_TR("RF"))  \
    X(11, CwSpeed,     DIALIX_TR("CW Speed"),     DIALIX_TR("CWS")) \
    X(12, RitOffset,   DIALIX_TR("RIT Offset"),   DIALIX_TR("Rit")) \
    X(13, XitOffset,   DIALIX_TR("XIT Offset"),   DIALIX_TR("Xit"))

// Slot names by function id: setFuncButton<id + 1>, setFuncDial<id>.
#define DIALIX_CAT_(a, b) a##b
#define DIALIX_CAT(a, b) DIALIX_CAT_(a, b)
#define DIALIX_FUNC_BUTTON_SLOT(id) DIALIX_CAT(setFuncButton, DIALIX_NEXT_##id)
#define DIALIX_FUNC_DIAL_SLOT(id) DIALIX_CAT(setFuncDial, id)
#define DIALIX_NEXT_0 1
#define DIALIX_NEXT_1 2
#define DIALIX_NEXT_2 3
#define DIALIX_NEXT_3 4
#define DIALIX_NEXT_4 5
#define DIALIX_NEXT_5 6
#define DIALIX_NEXT_6 7
#define DIALIX_NEXT_7 8
#define DIALIX_NEXT_8 9
#define DIALIX_NEXT_9 10
#define DIALIX_NEXT_10 11
#define DIALIX_NEXT_11 12
#define DIALIX_NEXT_12 13
#define DIALIX_NEXT_13 14
#define DIALIX_NEXT_14 15
#define DIALIX_NEXT_15 16
#define DIALIX_NEXT_16 17
#define DIALIX_NEXT_17 18
#define DIALIX_NEXT_18 19
#define DIALIX_NEXT_19 20
#define DIALIX_NEXT_20 21
#define DIALIX_NEXT_21 22
#define DIALIX_NEXT_22 23
#define DIALIX_NEXT_23 24
#define DIALIX_NEXT_24 25
#define DIALIX_NEXT_25 26
#define DIALIX_NEXT_26 27
#define DIALIX_NEXT_27 28
#define DIALIX_NEXT_28 29
#define DIALIX_NEXT_29 30
#define DIALIX_NEXT_30 31
#define DIALIX_NEXT_31 32
#define DIALIX_NEXT_32 33
#define DIALIX_NEXT_33 34
#define DIALIX_NEXT_34 35
#define DIALIX_NEXT_35 36
#define DIALIX_NEXT_36 37
#define DIALIX_NEXT_37 38
#define DIALIX_NEXT_38 39
#define DIALIX_NEXT_39 40
#define DIALIX_NEXT_40 41
#define DIALIX_NEXT_41 42
#define DIALIX_NEXT_42 43
#define DIALIX_NEXT_43 44
#define DIALIX_NEXT_44 45
#define DIALIX_NEXT_45 46
#define DIALIX_NEXT_46 47
#define DIALIX_NEXT_47 48
#define DIALIX_NEXT_48 49
#define DIALIX_NEXT_49 50
#define DIALIX_NEXT_50 51
#define DIALIX_NEXT_51 52
#define DIALIX_NEXT_52 53
#define DIALIX_NEXT_53 54
#define DIALIX_NEXT_54 55
#define DIALIX_NEXT_55 56
#define DIALIX_NEXT_56 57
#define DIALIX_NEXT_57 58
#define DIALIX_NEXT_58 59
#define DIALIX_NEXT_59 60
#define DIALIX_NEXT_60 61
// clang-format on

namespace dialix {

// Function ids by name: ButtonFunction::BandUp == 1, DialFunction::Volume == 1.
#define DIALIX_ENUMERATOR_(id, Name, ...) Name = id,
enum class ButtonFunction : int { DIALIX_BUTTON_FUNCTIONS(DIALIX_ENUMERATOR_) };
enum class DialFunction : int { DIALIX_DIAL_FUNCTIONS(DIALIX_ENUMERATOR_) };
#undef DIALIX_ENUMERATOR_

struct ButtonFunctionInfo
{
    int id;
    const char *name; // the table's Name column
    QLatin1String label; // full label (translation source)
    QLatin1String shortLabel; // short label (translation source)
    SubMenu subMenu;
    int place; // position inside subMenu
};

struct DialFunctionInfo
{
    int id;
    const char *name;
    QLatin1String label;
    QLatin1String shortLabel;
};

#define DIALIX_BUTTON_ROW_(id, Name, full, brief, menu, place)                                     \
    ButtonFunctionInfo {id, #Name, DIALIX_LABEL(full), DIALIX_LABEL(brief), menu, place},
#define DIALIX_DIAL_ROW_(id, Name, full, brief)                                                    \
    DialFunctionInfo {id, #Name, DIALIX_LABEL(full), DIALIX_LABEL(brief)},
inline constexpr ButtonFunctionInfo buttonFunctions[] = {
    DIALIX_BUTTON_FUNCTIONS(DIALIX_BUTTON_ROW_)};
inline constexpr DialFunctionInfo dialFunctions[] = {DIALIX_DIAL_FUNCTIONS(DIALIX_DIAL_ROW_)};
#undef DIALIX_BUTTON_ROW_
#undef DIALIX_DIAL_ROW_

inline constexpr int ButtonFunctionCount = int(std::size(buttonFunctions)); // 61
inline constexpr int DialFunctionCount = int(std::size(dialFunctions)); // 14

// The sub-menus of a key menu in the order shown after "Unused".
inline constexpr std::array<SubMenu, 4> buttonMenuOrder = {SubMenu::Main, SubMenu::VfoRx2,
                                                           SubMenu::Audio, SubMenu::Dsp};

constexpr bool isButtonFunction(int id)
{
    return id >= 0 && id < ButtonFunctionCount;
}
constexpr bool isDialFunction(int id)
{
    return id >= 0 && id < DialFunctionCount;
}

// Untranslated labels by id; an id outside the table gives an empty label.
constexpr QLatin1String buttonFunctionLabel(int id)
{
    return isButtonFunction(id) ? buttonFunctions[id].label : QLatin1String("", 0);
}
constexpr QLatin1String buttonFunctionShortLabel(int id)
{
    return isButtonFunction(id) ? buttonFunctions[id].shortLabel : QLatin1String("", 0);
}
constexpr QLatin1String dialFunctionLabel(int id)
{
    return isDialFunction(id) ? dialFunctions[id].label : QLatin1String("", 0);
}
constexpr QLatin1String dialFunctionShortLabel(int id)
{
    return isDialFunction(id) ? dialFunctions[id].shortLabel : QLatin1String("", 0);
}

// The sub-menu holding key function id (SubMenu::Top for "Unused" and for ids
// outside the table).
constexpr SubMenu buttonFunctionSubMenu(int id)
{
    return isButtonFunction(id) ? buttonFunctions[id].subMenu : SubMenu::Top;
}

// Number of functions in a sub-menu (Top holds only "Unused").
constexpr int subMenuSize(SubMenu menu)
{
    int n = 0;
    for (const auto &f : buttonFunctions)
        n += f.subMenu == menu ? 1 : 0;
    return n;
}

// The function id at a place of a sub-menu, -1 when there is none.
constexpr int subMenuFunction(SubMenu menu, int place)
{
    for (const auto &f : buttonFunctions)
        if (f.subMenu == menu && f.place == place)
            return f.id;
    return -1;
}

// Untranslated title of a sub-menu ("Main", "VFO/RX2", "Audio", "DSP"; empty for Top).
constexpr QLatin1String subMenuTitle(SubMenu menu)
{
    switch (menu) {
    case SubMenu::Main:
        return DIALIX_LABEL(DIALIX_TR("Main"));
    case SubMenu::VfoRx2:
        return DIALIX_LABEL(DIALIX_TR("VFO/RX2"));
    case SubMenu::Audio:
        return DIALIX_LABEL(DIALIX_TR("Audio"));
    case SubMenu::Dsp:
        return DIALIX_LABEL(DIALIX_TR("DSP"));
    case SubMenu::Top:
        break;
    }
    return QLatin1String("", 0);
}

// Translated texts (context "DialixOptions") for menus, buttons and tool tips.
// Ids outside the table give an empty string.
QString buttonFunctionText(int id);
QString buttonFunctionShortText(int id);
QString dialFunctionText(int id);
QString dialFunctionShortText(int id);
QString subMenuText(SubMenu menu);

// The function ids of a sub-menu in the order the user sees them.
QVector<int> subMenuFunctions(SubMenu menu);

namespace detail {
constexpr bool rowsHoldTheirIds()
{
    for (int i = 0; i < ButtonFunctionCount; ++i)
        if (buttonFunctions[i].id != i)
            return false;
    for (int i = 0; i < DialFunctionCount; ++i)
        if (dialFunctions[i].id != i)
            return false;
    return true;
}

// Every place 0 .. size-1 of a sub-menu is taken exactly once.
constexpr bool placesAreDense(SubMenu menu)
{
    const int size = subMenuSize(menu);
    for (int place = 0; place < size; ++place) {
        int hits = 0;
        for (const auto &f : buttonFunctions)
            hits += (f.subMenu == menu && f.place == place) ? 1 : 0;
        if (hits != 1)
            return false;
    }
    return true;
}
} // namespace detail

static_assert(ButtonFunctionCount == 61, "key functions are ids 0 to 60");
static_assert(DialFunctionCount == 14, "dial functions are ids 0 to 13");
static_assert(detail::rowsHoldTheirIds(), "row i of a function table must hold id i");
static_assert(subMenuSize(SubMenu::Top) == 1 && subMenuFunction(SubMenu::Top, 0) == 0,
              "only \"Unused\" sits at the top level");
static_assert(detail::placesAreDense(SubMenu::Main) && detail::placesAreDense(SubMenu::VfoRx2)
                  && detail::placesAreDense(SubMenu::Audio) && detail::placesAreDense(SubMenu::Dsp),
              "places inside a sub-menu must be 0 .. size-1, each once");

} // namespace dialix

#endif // DIALIX_FUNCTIONTABLE_H
