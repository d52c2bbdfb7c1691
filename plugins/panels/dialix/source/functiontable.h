#pragma once

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
// below return the translated QString. After adding or changing a label, run the
// dialix_lupdate target and translate the new entries in translations/*.ts (a test
// fails while a German entry is missing).
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

// clang-format off
#define DIALIX_BUTTON_FUNCTIONS(X) \
    X( 0, Unused,                  QT_TRANSLATE_NOOP("DialixOptions", "Unused"),                                        QT_TRANSLATE_NOOP("DialixOptions", "NO"),    dialix::SubMenu::Top,     0) \
    X( 1, BandUp,                  QT_TRANSLATE_NOOP("DialixOptions", "Band Up"),                                       QT_TRANSLATE_NOOP("DialixOptions", "BU"),    dialix::SubMenu::Main,    2) \
    X( 2, BandDown,                QT_TRANSLATE_NOOP("DialixOptions", "Band Down"),                                     QT_TRANSLATE_NOOP("DialixOptions", "BD"),    dialix::SubMenu::Main,    3) \
    X( 3, ModeUp,                  QT_TRANSLATE_NOOP("DialixOptions", "Mode Up"),                                       QT_TRANSLATE_NOOP("DialixOptions", "MU"),    dialix::SubMenu::Main,    6) \
    X( 4, ModeDown,                QT_TRANSLATE_NOOP("DialixOptions", "Mode Down"),                                     QT_TRANSLATE_NOOP("DialixOptions", "MD"),    dialix::SubMenu::Main,    7) \
    X( 5, VolumeUp,                QT_TRANSLATE_NOOP("DialixOptions", "Volume Up"),                                     QT_TRANSLATE_NOOP("DialixOptions", "V+"),    dialix::SubMenu::Audio,  14) \
    X( 6, VolumeDown,              QT_TRANSLATE_NOOP("DialixOptions", "Volume Down"),                                   QT_TRANSLATE_NOOP("DialixOptions", "V-"),    dialix::SubMenu::Audio,  15) \
    X( 7, Mute,                    QT_TRANSLATE_NOOP("DialixOptions", "Mute"),                                          QT_TRANSLATE_NOOP("DialixOptions", "Mute"),  dialix::SubMenu::Audio,  10) \
    X( 8, Bin,                     QT_TRANSLATE_NOOP("DialixOptions", "BIN"),                                           QT_TRANSLATE_NOOP("DialixOptions", "BIN"),   dialix::SubMenu::Dsp,     2) \
    X( 9, Nr,                      QT_TRANSLATE_NOOP("DialixOptions", "NR"),                                            QT_TRANSLATE_NOOP("DialixOptions", "NR"),    dialix::SubMenu::Dsp,     3) \
    X(10, Anf,                     QT_TRANSLATE_NOOP("DialixOptions", "ANF"),                                           QT_TRANSLATE_NOOP("DialixOptions", "ANF"),   dialix::SubMenu::Dsp,     0) \
    X(11, Nb1,                     QT_TRANSLATE_NOOP("DialixOptions", "NB1"),                                           QT_TRANSLATE_NOOP("DialixOptions", "NB1"),   dialix::SubMenu::Dsp,     4) \
    X(12, Nb2,                     QT_TRANSLATE_NOOP("DialixOptions", "NB2"),                                           QT_TRANSLATE_NOOP("DialixOptions", "NB2"),   dialix::SubMenu::Dsp,     5) \
    X(13, FilterUp,                QT_TRANSLATE_NOOP("DialixOptions", "Filter Up"),                                     QT_TRANSLATE_NOOP("DialixOptions", "FU"),    dialix::SubMenu::Main,    4) \
    X(14, FilterDown,              QT_TRANSLATE_NOOP("DialixOptions", "Filter Down"),                                   QT_TRANSLATE_NOOP("DialixOptions", "FD"),    dialix::SubMenu::Main,    5) \
    X(15, Sql,                     QT_TRANSLATE_NOOP("DialixOptions", "SQL"),                                           QT_TRANSLATE_NOOP("DialixOptions", "SQL"),   dialix::SubMenu::Dsp,     6) \
    X(16, Pa,                      QT_TRANSLATE_NOOP("DialixOptions", "PA"),                                            QT_TRANSLATE_NOOP("DialixOptions", "PA"),    dialix::SubMenu::Main,    9) \
    X(17, AgcUp,                   QT_TRANSLATE_NOOP("DialixOptions", "Agc Up"),                                        QT_TRANSLATE_NOOP("DialixOptions", "AgcU"),  dialix::SubMenu::Main,    0) \
    X(18, AgcDown,                 QT_TRANSLATE_NOOP("DialixOptions", "Agc Down"),                                      QT_TRANSLATE_NOOP("DialixOptions", "AgcD"),  dialix::SubMenu::Main,    1) \
    X(19, PreampUp,                QT_TRANSLATE_NOOP("DialixOptions", "Preamp Up"),                                     QT_TRANSLATE_NOOP("DialixOptions", "PrU"),   dialix::SubMenu::Main,   11) \
    X(20, PreampDown,              QT_TRANSLATE_NOOP("DialixOptions", "Preamp Down"),                                   QT_TRANSLATE_NOOP("DialixOptions", "PrD"),   dialix::SubMenu::Main,   12) \
    X(21, StepUp,                  QT_TRANSLATE_NOOP("DialixOptions", "Step Up"),                                       QT_TRANSLATE_NOOP("DialixOptions", "StU"),   dialix::SubMenu::Main,   14) \
    X(22, StepDown,                QT_TRANSLATE_NOOP("DialixOptions", "Step Down"),                                     QT_TRANSLATE_NOOP("DialixOptions", "StD"),   dialix::SubMenu::Main,   15) \
    X(23, ZoomIn,                  QT_TRANSLATE_NOOP("DialixOptions", "Zoom In"),                                       QT_TRANSLATE_NOOP("DialixOptions", "ZM+"),   dialix::SubMenu::Main,   18) \
    X(24, ZoomOut,                 QT_TRANSLATE_NOOP("DialixOptions", "Zoom Out"),                                      QT_TRANSLATE_NOOP("DialixOptions", "ZM-"),   dialix::SubMenu::Main,   19) \
    X(25, Mox,                     QT_TRANSLATE_NOOP("DialixOptions", "MOX"),                                           QT_TRANSLATE_NOOP("DialixOptions", "MOX"),   dialix::SubMenu::Main,    8) \
    X(26, Tune,                    QT_TRANSLATE_NOOP("DialixOptions", "Tune"),                                          QT_TRANSLATE_NOOP("DialixOptions", "Tun"),   dialix::SubMenu::Main,   16) \
    X(27, Wf,                      QT_TRANSLATE_NOOP("DialixOptions", "WF"),                                            QT_TRANSLATE_NOOP("DialixOptions", "WF"),    dialix::SubMenu::Main,   17) \
    X(28, PowerOnOff,              QT_TRANSLATE_NOOP("DialixOptions", "Power On/Off"),                                  QT_TRANSLATE_NOOP("DialixOptions", "PWR"),   dialix::SubMenu::Main,   10) \
    X(29, SwitchDdsIf,             QT_TRANSLATE_NOOP("DialixOptions", "Switch DDS/IF"),                                 QT_TRANSLATE_NOOP("DialixOptions", "D/I"),   dialix::SubMenu::VfoRx2, 11) \
    X(30, SwitchReceiver,          QT_TRANSLATE_NOOP("DialixOptions", "Switch Receiver"),                               QT_TRANSLATE_NOOP("DialixOptions", "SR"),    dialix::SubMenu::VfoRx2, 12) \
    X(31, ChangeVfoAB,             QT_TRANSLATE_NOOP("DialixOptions", "Change VFOA/VFOB"),                              QT_TRANSLATE_NOOP("DialixOptions", "A/B"),   dialix::SubMenu::VfoRx2,  3) \
    X(32, SubRxOnOff,              QT_TRANSLATE_NOOP("DialixOptions", "SubRX On/Off"),                                  QT_TRANSLATE_NOOP("DialixOptions", "VfB"),   dialix::SubMenu::VfoRx2,  9) \
    X(33, RitOnOff,                QT_TRANSLATE_NOOP("DialixOptions", "RIT On/Off"),                                    QT_TRANSLATE_NOOP("DialixOptions", "Rit"),   dialix::SubMenu::VfoRx2,  7) \
    X(34, RitReset,                QT_TRANSLATE_NOOP("DialixOptions", "RIT Reset"),                                     QT_TRANSLATE_NOOP("DialixOptions", "Rt0"),   dialix::SubMenu::VfoRx2,  8) \
    X(35, IfAsRit,                 QT_TRANSLATE_NOOP("DialixOptions", "IF as RIT"),                                     QT_TRANSLATE_NOOP("DialixOptions", "IfR"),   dialix::SubMenu::VfoRx2,  4) \
    X(36, XitOnOff,                QT_TRANSLATE_NOOP("DialixOptions", "XIT On/Off"),                                    QT_TRANSLATE_NOOP("DialixOptions", "Xit"),   dialix::SubMenu::VfoRx2, 13) \
    X(37, XitReset,                QT_TRANSLATE_NOOP("DialixOptions", "XIT Reset"),                                     QT_TRANSLATE_NOOP("DialixOptions", "Xt0"),   dialix::SubMenu::VfoRx2, 14) \
    X(38, Split,                   QT_TRANSLATE_NOOP("DialixOptions", "Split"),                                         QT_TRANSLATE_NOOP("DialixOptions", "Spl"),   dialix::SubMenu::VfoRx2, 10) \
    X(39, TxPlay,                  QT_TRANSLATE_NOOP("DialixOptions", "TX / Play"),                                     QT_TRANSLATE_NOOP("DialixOptions", "T/P"),   dialix::SubMenu::Audio,  12) \
    X(40, VoiceRecording,          QT_TRANSLATE_NOOP("DialixOptions", "Voice recording"),                               QT_TRANSLATE_NOOP("DialixOptions", "V/R"),   dialix::SubMenu::Audio,  13) \
    X(41, RxAnt,                   QT_TRANSLATE_NOOP("DialixOptions", "RX ANT"),                                        QT_TRANSLATE_NOOP("DialixOptions", "RxA"),   dialix::SubMenu::Main,   13) \
    X(42, Lock,                    QT_TRANSLATE_NOOP("DialixOptions", "LOCK"),                                          QT_TRANSLATE_NOOP("DialixOptions", "Lock"),  dialix::SubMenu::VfoRx2,  5) \
    X(43, AToB,                    QT_TRANSLATE_NOOP("DialixOptions", "A->B"),                                          QT_TRANSLATE_NOOP("DialixOptions", "A->B"),  dialix::SubMenu::VfoRx2,  0) \
    X(44, BToA,                    QT_TRANSLATE_NOOP("DialixOptions", "B->A"),                                          QT_TRANSLATE_NOOP("DialixOptions", "B->A"),  dialix::SubMenu::VfoRx2,  1) \
    X(45, SwapAB,                  QT_TRANSLATE_NOOP("DialixOptions", "B<->A"),                                         QT_TRANSLATE_NOOP("DialixOptions", "Swap"),  dialix::SubMenu::VfoRx2,  2) \
    X(46, Apf,                     QT_TRANSLATE_NOOP("DialixOptions", "APF"),                                           QT_TRANSLATE_NOOP("DialixOptions", "APF"),   dialix::SubMenu::Dsp,     1) \
    X(47, ListenBothRx,            QT_TRANSLATE_NOOP("DialixOptions", "Listen both RX1, RX2"),                          QT_TRANSLATE_NOOP("DialixOptions", "V.D"),   dialix::SubMenu::Audio,   0) \
    X(48, ListenRx1Only,           QT_TRANSLATE_NOOP("DialixOptions", "Listen RX1 only"),                               QT_TRANSLATE_NOOP("DialixOptions", "V.RX1"), dialix::SubMenu::Audio,   1) \
    X(49, ListenRx2Only,           QT_TRANSLATE_NOOP("DialixOptions", "Listen RX2 only"),                               QT_TRANSLATE_NOOP("DialixOptions", "V.RX2"), dialix::SubMenu::Audio,   2) \
    X(50, ListenRx1LeftRx2Right,   QT_TRANSLATE_NOOP("DialixOptions", "Listen RX1 in left channel - RX2 in right"),     QT_TRANSLATE_NOOP("DialixOptions", "V.R1L"), dialix::SubMenu::Audio,   3) \
    X(51, ListenRx1RightRx2Left,   QT_TRANSLATE_NOOP("DialixOptions", "Listen RX1 in right channel - RX2 in left"),     QT_TRANSLATE_NOOP("DialixOptions", "V.R1R"), dialix::SubMenu::Audio,   4) \
    X(52, SwitchRxMuteFormer,      QT_TRANSLATE_NOOP("DialixOptions", "Switch RX and mute former"),                     QT_TRANSLATE_NOOP("DialixOptions", "SR.M"),  dialix::SubMenu::Audio,  11) \
    X(53, Rx2OnOff,                QT_TRANSLATE_NOOP("DialixOptions", "RX2 On/Off"),                                    QT_TRANSLATE_NOOP("DialixOptions", "RX2"),   dialix::SubMenu::VfoRx2,  6) \
    X(54, ListenBothVfo,           QT_TRANSLATE_NOOP("DialixOptions", "Listen both VFO A/B"),                           QT_TRANSLATE_NOOP("DialixOptions", "V.AB"),  dialix::SubMenu::Audio,   5) \
    X(55, ListenVfoAOnly,          QT_TRANSLATE_NOOP("DialixOptions", "Listen VFO A only"),                             QT_TRANSLATE_NOOP("DialixOptions", "V.A"),   dialix::SubMenu::Audio,   6) \
    X(56, ListenVfoBOnly,          QT_TRANSLATE_NOOP("DialixOptions", "Listen VFO B only"),                             QT_TRANSLATE_NOOP("DialixOptions", "V.B"),   dialix::SubMenu::Audio,   7) \
    X(57, ListenVfoALeftVfoBRight, QT_TRANSLATE_NOOP("DialixOptions", "Listen VFO A in left channel - VFO B in right"), QT_TRANSLATE_NOOP("DialixOptions", "V.AL"),  dialix::SubMenu::Audio,   8) \
    X(58, ListenVfoARightVfoBLeft, QT_TRANSLATE_NOOP("DialixOptions", "Listen VFO A in right channel - VFO B in left"), QT_TRANSLATE_NOOP("DialixOptions", "V.AR"),  dialix::SubMenu::Audio,   9) \
    X(59, Vox,                     QT_TRANSLATE_NOOP("DialixOptions", "VOX"),                                           QT_TRANSLATE_NOOP("DialixOptions", "VOX"),   dialix::SubMenu::Audio,  16) \
    X(60, Nf,                      QT_TRANSLATE_NOOP("DialixOptions", "NF"),                                            QT_TRANSLATE_NOOP("DialixOptions", "NF"),    dialix::SubMenu::Dsp,     7)

