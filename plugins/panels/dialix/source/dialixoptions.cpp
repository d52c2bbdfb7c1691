// The options page of one panel.

#include "plugins/panels/dialix/source/dialixoptions.h"

#include "ui_dialixoptions.h"

#include <QSignalMapper>
#include <QTimer>

namespace {
constexpr int DialReleaseTimers = 4;
constexpr int DialReleaseMs = 50;
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
    QPushButton *button = nullptr;
    switch (value) {
    case 1:
        button = ui->pbDial1;
        break;
    case 2:
        button = ui->pbDial2;
        break;
    case 3:
        button = ui->pbDial3;
        break;
    default:
        return;
    }
    button->setChecked(false);
    button->setCheckable(false);
    if (timers.at(value)->isActive())
        timers.at(value)->stop();
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
    QDial *dial = ui->dialFunc1;
    if (dial->maximum() != 0)
        dial->setValue((steps + dial->value()) % dial->maximum());
}
