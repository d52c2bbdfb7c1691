// The reference host's main window.

#include "hostwindow.h"

#include "command/qrvcommand.h"
#include "pluginhost.h"
#include "ui_hostwindow.h"

#include "interfaces/dialixabstract.h"

#include <QScrollBar>
#include <QTime>

HostWindow::HostWindow(PluginHost *host, bool virtualPanels, QWidget *parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::HostWindow>())
    , host(host)
{
    ui->setupUi(this);
    ui->pbPlug->setVisible(virtualPanels);
    ui->pbUnplug->setVisible(virtualPanels);

    RadioBackend *radio = host->radio();
    connect(radio, &RadioBackend::changed, this, [this](const QString &line) {
        log(tr("radio: %1").arg(line));
        refreshRadio();
    });
    connect(radio, &RadioBackend::moxChanged, this, [this](quint32 trx, bool state) {
        if (trx == 0) {
            const QSignalBlocker block(ui->chbMox);
            ui->chbMox->setChecked(state);
        }
    });
    connect(host, &PluginHost::commandReceived, this,
            [this](const QVariant &, const QString &text) { log(tr("command: %1").arg(text)); });
    connect(ui->chbMox, &QCheckBox::toggled, this, [radio](bool on) { radio->setMox(0, on); });
    connect(ui->chb4k, &QCheckBox::toggled, this, [radio](bool on) { radio->setDisplay4k(on); });
    connect(ui->sbChannels, QOverload<int>::of(&QSpinBox::valueChanged), this, [host](int n) {
        if (host->plugin())
            host->plugin()->setChannels(uint(n));
    });
    connect(ui->pbPlug, &QPushButton::clicked, this, &HostWindow::plugRequested);
    connect(ui->pbUnplug, &QPushButton::clicked, this, &HostWindow::unplugRequested);
    connect(ui->pbDeviceChanged, &QPushButton::clicked, this,
            [host] { host->commands()->deviceChanged(); });
    refreshRadio();
}

HostWindow::~HostWindow() = default;

QLayout *HostWindow::pluginLayout() const
{
    return ui->layoutPlugin;
}

void HostWindow::log(const QString &line)
{
    ui->teLog->appendPlainText(QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz  "))
                               + line);
    // The log follows its newest line, also after the window changed size.
    ui->teLog->verticalScrollBar()->setValue(ui->teLog->verticalScrollBar()->maximum());
}

void HostWindow::refreshRadio()
{
    ui->lbRadio->setText(host->radio()->describe());
}
