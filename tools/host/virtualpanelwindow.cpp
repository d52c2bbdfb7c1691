// The virtual panel window, playable with the mouse and the keyboard.

#include "virtualpanelwindow.h"

#include "panelwidgets.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QKeySequence>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>
#include <functional>

namespace {

struct LedSpec
{
    const char *caption;
    QColor color;
};

// Bit order of the panel's LED mask (dialix::protocol::Led).
const std::array<LedSpec, dialix::protocol::LedCount> ledSpecs = {
    {{QT_TRANSLATE_NOOP("VirtualPanelWindow", "VFO B"), Qt::yellow},
     {QT_TRANSLATE_NOOP("VirtualPanelWindow", "RX2"), Qt::green},
     {QT_TRANSLATE_NOOP("VirtualPanelWindow", "TX"), Qt::red},
     {QT_TRANSLATE_NOOP("VirtualPanelWindow", "Dials"), Qt::cyan},
     {QT_TRANSLATE_NOOP("VirtualPanelWindow", "Keys"), Qt::cyan}}};

constexpr int FunctionKeys = 14;
constexpr int KeysPerRow = 5;

// What a keyboard key plays.
enum class Control { Key, Turn, Push, Ptt, Dash, Dot };

struct Binding
{
    int key; // Qt::Key
    Control control;
    int index; // key 1 to 14, or dial 0 (VFO) to 3
    int steps; // Turn: steps per key press (repeats while held)
};

// The keyboard in the panel's shape (on a US layout): 1 to 5 and Q to T are the
// two rows of keys, A and Z, G and B the keys either side of the VFO dial, the
// arrows the VFO dial, F1 to F9 the three small dials above, each as turn left,
// push, turn right; Space is PTT, "-" the dash and "." the dot contact.
const Binding bindings[] = {
    {Qt::Key_1, Control::Key, 1, 0},      {Qt::Key_2, Control::Key, 2, 0},
    {Qt::Key_3, Control::Key, 3, 0},      {Qt::Key_4, Control::Key, 4, 0},
    {Qt::Key_5, Control::Key, 5, 0},      {Qt::Key_Q, Control::Key, 6, 0},
    {Qt::Key_W, Control::Key, 7, 0},      {Qt::Key_E, Control::Key, 8, 0},
    {Qt::Key_R, Control::Key, 9, 0},      {Qt::Key_T, Control::Key, 10, 0},
    {Qt::Key_A, Control::Key, 11, 0},     {Qt::Key_G, Control::Key, 12, 0},
    {Qt::Key_Z, Control::Key, 13, 0},     {Qt::Key_B, Control::Key, 14, 0},
    {Qt::Key_Left, Control::Turn, 0, -1}, {Qt::Key_Right, Control::Turn, 0, 1},
    {Qt::Key_Down, Control::Push, 0, 0},  {Qt::Key_F1, Control::Turn, 1, -1},
    {Qt::Key_F2, Control::Push, 1, 0},    {Qt::Key_F3, Control::Turn, 1, 1},
    {Qt::Key_F4, Control::Turn, 2, -1},   {Qt::Key_F5, Control::Push, 2, 0},
    {Qt::Key_F6, Control::Turn, 2, 1},    {Qt::Key_F7, Control::Turn, 3, -1},
    {Qt::Key_F8, Control::Push, 3, 0},    {Qt::Key_F9, Control::Turn, 3, 1},
    {Qt::Key_Space, Control::Ptt, 0, 0},  {Qt::Key_Minus, Control::Dash, 0, 0},
    {Qt::Key_Period, Control::Dot, 0, 0},
};

const Binding *bindingOf(int key)
{
    for (const Binding &b : bindings) {
        if (b.key == key)
            return &b;
    }
    return nullptr;
}

// The name of the keyboard key that plays a control ("F2", "Space").
QString keyFor(Control control, int index, int steps = 0)
{
    for (const Binding &b : bindings) {
        if (b.control == control && b.index == index && b.steps == steps)
            return QKeySequence(b.key).toString(QKeySequence::NativeText);
    }
    return {};
}

// A button that holds a contact closed while it is held down.
QPushButton *contact(const QString &text, QWidget *parent, std::function<void(bool)> set)
{
    auto *b = new QPushButton(text, parent);
    b->setMinimumSize(52, 34);
    // The window takes every key; a focused button would eat Space.
    b->setFocusPolicy(Qt::NoFocus);
    QObject::connect(b, &QPushButton::pressed, parent, [set] { set(true); });
    QObject::connect(b, &QPushButton::released, parent, [set] { set(false); });
    return b;
}

} // namespace

