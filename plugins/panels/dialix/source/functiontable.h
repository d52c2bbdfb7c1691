#pragma once

// The functions a panel key or dial can be given, in one place.
//
// Two X-macro tables list every function a key or dial can run; with the
// "Unused" row (id 0 of both, which runs nothing) they make the two function
// tables. Everything else is derived from them: the enumerations, the label
// lookups, the sub-menu layout of the key menus, the translations (lupdate reads
// the QT_TRANSLATE_NOOP marks below) and the controller's per-function slots and
// dispatch.
//
//   DIALIX_BUTTON_FUNCTIONS(X)   X(id, Name, slot, full label, short label, sub-menu, place)
//   DIALIX_DIAL_FUNCTIONS(X)     X(id, Name, slot, full label, short label)
//
//   id         the function id: the position of the action in the key's or dial's
//              action group; row i of a table holds id i
//   Name       a C identifier naming the function (for enumerators and handlers)
//   slot       the controller's public slot that runs the function directly
//              (setFuncButton<id + 1>(), setFuncDial<id>(int value))
//   full       the label shown in menus and as the button's tool tip
//   short      the label shown on the small buttons of the panel picture
//   sub-menu   where the action sits in every key menu (SubMenu::Top is "Unused" only)
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
//   #define DECLARE(id, Name, slot, ...) void slot();
//   public slots:
//       DIALIX_BUTTON_FUNCTIONS(DECLARE)   // setFuncButton2() ... setFuncButton61()

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
    X( 1, BandUp,                  setFuncButton2,  QT_TRANSLATE_NOOP("DialixOptions", "Band Up"),                                       QT_TRANSLATE_NOOP("DialixOptions", "BU"),    dialix::SubMenu::Main,    2) \
    X( 2, BandDown,                setFuncButton3,  QT_TRANSLATE_NOOP("DialixOptions", "Band Down"),                                     QT_TRANSLATE_NOOP("DialixOptions", "BD"),    dialix::SubMenu::Main,    3) \
    X( 3, ModeUp,                  setFuncButton4,  QT_TRANSLATE_NOOP("DialixOptions", "Mode Up"),                                       QT_TRANSLATE_NOOP("DialixOptions", "MU"),    dialix::SubMenu::Main,    6) \
    X( 4, ModeDown,                setFuncButton5,  QT_TRANSLATE_NOOP("DialixOptions", "Mode Down"),                                     QT_TRANSLATE_NOOP("DialixOptions", "MD"),    dialix::SubMenu::Main,    7) \
    X( 5, VolumeUp,                setFuncButton6,  QT_TRANSLATE_NOOP("DialixOptions", "Volume Up"),                                     QT_TRANSLATE_NOOP("DialixOptions", "V+"),    dialix::SubMenu::Audio,  14) \
    X( 6, VolumeDown,              setFuncButton7,  QT_TRANSLATE_NOOP("DialixOptions", "Volume Down"),                                   QT_TRANSLATE_NOOP("DialixOptions", "V-"),    dialix::SubMenu::Audio,  15) \
    X( 7, Mute,                    setFuncButton8,  QT_TRANSLATE_NOOP("DialixOptions", "Mute"),                                          QT_TRANSLATE_NOOP("DialixOptions", "Mute"),  dialix::SubMenu::Audio,  10) \
    X( 8, Bin,                     setFuncButton9,  QT_TRANSLATE_NOOP("DialixOptions", "BIN"),                                           QT_TRANSLATE_NOOP("DialixOptions", "BIN"),   dialix::SubMenu::Dsp,     2) \
    X( 9, Nr,                      setFuncButton10, QT_TRANSLATE_NOOP("DialixOptions", "NR"),                                            QT_TRANSLATE_NOOP("DialixOptions", "NR"),    dialix::SubMenu::Dsp,     3) \
    X(10, Anf,                     setFuncButton11, QT_TRANSLATE_NOOP("DialixOptions", "ANF"),                                           QT_TRANSLATE_NOOP("DialixOptions", "ANF"),   dialix::SubMenu::Dsp,     0) \
    X(11, Nb1,                     setFuncButton12, QT_TRANSLATE_NOOP("DialixOptions", "NB1"),                                           QT_TRANSLATE_NOOP("DialixOptions", "NB1"),   dialix::SubMenu::Dsp,     4) \
    X(12, Nb2,                     setFuncButton13, QT_TRANSLATE_NOOP("DialixOptions", "NB2"),                                           QT_TRANSLATE_NOOP("DialixOptions", "NB2"),   dialix::SubMenu::Dsp,     5) \
    X(13, FilterUp,                setFuncButton14, QT_TRANSLATE_NOOP("DialixOptions", "Filter Up"),                                     QT_TRANSLATE_NOOP("DialixOptions", "FU"),    dialix::SubMenu::Main,    4) \
    X(14, FilterDown,              setFuncButton15, QT_TRANSLATE_NOOP("DialixOptions", "Filter Down"),                                   QT_TRANSLATE_NOOP("DialixOptions", "FD"),    dialix::SubMenu::Main,    5) \
    X(15, Sql,                     setFuncButton16, QT_TRANSLATE_NOOP("DialixOptions", "SQL"),                                           QT_TRANSLATE_NOOP("DialixOptions", "SQL"),   dialix::SubMenu::Dsp,     6) \
    X(16, Pa,                      setFuncButton17, QT_TRANSLATE_NOOP("DialixOptions", "PA"),                                            QT_TRANSLATE_NOOP("DialixOptions", "PA"),    dialix::SubMenu::Main,    9) \
    X(17, AgcUp,                   setFuncButton18, QT_TRANSLATE_NOOP("DialixOptions", "Agc Up"),                                        QT_TRANSLATE_NOOP("DialixOptions", "AgcU"),  dialix::SubMenu::Main,    0) \
    X(18, AgcDown,                 setFuncButton19, QT_TRANSLATE_NOOP("DialixOptions", "Agc Down"),                                      QT_TRANSLATE_NOOP("DialixOptions", "AgcD"),  dialix::SubMenu::Main,    1) \
    X(19, PreampUp,                setFuncButton20, QT_TRANSLATE_NOOP("DialixOptions", "Preamp Up"),                                     QT_TRANSLATE_NOOP("DialixOptions", "PrU"),   dialix::SubMenu::Main,   11) \
    X(20, PreampDown,              setFuncButton21, QT_TRANSLATE_NOOP("DialixOptions", "Preamp Down"),                                   QT_TRANSLATE_NOOP("DialixOptions", "PrD"),   dialix::SubMenu::Main,   12) \
    X(21, StepUp,                  setFuncButton22, QT_TRANSLATE_NOOP("DialixOptions", "Step Up"),                                       QT_TRANSLATE_NOOP("DialixOptions", "StU"),   dialix::SubMenu::Main,   14) \
    X(22, StepDown,                setFuncButton23, QT_TRANSLATE_NOOP("DialixOptions", "Step Down"),                                     QT_TRANSLATE_NOOP("DialixOptions", "StD"),   dialix::SubMenu::Main,   15) \
    X(23, ZoomIn,                  setFuncButton24, QT_TRANSLATE_NOOP("DialixOptions", "Zoom In"),                                       QT_TRANSLATE_NOOP("DialixOptions", "ZM+"),   dialix::SubMenu::Main,   18) \
    X(24, ZoomOut,                 setFuncButton25, QT_TRANSLATE_NOOP("DialixOptions", "Zoom Out"),                                      QT_TRANSLATE_NOOP("DialixOptions", "ZM-"),   dialix::SubMenu::Main,   19) \
    X(25, Mox,                     setFuncButton26, QT_TRANSLATE_NOOP("DialixOptions", "MOX"),                                           QT_TRANSLATE_NOOP("DialixOptions", "MOX"),   dialix::SubMenu::Main,    8) \
    X(26, Tune,                    setFuncButton27, QT_TRANSLATE_NOOP("DialixOptions", "Tune"),                                          QT_TRANSLATE_NOOP("DialixOptions", "Tun"),   dialix::SubMenu::Main,   16) \
    X(27, Wf,                      setFuncButton28, QT_TRANSLATE_NOOP("DialixOptions", "WF"),                                            QT_TRANSLATE_NOOP("DialixOptions", "WF"),    dialix::SubMenu::Main,   17) \
    X(28, PowerOnOff,              setFuncButton29, QT_TRANSLATE_NOOP("DialixOptions", "Power On/Off"),                                  QT_TRANSLATE_NOOP("DialixOptions", "PWR"),   dialix::SubMenu::Main,   10) \
    X(29, SwitchDdsIf,             setFuncButton30, QT_TRANSLATE_NOOP("DialixOptions", "Switch DDS/IF"),                                 QT_TRANSLATE_NOOP("DialixOptions", "D/I"),   dialix::SubMenu::VfoRx2, 11) \
    X(30, SwitchReceiver,          setFuncButton31, QT_TRANSLATE_NOOP("DialixOptions", "Switch Receiver"),                               QT_TRANSLATE_NOOP("DialixOptions", "SR"),    dialix::SubMenu::VfoRx2, 12) \
    X(31, ChangeVfoAB,             setFuncButton32, QT_TRANSLATE_NOOP("DialixOptions", "Change VFOA/VFOB"),                              QT_TRANSLATE_NOOP("DialixOptions", "A/B"),   dialix::SubMenu::VfoRx2,  3) \
    X(32, SubRxOnOff,              setFuncButton33, QT_TRANSLATE_NOOP("DialixOptions", "SubRX On/Off"),                                  QT_TRANSLATE_NOOP("DialixOptions", "VfB"),   dialix::SubMenu::VfoRx2,  9) \
    X(33, RitOnOff,                setFuncButton34, QT_TRANSLATE_NOOP("DialixOptions", "RIT On/Off"),                                    QT_TRANSLATE_NOOP("DialixOptions", "Rit"),   dialix::SubMenu::VfoRx2,  7) \
    X(34, RitReset,                setFuncButton35, QT_TRANSLATE_NOOP("DialixOptions", "RIT Reset"),                                     QT_TRANSLATE_NOOP("DialixOptions", "Rt0"),   dialix::SubMenu::VfoRx2,  8) \
    X(35, IfAsRit,                 setFuncButton36, QT_TRANSLATE_NOOP("DialixOptions", "IF as RIT"),                                     QT_TRANSLATE_NOOP("DialixOptions", "IfR"),   dialix::SubMenu::VfoRx2,  4) \
    X(36, XitOnOff,                setFuncButton37, QT_TRANSLATE_NOOP("DialixOptions", "XIT On/Off"),                                    QT_TRANSLATE_NOOP("DialixOptions", "Xit"),   dialix::SubMenu::VfoRx2, 13) \
    X(37, XitReset,                setFuncButton38, QT_TRANSLATE_NOOP("DialixOptions", "XIT Reset"),                                     QT_TRANSLATE_NOOP("DialixOptions", "Xt0"),   dialix::SubMenu::VfoRx2, 14) \
    X(38, Split,                   setFuncButton39, QT_TRANSLATE_NOOP("DialixOptions", "Split"),                                         QT_TRANSLATE_NOOP("DialixOptions", "Spl"),   dialix::SubMenu::VfoRx2, 10) \
    X(39, TxPlay,                  setFuncButton40, QT_TRANSLATE_NOOP("DialixOptions", "TX / Play"),                                     QT_TRANSLATE_NOOP("DialixOptions", "T/P"),   dialix::SubMenu::Audio,  12) \
    X(40, VoiceRecording,          setFuncButton41, QT_TRANSLATE_NOOP("DialixOptions", "Voice recording"),                               QT_TRANSLATE_NOOP("DialixOptions", "V/R"),   dialix::SubMenu::Audio,  13) \
    X(41, RxAnt,                   setFuncButton42, QT_TRANSLATE_NOOP("DialixOptions", "RX ANT"),                                        QT_TRANSLATE_NOOP("DialixOptions", "RxA"),   dialix::SubMenu::Main,   13) \
    X(42, Lock,                    setFuncButton43, QT_TRANSLATE_NOOP("DialixOptions", "LOCK"),                                          QT_TRANSLATE_NOOP("DialixOptions", "Lock"),  dialix::SubMenu::VfoRx2,  5) \
    X(43, AToB,                    setFuncButton44, QT_TRANSLATE_NOOP("DialixOptions", "A->B"),                                          QT_TRANSLATE_NOOP("DialixOptions", "A->B"),  dialix::SubMenu::VfoRx2,  0) \
    X(44, BToA,                    setFuncButton45, QT_TRANSLATE_NOOP("DialixOptions", "B->A"),                                          QT_TRANSLATE_NOOP("DialixOptions", "B->A"),  dialix::SubMenu::VfoRx2,  1) \
    X(45, SwapAB,                  setFuncButton46, QT_TRANSLATE_NOOP("DialixOptions", "B<->A"),                                         QT_TRANSLATE_NOOP("DialixOptions", "Swap"),  dialix::SubMenu::VfoRx2,  2) \
    X(46, Apf,                     setFuncButton47, QT_TRANSLATE_NOOP("DialixOptions", "APF"),                                           QT_TRANSLATE_NOOP("DialixOptions", "APF"),   dialix::SubMenu::Dsp,     1) \
    X(47, ListenBothRx,            setFuncButton48, QT_TRANSLATE_NOOP("DialixOptions", "Listen both RX1, RX2"),                          QT_TRANSLATE_NOOP("DialixOptions", "V.D"),   dialix::SubMenu::Audio,   0) \
    X(48, ListenRx1Only,           setFuncButton49, QT_TRANSLATE_NOOP("DialixOptions", "Listen RX1 only"),                               QT_TRANSLATE_NOOP("DialixOptions", "V.RX1"), dialix::SubMenu::Audio,   1) \
    X(49, ListenRx2Only,           setFuncButton50, QT_TRANSLATE_NOOP("DialixOptions", "Listen RX2 only"),                               QT_TRANSLATE_NOOP("DialixOptions", "V.RX2"), dialix::SubMenu::Audio,   2) \
    X(50, ListenRx1LeftRx2Right,   setFuncButton51, QT_TRANSLATE_NOOP("DialixOptions", "Listen RX1 in left channel - RX2 in right"),     QT_TRANSLATE_NOOP("DialixOptions", "V.R1L"), dialix::SubMenu::Audio,   3) \
    X(51, ListenRx1RightRx2Left,   setFuncButton52, QT_TRANSLATE_NOOP("DialixOptions", "Listen RX1 in right channel - RX2 in left"),     QT_TRANSLATE_NOOP("DialixOptions", "V.R1R"), dialix::SubMenu::Audio,   4) \
    X(52, SwitchRxMuteFormer,      setFuncButton53, QT_TRANSLATE_NOOP("DialixOptions", "Switch RX and mute former"),                     QT_TRANSLATE_NOOP("DialixOptions", "SR.M"),  dialix::SubMenu::Audio,  11) \
    X(53, Rx2OnOff,                setFuncButton54, QT_TRANSLATE_NOOP("DialixOptions", "RX2 On/Off"),                                    QT_TRANSLATE_NOOP("DialixOptions", "RX2"),   dialix::SubMenu::VfoRx2,  6) \
    X(54, ListenBothVfo,           setFuncButton55, QT_TRANSLATE_NOOP("DialixOptions", "Listen both VFO A/B"),                           QT_TRANSLATE_NOOP("DialixOptions", "V.AB"),  dialix::SubMenu::Audio,   5) \
    X(55, ListenVfoAOnly,          setFuncButton56, QT_TRANSLATE_NOOP("DialixOptions", "Listen VFO A only"),                             QT_TRANSLATE_NOOP("DialixOptions", "V.A"),   dialix::SubMenu::Audio,   6) \
    X(56, ListenVfoBOnly,          setFuncButton57, QT_TRANSLATE_NOOP("DialixOptions", "Listen VFO B only"),                             QT_TRANSLATE_NOOP("DialixOptions", "V.B"),   dialix::SubMenu::Audio,   7) \
    X(57, ListenVfoALeftVfoBRight, setFuncButton58, QT_TRANSLATE_NOOP("DialixOptions", "Listen VFO A in left channel - VFO B in right"), QT_TRANSLATE_NOOP("DialixOptions", "V.AL"),  dialix::SubMenu::Audio,   8) \
    X(58, ListenVfoARightVfoBLeft, setFuncButton59, QT_TRANSLATE_NOOP("DialixOptions", "Listen VFO A in right channel - VFO B in left"), QT_TRANSLATE_NOOP("DialixOptions", "V.AR"),  dialix::SubMenu::Audio,   9) \
    X(59, Vox,                     setFuncButton60, QT_TRANSLATE_NOOP("DialixOptions", "VOX"),                                           QT_TRANSLATE_NOOP("DialixOptions", "VOX"),   dialix::SubMenu::Audio,  16) \
    X(60, Nf,                      setFuncButton61, QT_TRANSLATE_NOOP("DialixOptions", "NF"),                                            QT_TRANSLATE_NOOP("DialixOptions", "NF"),    dialix::SubMenu::Dsp,     7)

