// The options page of one panel.

#include "plugins/panels/dialix/source/dialixoptions.h"

#include "ui_dialixoptions.h"

#include <QSignalMapper>
#include <QTimer>
#include <QTimerEvent>

namespace {
constexpr int DialReleaseTimers = 4;
constexpr int KeyButtons = 17;
} // namespace

DialixOptions::DialixOptions(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DialixOptions>())
{
    ui->setupUi(this);

    signalMapper = new QSignalMapper(this);
    for (int i = 0; i < DialReleaseTimers; ++i) {
        // Parentless by design: the page keeps them in `timers` and deletes them.
        auto *timer = new QTimer;
        timer->setSingleShot(true);
        timer->setInterval(DialReleaseMs);
        connect(timer, &QTimer::timeout, signalMapper, qOverload<>(&QSignalMapper::map));
        signalMapper->setMapping(timer, i);
        timers.append(timer);
    }
    connect(signalMapper, &QSignalMapper::mappedInt, this, &DialixOptions::unpressDial1);

    for (int n = 1; n <= KeyButtons; ++n)
        keyButtons.append(findChild<QPushButton *>(QStringLiteral("pbFunc%1").arg(n)));
    for (int j = 0; j < DialReleaseTimers; ++j)
        dialButtons.append(findChild<QPushButton *>(QStringLiteral("pbDial%1").arg(j)));
    clock.start();

    connect(ui->chbKeyLed, &QCheckBox::toggled, this, &DialixOptions::setLedKey);
    connect(ui->chbEncoderLed, &QCheckBox::toggled, this, &DialixOptions::setLedEncoder);
    connect(ui->chbEnable, &QCheckBox::toggled, this, &DialixOptions::enableToggled);
    connect(ui->chbVfoB, &QCheckBox::toggled, this, &DialixOptions::vfoBToggled);
    connect(ui->cbReceiver, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &DialixOptions::receiverChanged);
    connect(ui->cbPttTransfer, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &DialixOptions::pttTransferChanged);
    connect(ui->chbEnableComPort, &QCheckBox::toggled, this, &DialixOptions::portEnableToggled);
}

DialixOptions::~DialixOptions()
{
    qDeleteAll(timers);
    timers.clear();
}

void DialixOptions::unpressDial1(int value)
{
    if (value < 1 || value >= DialReleaseTimers)
        return;
    QTimer *timer = timers.at(value);
    const qint64 left = DialReleaseMs - (clock.elapsed() - dialMovedMs[value]);
    if (left > 0 && (dialsLit & 1u << value)) {
        // The dial moved again after the timer started.
        timer->start(int(left));
        return;
    }
    timer->stop();
    dialsLit &= ~(1u << value);
    lightsChanged();
}

void DialixOptions::lightKey(int n, bool on)
{
    if (n < 1 || n > KeyButtons)
        return;
    const quint32 bit = 1u << (n - 1);
    keysLit = on ? keysLit | bit : keysLit & ~bit;
    lightsChanged();
}

void DialixOptions::lightDial(int j)
{
    if (j < 1 || j >= DialReleaseTimers)
        return;
    dialsLit |= 1u << j;
    dialMovedMs[j] = clock.elapsed();
    // A running timer is not restarted for every movement: when it fires too
    // early, unpressDial1() sets it again for the time that is left.
    QTimer *timer = timers.at(j);
    if (!timer->isActive())
        timer->start(DialReleaseMs);
    lightsChanged();
}

bool DialixOptions::isKeyLit(int n) const
{
    return n >= 1 && n <= KeyButtons && (keysLit & 1u << (n - 1));
}

bool DialixOptions::isDialLit(int j) const
{
    return j >= 0 && j < DialReleaseTimers && (dialsLit & 1u << j);
}

// A hidden page paints nothing; showEvent() brings it up to date.
void DialixOptions::lightsChanged()
{
    if (isVisible() && !frame.isActive())
        frame.start(FrameMs, this);
}

void DialixOptions::showEvent(QShowEvent *event)
{
    paintLights();
    QWidget::showEvent(event);
}

void DialixOptions::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != frame.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    frame.stop();
    paintLights();
}

