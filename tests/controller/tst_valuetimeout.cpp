// Tests of the VFO coalescing timer.

#include "plugins/panels/dialix/source/valuetimeout.h"

#include <QSignalSpy>
#include <QtTest>

// Values set without returning to the event loop all fall into one tick, so
// the coalescing cases need no timing assumptions; only the "nothing more is
// emitted" checks wait for a few ticks.
class TestValueTimeout : public QObject
{
    Q_OBJECT

private:
    static QVariantList emitted(const QSignalSpy &spy)
    {
        QVariantList out;
        for (const QList<QVariant> &args : spy)
            out << args.at(0);
        return out;
    }

private slots:
    void coalescesWithinOneTick_data()
    {
        // "|" (a string): wait until the value went out (or was dropped), and a few ticks more.
        QTest::addColumn<QVariantList>("input");
        QTest::addColumn<QVariantList>("expected");
        QTest::newRow("repeat dropped") << QVariantList {1, 1} << QVariantList {1};
        QTest::newRow("latest wins") << QVariantList {1, 2} << QVariantList {2};
        QTest::newRow("negative") << QVariantList {-1, -1} << QVariantList {-1};
        QTest::newRow("zero at rest is dropped") << QVariantList {0} << QVariantList {};
        QTest::newRow("back to zero is a change") << QVariantList {5, 0} << QVariantList {0};
        // After an emission the pending value is 0 again: a 0 is then dropped
        // and the same non-zero value as before counts as new.
        QTest::newRow("reset after emission")
            << QVariantList {1, "|", 0, "|", 1} << QVariantList {1, 1};
    }

    void coalescesWithinOneTick()
    {
        QFETCH(QVariantList, input);
        QFETCH(QVariantList, expected);

        ValueTimeout vt;
        QSignalSpy spy(&vt, &ValueTimeout::valueChanged);
        for (const QVariant &v : input + QVariantList {"|"}) {
            if (v.userType() != QMetaType::QString) {
                vt.setValue(v);
                continue;
            }
            QTRY_VERIFY_WITH_TIMEOUT(!vt.isPending(), 5000);
            QTest::qWait(60); // a few ticks
        }
        QCOMPARE(emitted(spy), expected);
        QCOMPARE(vt.pendingValue(), QVariant(0));
    }

    // Values streaming in after the timer rested: still one emission per tick
    // at most, however the first tick was lined up.
    void oneEmissionPerIntervalAfterRest()
    {
        ValueTimeout vt;
        QSignalSpy spy(&vt, &ValueTimeout::valueChanged);
        QTest::qWait(35); // the timer rests, half-way between two ticks
        QElapsedTimer clock;
        clock.start();
        for (int v = 1; clock.elapsed() < 100; ++v) {
            vt.setValue(v);
            QTest::qWait(1);
        }
        const qint64 streamed = clock.elapsed();
        QTRY_VERIFY_WITH_TIMEOUT(!vt.isPending(), 5000);
        QVERIFY(spy.count() >= 1);
        QVERIFY2(spy.count() <= streamed / 10 + 2, qPrintable(QString::number(spy.count())));
    }

    void timeoutIsClamped()
    {
        const uint rows[][2] = {{5, 10}, {11, 11}, {1000, 1000}, {5000, 1000}};
        for (const auto &[requested, expected] : rows) {
            ValueTimeout vt;
            vt.setTimeout(requested);
            QCOMPARE(vt.interval(), expected);
        }
    }
};

QTEST_GUILESS_MAIN(TestValueTimeout)
#include "tst_valuetimeout.moc"