#define DIALIX_DIAL_FUNCTIONS(X) \
    X( 1, Volume,                  setFuncDial1,    QT_TRANSLATE_NOOP("DialixOptions", "Volume"),       QT_TRANSLATE_NOOP("DialixOptions", "Vol")) \
    X( 2, MicGain,                 setFuncDial2,    QT_TRANSLATE_NOOP("DialixOptions", "Mic Gain"),     QT_TRANSLATE_NOOP("DialixOptions", "Mic")) \
    X( 3, Sql,                     setFuncDial3,    QT_TRANSLATE_NOOP("DialixOptions", "SQL"),          QT_TRANSLATE_NOOP("DialixOptions", "SQL")) \
    X( 4, FilterLow,               setFuncDial4,    QT_TRANSLATE_NOOP("DialixOptions", "Filter Low"),   QT_TRANSLATE_NOOP("DialixOptions", "FL"))  \
    X( 5, FilterHigh,              setFuncDial5,    QT_TRANSLATE_NOOP("DialixOptions", "Filter High"),  QT_TRANSLATE_NOOP("DialixOptions", "FH"))  \
    X( 6, FilterWidth,             setFuncDial6,    QT_TRANSLATE_NOOP("DialixOptions", "Filter Width"), QT_TRANSLATE_NOOP("DialixOptions", "FW"))  \
    X( 7, FilterShift,             setFuncDial7,    QT_TRANSLATE_NOOP("DialixOptions", "Filter Shift"), QT_TRANSLATE_NOOP("DialixOptions", "FS"))  \
    X( 8, Drive,                   setFuncDial8,    QT_TRANSLATE_NOOP("DialixOptions", "Drive"),        QT_TRANSLATE_NOOP("DialixOptions", "Drv")) \
    X( 9, If,                      setFuncDial9,    QT_TRANSLATE_NOOP("DialixOptions", "IF"),           QT_TRANSLATE_NOOP("DialixOptions", "IF"))  \
    X(10, RfGain,                  setFuncDial10,   QT_TRANSLATE_NOOP("DialixOptions", "RF Gain"),      QT_TRANSLATE_NOOP("DialixOptions", "RF"))  \
    X(11, CwSpeed,                 setFuncDial11,   QT_TRANSLATE_NOOP("DialixOptions", "CW Speed"),     QT_TRANSLATE_NOOP("DialixOptions", "CWS")) \
    X(12, RitOffset,               setFuncDial12,   QT_TRANSLATE_NOOP("DialixOptions", "RIT Offset"),   QT_TRANSLATE_NOOP("DialixOptions", "Rit")) \
    X(13, XitOffset,               setFuncDial13,   QT_TRANSLATE_NOOP("DialixOptions", "XIT Offset"),   QT_TRANSLATE_NOOP("DialixOptions", "Xit"))
