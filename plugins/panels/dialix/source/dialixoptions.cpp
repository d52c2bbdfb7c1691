// The options page of one panel.

#include "plugins/panels/dialix/source/dialixoptions.h"

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
