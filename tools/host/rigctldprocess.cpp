// The rigctld that the host runs for the operator's radio.

#include "rigctldprocess.h"

#include <QHostAddress>
#include <QTcpServer>

RigctldProcess::RigctldProcess(QObject *parent)
    : QObject(parent)
{
    process.setProcessChannelMode(QProcess::MergedChannels);
    connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this](int code, QProcess::ExitStatus) {
                if (!stopping)
                    emit ended(tr("rigctld ended (status %1): %2")
                                   .arg(code)
                                   .arg(QString::fromLocal8Bit(process.readAll()).trimmed()));
            });
}

RigctldProcess::~RigctldProcess()
{
    stop();
}

quint16 RigctldProcess::freePort()
{
    QTcpServer probe;
    if (!probe.listen(QHostAddress::LocalHost, 0))
        return 0;
    return probe.serverPort();
}

bool RigctldProcess::start(const Radio &radio, const QString &program)
{
    listenPort = freePort();
    if (listenPort == 0) {
        error = tr("no free port on 127.0.0.1");
        return false;
    }
    QStringList args {QStringLiteral("-m"), QString::number(radio.model),
                      QStringLiteral("-T"), QStringLiteral("127.0.0.1"),
                      QStringLiteral("-t"), QString::number(listenPort)};
    if (!radio.device.isEmpty())
        args << QStringLiteral("-r") << radio.device;
    if (radio.speed > 0)
        args << QStringLiteral("-s") << QString::number(radio.speed);
    // The dummy radio keys only with PTT through its own commands.
    if (radio.model == 1)
        args << QStringLiteral("-P") << QStringLiteral("RIG");
    stopping = false;
    process.start(program, args);
    if (!process.waitForStarted(5000)) {
        error = tr("cannot start %1: %2").arg(program, process.errorString());
        return false;
    }
    return true;
}

void RigctldProcess::stop()
{
    if (process.state() == QProcess::NotRunning)
        return;
    stopping = true;
    process.terminate();
    if (!process.waitForFinished(2000)) {
        process.kill();
        process.waitForFinished(1000);
    }
}