#define DIALIX_DIAL_FUNCTIONS(X) \
    X( 0, Unused,      QT_TRANSLATE_NOOP("DialixOptions", "Unused"),       QT_TRANSLATE_NOOP("DialixOptions", "NO"))  \
    X( 1, Volume,      QT_TRANSLATE_NOOP("DialixOptions", "Volume"),       QT_TRANSLATE_NOOP("DialixOptions", "Vol")) \
    X( 2, MicGain,     QT_TRANSLATE_NOOP("DialixOptions", "Mic Gain"),     QT_TRANSLATE_NOOP("DialixOptions", "Mic")) \
    X( 3, Sql,         QT_TRANSLATE_NOOP("DialixOptions", "SQL"),          QT_TRANSLATE_NOOP("DialixOptions", "SQL")) \
    X( 4, FilterLow,   QT_TRANSLATE_NOOP("DialixOptions", "Filter Low"),   QT_TRANSLATE_NOOP("DialixOptions", "FL"))  \
    X( 5, FilterHigh,  QT_TRANSLATE_NOOP("DialixOptions", "Filter High"),  QT_TRANSLATE_NOOP("DialixOptions", "FH"))  \
    X( 6, FilterWidth, QT_TRANSLATE_NOOP("DialixOptions", "Filter Width"), QT_TRANSLATE_NOOP("DialixOptions", "FW"))  \
    X( 7, FilterShift, QT_TRANSLATE_NOOP("DialixOptions", "Filter Shift"), QT_TRANSLATE_NOOP("DialixOptions", "FS"))  \
    X( 8, Drive,       QT_TRANSLATE_NOOP("DialixOptions", "Drive"),        QT_TRANSLATE_NOOP("DialixOptions", "Drv")) \
    X( 9, If,          QT_TRANSLATE_NOOP("DialixOptions", "IF"),           QT_TRANSLATE_NOOP("DialixOptions", "IF"))  \
    X(10, RfGain,      QT_TRANSLATE_NOOP("DialixOptions", "RF Gain"),      QT_TRANSLATE_NOOP("DialixOptions", "RF"))  \
    X(11, CwSpeed,     QT_TRANSLATE_NOOP("DialixOptions", "CW Speed"),     QT_TRANSLATE_NOOP("DialixOptions", "CWS")) \
    X(12, RitOffset,   QT_TRANSLATE_NOOP("DialixOptions", "RIT Offset"),   QT_TRANSLATE_NOOP("DialixOptions", "Rit")) \
    X(13, XitOffset,   QT_TRANSLATE_NOOP("DialixOptions", "XIT Offset"),   QT_TRANSLATE_NOOP("DialixOptions", "Xit"))

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
        return DIALIX_LABEL(QT_TRANSLATE_NOOP("DialixOptions", "Main"));
    case SubMenu::VfoRx2:
        return DIALIX_LABEL(QT_TRANSLATE_NOOP("DialixOptions", "VFO/RX2"));
    case SubMenu::Audio:
        return DIALIX_LABEL(QT_TRANSLATE_NOOP("DialixOptions", "Audio"));
    case SubMenu::Dsp:
        return DIALIX_LABEL(QT_TRANSLATE_NOOP("DialixOptions", "DSP"));
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
