// The Hamlib radio against Hamlib's own rigctld with its dummy radio (model 1),
// started on a free loopback port by the test.

#include "command/commandtable.h"
#include "tools/host/hamlibradio.h"
#include "tools/host/rigctldprocess.h"
#include "tools/host/rigmap.h"

#include <QSignalSpy>
#include <QStandardPaths>
#include <QtTest>

#include <cstring>

namespace {

// A second client of the same rigctld, as another program would be.
class OtherProgram
{
public:
    explicit OtherProgram(quint16 port) { link.open(QStringLiteral("127.0.0.1"), port); }

    // The value lines of one command, once rigctld answered.
    QString ask(const QByteArray &command)
    {
        QString answer = QStringLiteral("(no answer)");
        QObject::connect(&link, &RigctlConnection::replied, &link,
                         [&](const QByteArray &, const QStringList &values, int code) {
                             answer = code == 0 ? values.join(QLatin1Char(' '))
                                                : QStringLiteral("RPRT %1").arg(code);
                         });
        if (!QTest::qWaitFor([&] { return link.isReady(); }, 5000) || !link.send(command))
            return answer;
        if (!QTest::qWaitFor([&] { return !link.isBusy(); }, 5000))
            answer = QStringLiteral("(timed out)");
        link.disconnect(&link);
        return answer;
    }

private:
    RigctlConnection link;
};

// The panel command of a row with receiver 0, channel 0 and 3 steps, or an
// empty list for a device-manager operation.
QVariantList messageFor(const char *name)
{
    for (const qrv::Method &e : qrv::encoders) {
        if (std::strcmp(e.name, name) != 0)
            continue;
        QVariantList message {e.id};
        for (int a = 0; a < e.argc; ++a)
            message << (std::strcmp(e.params[a].name, "step") == 0 ? QVariant(3) : QVariant(0u));
        return message;
    }
    return {};
}

// The get that shows what a row changed, or "" where nothing can be read back.
QByteArray readBack(const rig::Mapping &m)
{
    using A = rig::Action;
    switch (m.action) {
    case A::Tune:
    case A::BandUp:
    case A::BandDown:
        return "f";
    case A::ModeUp:
    case A::ModeDown:
    case A::Passband:
        return "m";
    case A::Level:
    case A::LevelIndex:
        return QByteArray("l ") + m.arg;
    case A::Toggle:
        return QByteArray("u ") + m.arg;
    case A::Offset:
    case A::OffsetReset:
        return m.hamlib[0] == 'J' ? "j" : "z";
    case A::Split:
        return "s";
    case A::SubRx:
        return "v";
    case A::Ptt:
        return "t";
    default:
        return "";
    }
}

} // namespace

class tst_Rigctld : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void everyPanelCommandOfTheTableReachesTheRadio();
    void transmitKeyedByAnotherProgramLightsTheLed();
    void fastSpinEndsExactly();
    void hostOperations();

private:
    std::unique_ptr<RigctldProcess> rigctld;
    std::unique_ptr<HamlibRadio> radio;
};

void tst_Rigctld::init()
{
    if (QStandardPaths::findExecutable(QStringLiteral("rigctld")).isEmpty())
        QSKIP("rigctld is not installed (scripts/setup-deps.sh installs libhamlib-utils); the "
              "fake rigctld of tst_hamlibradio still covers the client");
    radio.reset();
    rigctld = std::make_unique<RigctldProcess>();
    QVERIFY2(rigctld->start({}), qPrintable(rigctld->errorString()));
    radio = std::make_unique<HamlibRadio>();
    radio->open(QStringLiteral("127.0.0.1"), rigctld->port());
    QTRY_VERIFY_WITH_TIMEOUT(radio->isConnected() && radio->frequency(0) > 0, 10000);
}

void tst_Rigctld::everyPanelCommandOfTheTableReachesTheRadio()
{
    OtherProgram other(rigctld->port());
    QSignalSpy said(radio.get(), &HamlibRadio::changed);
    const rig::Mapping *rows = rig::table();
    for (std::size_t i = 0; i < rig::tableSize(); ++i) {
        const rig::Mapping &m = rows[i];
        const QVariantList message = messageFor(m.name);
        if (message.isEmpty())
            continue; // a device-manager operation: hostOperations()
        const QByteArray get = readBack(m);
        const QString before = get.isEmpty() ? QString() : other.ask(get);
        said.clear();
        radio->panelCommand(message);
        QTRY_VERIFY(radio->idle());
        const QString what =
            QStringLiteral("%1 (%2)").arg(QString::fromLatin1(m.name), rig::hamlibText(m));
        for (const QList<QVariant> &line : said)
            QVERIFY2(!line.at(0).toString().contains(QLatin1String("does not support")),
                     qPrintable(what + QLatin1String(": ") + line.at(0).toString()));
        if (m.action == rig::Action::NotPassed)
            QVERIFY2(said.count() == 1, qPrintable(what));
        else if (!get.isEmpty())
            QVERIFY2(other.ask(get) != before,
                     qPrintable(what + QLatin1String(" still ") + before));
    }
    radio->shutDown();
}

void tst_Rigctld::transmitKeyedByAnotherProgramLightsTheLed()
{
    OtherProgram other(rigctld->port());
    QSignalSpy tx(radio.get(), &HamlibRadio::moxChanged);
    QCOMPARE(other.ask("T 1"), QString());
    QTRY_COMPARE(tx.count(), 1);
    QCOMPARE(tx.at(0), (QVariantList {0u, true}));
    QVERIFY(radio->mox(0));
    QCOMPARE(other.ask("T 0"), QString());
    QTRY_COMPARE(tx.count(), 2);
    QVERIFY(!radio->mox(0));
}

void tst_Rigctld::fastSpinEndsExactly()
{
    OtherProgram other(rigctld->port());
    const double start = radio->frequency(0);
    for (int i = 0; i < 200; ++i) {
        radio->panelCommand({int(qrv::Id::panelVFO), 0u, 0u, (i % 3) ? 2 : -1});
        QTest::qWait(3);
    }
    QTRY_VERIFY(radio->idle());
    const qint64 expected = qint64(start) + 10 * (133 * 2 - 67);
    QCOMPARE(other.ask("f").toLongLong(), expected);
    QCOMPARE(qint64(radio->frequency(0)), expected);
}

void tst_Rigctld::hostOperations()
{
    OtherProgram other(rigctld->port());
    radio->setMainVolume(-30.0);
    radio->setLock(0, true);
    radio->setMox(0, true);
    QTRY_VERIFY(radio->idle());
    QCOMPARE(other.ask("l AF").toDouble(), 0.5);
    QCOMPARE(other.ask("u LOCK"), QStringLiteral("1"));
    QCOMPARE(other.ask("t"), QStringLiteral("1"));
    QTRY_VERIFY(radio->lock(0) && radio->mox(0));
    QCOMPARE(radio->mainVolume(), -30.0);
    // The host un-keys what it keyed when it goes.
    radio->shutDown();
    QCOMPARE(other.ask("t"), QStringLiteral("0"));
}

QTEST_GUILESS_MAIN(tst_Rigctld)
#include "tst_rigctld.moc"
