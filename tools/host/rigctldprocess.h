#pragma once

// RigctldProcess, a rigctld that the host starts and stops itself.

#include <QObject>
#include <QProcess>
#include <QStringList>

// Hamlib's rigctld started for one radio on a free port of the loopback
// interface, and stopped again when this object goes. Starting does not
// wait for rigctld to listen: the client's reconnect covers the moment.
class RigctldProcess : public QObject
{
    Q_OBJECT

public:
    struct Radio
    {
        int model = 1; // Hamlib's model number; 1 is the dummy radio
        QString device; // serial port or network address of the radio
        int speed = 0; // serial speed, 0 for the model's default
    };

    explicit RigctldProcess(QObject *parent = nullptr);
    ~RigctldProcess() override;

    // Starts rigctld; false with errorString() when it cannot be started.
    bool start(const Radio &radio, const QString &program = QStringLiteral("rigctld"));
    void stop();
    quint16 port() const { return listenPort; }
    QStringList arguments() const { return process.arguments(); }
    QString errorString() const { return error; }

    // A port of 127.0.0.1 that nobody listens on right now, or 0.
    static quint16 freePort();

signals:
    // rigctld ended by itself, with its last words.
    void ended(const QString &why);

private:
    QProcess process;
    quint16 listenPort = 0;
    QString error;
    bool stopping = false;
};
