// Tests of the options page: ranges, couplings and signals of its controls.

#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/dialixtranslation.h"
#include "tests/support/dialixtestaccess.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

static QList<QPushButton *> panelButtons(const DialixOptions &page)
{
    QList<QPushButton *> buttons;
    for (int n = 1; n <= 17; ++n)
        buttons << page.findChild<QPushButton *>(QStringLiteral("pbFunc%1").arg(n));
    for (int n = 0; n <= 3; ++n)
        buttons << page.findChild<QPushButton *>(QStringLiteral("pbDial%1").arg(n));
    return buttons;
}

class TestDialixOptions : public QObject
{
    Q_OBJECT
private slots:
    void freshPage()
    {
        DialixOptions page;
        const auto buttons = panelButtons(page);
        QCOMPARE(buttons.size(), 21);
        for (QPushButton *button : buttons) {
            QVERIFY(button);
            QCOMPARE(button->text(), QStringLiteral("NO"));
            QVERIFY2(!button->isCheckable(), qPrintable(button->objectName()));
        }
        QCOMPARE(DialixTestAccess::ui(page)->cbPttTransfer->currentIndex(), 0);
        QCOMPARE(DialixTestAccess::ui(page)->cbPttTransfer->currentText(),
                 QStringLiteral("No transfer PTT"));
        QCOMPARE(DialixTestAccess::ui(page)->cbPttTransfer->count(), 3);
        QCOMPARE(DialixTestAccess::ui(page)->cbDevice->currentIndex(), -1);
        QCOMPARE(DialixTestAccess::ui(page)->cbReceiver->currentIndex(), -1);
        QCOMPARE(page.size(), QSize(860, 373));
        QCOMPARE(page.windowTitle(), QStringLiteral("Form"));

        QDial *dial = DialixTestAccess::ui(page)->dialFunc1;
        QCOMPARE(dial->minimum(), 0);
        QCOMPARE(dial->maximum(), 255);
        QVERIFY(dial->wrapping());
        QVERIFY(dial->notchesVisible());
        QCOMPARE(page.timers.size(), 4);
    }

    void stepBoxes_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("minimum");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<int>("value");