// clang-format on

namespace dialix {

// Function ids by name: ButtonFunction::BandUp == 1, DialFunction::Volume == 1.
#define DIALIX_ENUMERATOR_(id, Name, ...) Name = id,
enum class ButtonFunction : int { Unused = 0, DIALIX_BUTTON_FUNCTIONS(DIALIX_ENUMERATOR_) };
enum class DialFunction : int { Unused = 0, DIALIX_DIAL_FUNCTIONS(DIALIX_ENUMERATOR_) };
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

// The key or dial does nothing; the first row of both tables.
#define DIALIX_UNUSED_LABEL_ DIALIX_LABEL(QT_TRANSLATE_NOOP("DialixOptions", "Unused"))
#define DIALIX_UNUSED_SHORT_LABEL_ DIALIX_LABEL(QT_TRANSLATE_NOOP("DialixOptions", "NO"))

#define DIALIX_BUTTON_ROW_(id, Name, slot, full, brief, menu, place)                               \
    ButtonFunctionInfo {id, #Name, DIALIX_LABEL(full), DIALIX_LABEL(brief), menu, place},
#define DIALIX_DIAL_ROW_(id, Name, slot, full, brief)                                              \
    DialFunctionInfo {id, #Name, DIALIX_LABEL(full), DIALIX_LABEL(brief)},
inline constexpr ButtonFunctionInfo buttonFunctions[] = {
    {0, "Unused", DIALIX_UNUSED_LABEL_, DIALIX_UNUSED_SHORT_LABEL_, SubMenu::Top, 0},
    DIALIX_BUTTON_FUNCTIONS(DIALIX_BUTTON_ROW_)};
inline constexpr DialFunctionInfo dialFunctions[] = {
    {0, "Unused", DIALIX_UNUSED_LABEL_, DIALIX_UNUSED_SHORT_LABEL_},
    DIALIX_DIAL_FUNCTIONS(DIALIX_DIAL_ROW_)};
#undef DIALIX_UNUSED_LABEL_
#undef DIALIX_UNUSED_SHORT_LABEL_
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
