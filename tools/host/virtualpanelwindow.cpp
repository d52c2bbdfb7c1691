#include "virtualpanelwindow.h"

#include "panelwidgets.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
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

// Bit order of the panel's LED mask.
const std::array<LedSpec, 5> ledSpecs = {
    {{QT_TRANSLATE_NOOP("VirtualPanelWindow", "VFO B"), Qt::yellow},
     {QT_TRANSLATE_NOOP("VirtualPanelWindow", "RX2"), Qt::green},
     {QT_TRANSLATE_NOOP("VirtualPanelWindow", "TX"), Qt::red},
     {QT_TRANSLATE_NOOP("VirtualPanelWindow", "Dials"), Qt::cyan},
     {QT_TRANSLATE_NOOP("VirtualPanelWindow", "Keys"), Qt::cyan}}};

constexpr int KeysPerRow = 7;
constexpr int FunctionKeys = 14;

// A button that holds a contact closed while it is held down.
QPushButton *contact(const QString &text, QWidget *parent, std::function<void(bool)> set)
{
    auto *b = new QPushButton(text, parent);
    b->setMinimumSize(56, 36);
    QObject::connect(b, &QPushButton::pressed, parent, [set] { set(true); });
    QObject::connect(b, &QPushButton::released, parent, [set] { set(false); });
    return b;
}

} // namespace

LedRelay::LedRelay(QObject *parent)
    : QObject(parent)
{
    listener = VirtualPanel::addWriteListener([this](int panel, const QByteArray &report) {
        if (report.size() != 2)
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

    auto *top = new QVBoxLayout(this);

    auto *ledRow = new QHBoxLayout;
    for (const LedSpec &spec : ledSpecs) {
        auto *lamp = new LedLamp(tr(spec.caption), spec.color, this);
        leds << lamp;
        ledRow->addWidget(lamp);
    }
    ledRow->addStretch();
    top->addLayout(ledRow);

    auto *keys = new QGroupBox(tr("Keys"), this);
    auto *keyGrid = new QGridLayout(keys);
    for (int k = 1; k <= FunctionKeys; ++k) {
        QPushButton *b = contact(QString::number(k), this, [panel, k](bool down) {
            down ? VirtualPanel::pressKey(panel, k) : VirtualPanel::releaseKey(panel, k);
        });
        b->setObjectName(QStringLiteral("pbKey%1").arg(k));
        keyGrid->addWidget(b, (k - 1) / KeysPerRow, (k - 1) % KeysPerRow);
    }
    top->addWidget(keys);

    auto *dials = new QHBoxLayout;
    for (int j = 0; j < VirtualPanel::DialCount; ++j) {
        auto *knob =
            new DialKnob(j == 0 ? tr("VFO") : tr("Dial %1").arg(j), j == 0 ? 96 : 56, this);
        knob->setObjectName(QStringLiteral("dial%1").arg(j));
        connect(knob, &DialKnob::turned, this,
                [panel, j](int steps) { VirtualPanel::turnDial(panel, j, steps); });
        connect(knob, &DialKnob::pressed, this,
                [panel, j] { VirtualPanel::pushDial(panel, j, true); });
        connect(knob, &DialKnob::released, this,
                [panel, j] { VirtualPanel::pushDial(panel, j, false); });
        dials->addWidget(knob, 0, Qt::AlignBottom);
    }
    top->addLayout(dials);

    auto *contacts = new QHBoxLayout;
    QPushButton *ptt =
        contact(tr("PTT"), this, [panel](bool down) { VirtualPanel::setPtt(panel, down); });
    ptt->setObjectName(QStringLiteral("pbPtt"));
    QPushButton *dash =
        contact(tr("Dash"), this, [panel](bool down) { VirtualPanel::setDash(panel, down); });
    dash->setObjectName(QStringLiteral("pbDash"));
    QPushButton *dot =
        contact(tr("Dot"), this, [panel](bool down) { VirtualPanel::setDot(panel, down); });
    dot->setObjectName(QStringLiteral("pbDot"));
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

void VirtualPanelWindow::showMask(int mask)
{
    for (int bit = 0; bit < leds.size(); ++bit)
        leds[bit]->setOn(mask >= 0 && (mask & (1 << bit)));
}