LedRelay::LedRelay(QObject *parent)
    : QObject(parent)
{
    listener = VirtualPanel::addWriteListener([this](int panel, const QByteArray &report) {
        if (report.size() != dialix::protocol::LedReportSize)
            return;
        const int mask = quint8(report.at(1));
        QMetaObject::invokeMethod(
            this, [this, panel, mask] { onReport(panel, mask); }, Qt::QueuedConnection);
    });
}

LedRelay::~LedRelay()
{
    VirtualPanel::removeWriteListener(listener);
}

void LedRelay::onReport(int panel, int mask)
{
    const int previous = masks.value(panel, -1);
    masks.insert(panel, mask);
    if (previous != mask)
        emit ledChanged(panel, previous, mask);
}

QString LedRelay::describe(int mask)
{
    QStringList lit;
    for (size_t bit = 0; bit < ledSpecs.size(); ++bit) {
        if (mask >= 0 && (mask & (1 << bit)))
            lit << VirtualPanelWindow::tr(ledSpecs[bit].caption);
    }
    return lit.isEmpty() ? VirtualPanelWindow::tr("all off") : lit.join(QLatin1Char(' '));
}

VirtualPanelWindow::VirtualPanelWindow(int panel, LedRelay *relay, QWidget *parent)
    : QWidget(parent)
    , panelId(panel)
{
    setObjectName(QStringLiteral("VirtualPanelWindow%1").arg(panel));
    setWindowTitle(tr("Virtual Dialix %1").arg(QString::fromLatin1(VirtualPanel::path(panel))));
    setFocusPolicy(Qt::StrongFocus);

    auto *top = new QVBoxLayout(this);

    auto *ledRow = new QHBoxLayout;
    for (const LedSpec &spec : ledSpecs) {
        auto *lamp = new LedLamp(tr(spec.caption), spec.color, this);
        leds << lamp;
        ledRow->addWidget(lamp);
    }
    ledRow->addStretch();
    top->addLayout(ledRow);

    // The panel's face: small dials on top, two rows of five keys, then keys 11
    // and 13 left and 12 and 14 right of the VFO dial.
    auto *face = new QGridLayout;
    face->setSpacing(8);
    for (int j = 0; j < dialix::protocol::DialCount; ++j) {
        auto *knob =
            new DialKnob(j == 0 ? tr("VFO") : tr("Dial %1").arg(j), j == 0 ? 100 : 46, this);
        knob->setObjectName(QStringLiteral("dial%1").arg(j));
        knob->setToolTip(tr("Wheel or drag to turn, click to push.\n"
                            "Keyboard: %1 turns left, %2 turns right, hold %3 to push.")
                             .arg(keyFor(Control::Turn, j, -1), keyFor(Control::Turn, j, 1),
                                  keyFor(Control::Push, j)));
        connect(knob, &DialKnob::turned, this,
                [panel, j](int steps) { VirtualPanel::turnDial(panel, j, steps); });
        connect(knob, &DialKnob::pressed, this,
                [panel, j] { VirtualPanel::pushDial(panel, j, true); });
        connect(knob, &DialKnob::released, this,
                [panel, j] { VirtualPanel::pushDial(panel, j, false); });
        dials << knob;
        if (j == 0)
            face->addWidget(knob, 3, 1, 2, 3, Qt::AlignCenter);
        else
            face->addWidget(knob, 0, j, Qt::AlignCenter);
    }
    for (int k = 1; k <= FunctionKeys; ++k) {
        QPushButton *b = contact(QString::number(k), this, [panel, k](bool down) {
            down ? VirtualPanel::pressKey(panel, k) : VirtualPanel::releaseKey(panel, k);
        });
        b->setObjectName(QStringLiteral("pbKey%1").arg(k));
        b->setToolTip(
            tr("Key %1: hold with the mouse or the %2 key").arg(k).arg(keyFor(Control::Key, k)));
        keys << b;
        if (k <= 2 * KeysPerRow) {
            face->addWidget(b, 1 + (k - 1) / KeysPerRow, (k - 1) % KeysPerRow);
        } else {
            const int side = (k - 11) % 2; // 11, 13 left; 12, 14 right
            face->addWidget(b, 3 + (k - 11) / 2, side * (KeysPerRow - 1));
        }
    }
    top->addLayout(face);
    top->addSpacing(6);

    auto *contacts = new QHBoxLayout;
    ptt = contact(tr("PTT"), this, [panel](bool down) { VirtualPanel::setPtt(panel, down); });
    ptt->setObjectName(QStringLiteral("pbPtt"));
    ptt->setToolTip(tr("PTT: hold with the mouse or the %1 key").arg(keyFor(Control::Ptt, 0)));
    dash = contact(tr("Dash"), this, [panel](bool down) { VirtualPanel::setDash(panel, down); });
    dash->setObjectName(QStringLiteral("pbDash"));
    dash->setToolTip(
        tr("Paddle, dash: hold with the mouse or the %1 key").arg(keyFor(Control::Dash, 0)));
    dot = contact(tr("Dot"), this, [panel](bool down) { VirtualPanel::setDot(panel, down); });
    dot->setObjectName(QStringLiteral("pbDot"));
    dot->setToolTip(
        tr("Paddle, dot: hold with the mouse or the %1 key").arg(keyFor(Control::Dot, 0)));
    contacts->addWidget(ptt);
    contacts->addStretch();
    contacts->addWidget(dash);
    contacts->addWidget(dot);
    top->addLayout(contacts);

    showMask(relay->mask(panel));
    connect(relay, &LedRelay::ledChanged, this, [this](int p, int, int mask) {
        if (p == panelId)
            showMask(mask);
    });
}