// A lit button is checkable and checked. An unlit one is not checkable, which
// unchecks it too; setChecked(false) would first search the whole panel
// picture for exclusive siblings.
void DialixOptions::paintLights()
{
    const auto paint = [](QPushButton *button, bool lit) {
        if (!button || button->isChecked() == lit)
            return;
        if (lit) {
            button->setCheckable(true);
            button->setChecked(true);
        } else {
            button->setCheckable(false);
            button->update();
        }
    };
    for (int i = 0; i < keyButtons.size(); ++i)
        paint(keyButtons.at(i), keysLit & 1u << i);
    for (int j = 0; j < dialButtons.size(); ++j)
        paint(dialButtons.at(j), dialsLit & 1u << j);
    QDial *dial = ui->dialFunc1;
    if (vfoSteps != 0)
        dial->setValue((vfoSteps + dial->value()) % dial->maximum());
    vfoSteps = 0;
}

int DialixOptions::step(Step which) const
{
    const QSpinBox *const boxes[] = {
        ui->sbVolumeStep,      ui->sbMicGainStep,   ui->sbSqlStep,
        ui->sbFilterHighStep,  ui->sbFilterLowStep, ui->sbFilterWidthStep,
        ui->sbFilterShiftStep, ui->sbDriveStep,     ui->sbRfGainStep};
    return boxes[int(which)]->value();
}

bool DialixOptions::isEnabledChecked() const
{
    return ui->chbEnable->isChecked();
}
bool DialixOptions::isKeyLedChecked() const
{
    return ui->chbKeyLed->isChecked();
}
bool DialixOptions::isEncoderLedChecked() const
{
    return ui->chbEncoderLed->isChecked();
}
bool DialixOptions::isUseIfChecked() const
{
    return ui->chbUseIf->isChecked();
}
void DialixOptions::setUseIfChecked(bool on)
{
    ui->chbUseIf->setChecked(on);
}
bool DialixOptions::isUseIfRitChecked() const
{
    return ui->chbUseIf_Rit->isChecked();
}
void DialixOptions::setUseIfRitChecked(bool on)
{
    ui->chbUseIf_Rit->setChecked(on);
}
bool DialixOptions::isVfoBChecked() const
{
    return ui->chbVfoB->isChecked();
}
void DialixOptions::setVfoBChecked(bool on)
{
    ui->chbVfoB->setChecked(on);
}

void DialixOptions::setReceiverNames(const QStringList &names)
{
    QComboBox *box = ui->cbReceiver;
    box->clear();
    for (const QString &name : names)
        box->addItem(name);
}
int DialixOptions::receiverCount() const
{
    return ui->cbReceiver->count();
}
int DialixOptions::receiver() const
{
    return ui->cbReceiver->currentIndex();
}
void DialixOptions::setReceiver(int index)
{
    ui->cbReceiver->setCurrentIndex(index);
}
void DialixOptions::refreshReceiverTexts()
{
    QComboBox *box = ui->cbReceiver;
    for (int i = 0; i < box->count(); ++i) {
        const QString text = box->itemText(i);
        box->setItemText(i, QStringLiteral("  "));
        box->setItemText(i, text);
    }
}

int DialixOptions::pttTransferMode() const
{
    return ui->cbPttTransfer->currentIndex();
}
void DialixOptions::setPttPortVisible(bool visible)
{
    ui->gpPttTransfer->setVisible(visible);
}
void DialixOptions::setDeviceListVisible(bool visible)
{
    ui->cbDevice->setVisible(visible);
}
void DialixOptions::setPortNames(const QStringList &names)
{
    ui->cbPortName->clear();
    ui->cbPortName->addItems(names);
}
QString DialixOptions::portName() const
{
    return ui->cbPortName->currentText();
}
bool DialixOptions::isPortEnabledChecked() const
{
    return ui->chbEnableComPort->isChecked();
}
void DialixOptions::setPortEnabledChecked(bool on)
{
    ui->chbEnableComPort->setChecked(on);
}
bool DialixOptions::isDtrChecked() const
{
    return ui->chbDTR->isChecked();
}
bool DialixOptions::isRtsChecked() const
{
    return ui->chbRTS->isChecked();
}

void DialixOptions::turnVfoDial(int steps)
{
    const int maximum = ui->dialFunc1->maximum();
    vfoSteps = maximum != 0 ? (vfoSteps + steps) % maximum : 0;
    lightsChanged();
}
