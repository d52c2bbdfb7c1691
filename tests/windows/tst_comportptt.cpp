// Windows: PTT to a COM port, through Qt Serial Port and Windows' COM-port
// calls. Runs under comport-pty.sh, which maps COM5 to a pseudo-terminal and
// keeps its emulated line state in DIALIX_PTYLINES_SHARED.

#include "tests/controller/recorders.h"

#include <QApplication>
#include <QDir>
#include <QSerialPortInfo>
#include <QtTest>

namespace {

constexpr int Dtr = 0x002; // the pty emulation's bits (TIOCM_DTR, TIOCM_RTS)
constexpr int Rts = 0x004;

// DTR and RTS of COM5's pty now: the last change the emulation logged.
int lines()
{
    const QString dir = qEnvironmentVariable("DIALIX_PTYLINES_SHARED");
    QFile log(QStringLiteral("Z:") + dir + QStringLiteral("/log"));
    if (!log.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> last = log.readAll().trimmed().split('\n').last().split(' ');
    return last.size() == 4 ? last[3].toInt(nullptr, 16) & (Dtr | Rts) : -1;
}

} // namespace

class tst_ComPortPtt : public QObject
{
    Q_OBJECT

private slots:
    void onlyThePtyIsListed()
    {
        QStringList names;
        for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts())
            names << info.portName();
        QCOMPARE(names, QStringList {"COM5"});
    }
    void linesFollowPtt_data();
    void linesFollowPtt();
};

void tst_ComPortPtt::linesFollowPtt_data()
{
    QTest::addColumn<bool>("dtr");
    QTest::addColumn<bool>("rts");
    QTest::newRow("DTR") << true << false;
    QTest::newRow("RTS") << false << true;
    QTest::newRow("both") << true << true;
    QTest::newRow("neither") << false << false;
}

// Each row opens the port again: the one before closed it.
void tst_ComPortPtt::linesFollowPtt()
{
    QFETCH(bool, dtr);
    QFETCH(bool, rts);
    Rig rig;
    Ui::DialixOptions *ui = rig.ui();
    ui->cbPttTransfer->setCurrentIndex(2);
    ui->cbPortName->addItem(QStringLiteral("COM5"));
    ui->cbPortName->setCurrentText(QStringLiteral("COM5"));
    ui->chbDTR->setChecked(dtr);
    ui->chbRTS->setChecked(rts);
    ui->chbEnableComPort->setChecked(true);
    QVERIFY(ui->chbEnableComPort->isChecked());
    QCOMPARE(lines(), 0);

    rig.event(&Dialix::ptt, true);
    QCOMPARE(lines(), (dtr ? Dtr : 0) | (rts ? Rts : 0));
    rig.event(&Dialix::ptt, false);
    QCOMPARE(lines(), 0);
    ui->chbEnableComPort->setChecked(false);
    QCOMPARE(lines(), 0);
}

int main(int argc, char *argv[])
{
    // Started by Wine directly, without the variables wine-run.sh hands over.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QPA_FONTDIR", "Z:\\usr\\share\\fonts\\truetype\\dejavu");
    QApplication app(argc, argv);
    tst_ComPortPtt test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_comportptt.moc"