VirtualPanelWindow::~VirtualPanelWindow()
{
    releaseHeld();
}

void VirtualPanelWindow::showMask(int mask)
{
    for (int bit = 0; bit < leds.size(); ++bit)
        leds[bit]->setOn(mask >= 0 && (mask & (1 << bit)));
}

void VirtualPanelWindow::keyPressEvent(QKeyEvent *event)
{
    if (!play(event->key(), true, event->isAutoRepeat()))
        QWidget::keyPressEvent(event);
}

void VirtualPanelWindow::keyReleaseEvent(QKeyEvent *event)
{
    if (!play(event->key(), false, event->isAutoRepeat()))
        QWidget::keyReleaseEvent(event);
}

void VirtualPanelWindow::changeEvent(QEvent *event)
{
    // A window that loses the keyboard never sees the keys let go: open every
    // contact held from it (a PTT must not stay keyed).
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        releaseHeld();
    QWidget::changeEvent(event);
}

bool VirtualPanelWindow::play(int key, bool down, bool autoRepeat)
{
    const Binding *b = bindingOf(key);
    if (!b)
        return false;
    if (b->control == Control::Turn) {
        // Held, the key turns on at the keyboard's repeat rate.
        if (down)
            dials[b->index]->turnBy(b->steps);
        return true;
    }
    // The repeats of a held key change nothing: the contact is closed already.
    if (autoRepeat || down == held.contains(key))
        return true;
    if (down)
        held.insert(key);
    else
        held.remove(key);

    switch (b->control) {
    case Control::Key:
        keys[b->index - 1]->setDown(down);
        down ? VirtualPanel::pressKey(panelId, b->index)
             : VirtualPanel::releaseKey(panelId, b->index);
        break;
    case Control::Push:
        dials[b->index]->setPushed(down);
        break;
    case Control::Ptt:
        ptt->setDown(down);
        VirtualPanel::setPtt(panelId, down);
        break;
    case Control::Dash:
        dash->setDown(down);
        VirtualPanel::setDash(panelId, down);
        break;
    case Control::Dot:
        dot->setDown(down);
        VirtualPanel::setDot(panelId, down);
        break;
    case Control::Turn:
        break;
    }
    return true;
}

void VirtualPanelWindow::releaseHeld()
{
    const QList<int> keysDown = held.values();
    for (int key : keysDown)
        play(key, false, false);
}