        QTest::newRow("volume") << "sbVolumeStep" << 1 << 10 << 1;
        QTest::newRow("mic gain") << "sbMicGainStep" << 1 << 10 << 1;
        QTest::newRow("sql") << "sbSqlStep" << 1 << 20 << 1;
        QTest::newRow("filter high") << "sbFilterHighStep" << 1 << 1000 << 50;
        QTest::newRow("filter low") << "sbFilterLowStep" << 1 << 1000 << 50;
        QTest::newRow("filter width") << "sbFilterWidthStep" << 1 << 1000 << 50;
        QTest::newRow("filter shift") << "sbFilterShiftStep" << 1 << 1000 << 50;
        QTest::newRow("drive") << "sbDriveStep" << 1 << 5 << 1;
        QTest::newRow("rf gain") << "sbRfGainStep" << 1 << 20 << 1;
    }

    void stepBoxes()
    {
        QFETCH(QString, name);
        QFETCH(int, minimum);
        QFETCH(int, maximum);
        QFETCH(int, value);

        DialixOptions page;
        auto *box = page.findChild<QSpinBox *>(name);
        QVERIFY(box);
        QCOMPARE(box->minimum(), minimum);
        QCOMPARE(box->maximum(), maximum);
        QCOMPARE(box->value(), value);
    }

    // "Enable" locks the device choice, the port's "Enable" the port's controls.
    void enableCouplings()
    {
        DialixOptions page;
        const QList<QPair<QCheckBox *, QList<QWidget *>>> couplings = {
            {DialixTestAccess::ui(page)->chbEnable, {DialixTestAccess::ui(page)->cbDevice}},
            {DialixTestAccess::ui(page)->chbEnableComPort,
             {DialixTestAccess::ui(page)->cbPortName, DialixTestAccess::ui(page)->chbDTR,
              DialixTestAccess::ui(page)->chbRTS}},
        };
        for (const auto &[box, locked] : couplings) {
            for (bool on : {false, true, false}) {
                box->setChecked(on);
                for (QWidget *w : locked)
                    QVERIFY2(w->isEnabled() == !on, qPrintable(w->objectName()));
            }
        }
    }

    // Each LED box drives its own signal, with the box's state.
    void ledSignals()
    {
        for (bool encoder : {false, true}) {
            DialixOptions page;
            QSignalSpy keySpy(&page, &DialixOptions::setLedKey);
            QSignalSpy encoderSpy(&page, &DialixOptions::setLedEncoder);
            QCheckBox *box = encoder ? DialixTestAccess::ui(page)->chbEncoderLed
                                     : DialixTestAccess::ui(page)->chbKeyLed;
            box->setChecked(true);
            box->setChecked(false);
            const QSignalSpy &hit = encoder ? encoderSpy : keySpy;
            QCOMPARE(QList<QVariantList>(hit), (QList<QVariantList> {{true}, {false}}));
            QCOMPARE((encoder ? keySpy : encoderSpy).count(), 0);
        }
    }

    // The page paints the lights of held keys and turning dials itself:
    // nothing while hidden, all of them the moment it is shown, then at most
    // once per frame. A dial's button goes out 50 ms after its last movement;
    // unpressDial1() ignores numbers other than 1 to 3.
    void lights()
    {
        DialixOptions page;
        const auto buttons = panelButtons(page); // keys 1..17, then dials 0..3
        const auto shown = [&buttons](int i) {
            return buttons.at(i)->isChecked();
        };

        page.lightKey(3, true);
        page.lightKey(18, true);
        page.lightDial(2);
        page.lightDial(0);
        QVERIFY(page.isKeyLit(3) && !page.isKeyLit(18) && page.isDialLit(2) && !page.isDialLit(0));
        QVERIFY(!shown(2) && !shown(17 + 2));

        page.show();
        QVERIFY(shown(2) && shown(17 + 2));
        QElapsedTimer clock;
        clock.start();
        page.lightKey(3, false);
        page.lightKey(5, true);
        page.lightKey(5, false);
        page.lightKey(5, true);
        QVERIFY(shown(2) && !shown(4)); // until the next frame
        QTRY_VERIFY_WITH_TIMEOUT(!shown(2) && shown(4), 1000);
        QVERIFY(clock.elapsed() >= DialixOptions::FrameMs - 1);
        QVERIFY(shown(4) && page.isKeyLit(5)); // a held key stays lit

        clock.restart();
        page.lightDial(1);
        for (int value : {0, 4, 1}) // 1 moved just now: stays lit
            page.unpressDial1(value);
        QVERIFY(page.isDialLit(1));
        QTest::qWait(35);
        page.lightDial(1);
        const qint64 moved = clock.elapsed();
        QTest::qWait(30); // past 50 ms after the first movement
        if (clock.elapsed() - moved < 45) // unless the wait overran on a busy machine
            QVERIFY(page.isDialLit(1) && shown(17 + 1));
        QTRY_VERIFY_WITH_TIMEOUT(!page.isDialLit(1) && !shown(17 + 1), 5000);
        QVERIFY(!buttons.at(17 + 1)->isCheckable());
        QVERIFY(!page.timers.at(1)->isActive());
    }

    void translations_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<bool>("found");
        QTest::addColumn<QStringList>("texts"); // "Enable", PTT mode 0, pbFunc1, volume, dial tip

        const QStringList english = {"Enable", "No transfer PTT", "NO",
                                     "Volume:", "Rotate left or right for change VFO frequency"};
        QTest::newRow("german") << QLocale(QLocale::German, QLocale::Austria) << true
                                << QStringList {"Aktivieren", "PTT nicht weiterleiten", "Frei",
                                                "Lautstärke:",
                                                "Nach links oder rechts drehen, um die "
                                                "VFO-Frequenz zu ändern"};
        QTest::newRow("english") << QLocale(QLocale::English, QLocale::UnitedKingdom) << true
                                 << english;
        QTest::newRow("no translation") << QLocale(QLocale::Japanese) << false << english;
    }

    void translations()
    {
        QFETCH(QLocale, locale);
        QFETCH(bool, found);

        // Start from German so that a locale without a translation must undo it.
        QVERIFY(installDialixTranslator(QLocale(QLocale::German)));
        QCOMPARE(installDialixTranslator(locale), found);

        DialixOptions page;
        QTEST((QStringList {DialixTestAccess::ui(page)->chbEnable->text(),
                            DialixTestAccess::ui(page)->cbPttTransfer->itemText(0),
                            DialixTestAccess::ui(page)->pbFunc1->text(),
                            DialixTestAccess::ui(page)->lbVolumeStep->text(),
                            DialixTestAccess::ui(page)->dialFunc1->toolTip()}),
              "texts");
        installDialixTranslator(QLocale::c());
    }
};

QTEST_MAIN(TestDialixOptions)
#include "tst_dialixoptions.moc"
