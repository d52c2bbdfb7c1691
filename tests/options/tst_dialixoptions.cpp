// Tests of the options page: ranges, couplings and signals of its controls.

#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/dialixtranslation.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

class TestDialixOptions : public QObject
{
    Q_OBJECT
private slots:
    void freshPage();
    void stepBoxes_data();
    void stepBoxes();
    void enableCouplings_data();
    void enableCouplings();
    void ledSignals_data();
    void ledSignals();
    void unpressDial1_data();
    void unpressDial1();
    void releaseTimerUnlightsItsButton_data();
    void releaseTimerUnlightsItsButton();
    void translations_data();
    void translations();
};

static QList<QPushButton *> panelButtons(const DialixOptions &page)
{
    QList<QPushButton *> buttons;
    for (int n = 1; n <= 17; ++n)
        buttons << page.findChild<QPushButton *>(QStringLiteral("pbFunc%1").arg(n));
    for (int n = 0; n <= 3; ++n)
        buttons << page.findChild<QPushButton *>(QStringLiteral("pbDial%1").arg(n));
    return buttons;
}

void TestDialixOptions::freshPage()
{
    DialixOptions page;
    const auto buttons = panelButtons(page);
    QCOMPARE(buttons.size(), 21);
    for (QPushButton *button : buttons) {
        QVERIFY(button);
        QCOMPARE(button->text(), QStringLiteral("NO"));
        QVERIFY2(!button->isCheckable(), qPrintable(button->objectName()));
    }
    QCOMPARE(page.ui->cbPttTransfer->currentIndex(), 0);
    QCOMPARE(page.ui->cbPttTransfer->currentText(), QStringLiteral("No transfer PTT"));
    QCOMPARE(page.ui->cbPttTransfer->count(), 3);
    QCOMPARE(page.ui->cbDevice->currentIndex(), -1);
    QCOMPARE(page.ui->cbReceiver->currentIndex(), -1);
    QCOMPARE(page.size(), QSize(860, 373));
    QCOMPARE(page.windowTitle(), QStringLiteral("Form"));

    QDial *dial = page.ui->dialFunc1;
    QCOMPARE(dial->minimum(), 0);
    QCOMPARE(dial->maximum(), 255);
    QVERIFY(dial->wrapping());
    QVERIFY(dial->notchesVisible());
    QCOMPARE(page.timers.size(), 4);
}

void TestDialixOptions::stepBoxes_data()
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

void TestDialixOptions::stepBoxes()
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

void TestDialixOptions::enableCouplings_data()
{
    QTest::addColumn<QString>("toggle");
    QTest::addColumn<QStringList>("locked");

    QTest::newRow("panel enable") << "chbEnable" << QStringList {"cbDevice"};
    QTest::newRow("port enable") << "chbEnableComPort"
                                 << QStringList {"cbPortName", "chbDTR", "chbRTS"};
}

void TestDialixOptions::enableCouplings()
{
    QFETCH(QString, toggle);
    QFETCH(QStringList, locked);

    DialixOptions page;
    auto *box = page.findChild<QCheckBox *>(toggle);
    QVERIFY(box);
    QList<QWidget *> widgets;
    for (const QString &name : locked) {
        widgets << page.findChild<QWidget *>(name);
        QVERIFY(widgets.last());
        QVERIFY(widgets.last()->isEnabled());
    }

    box->setChecked(true);
    for (QWidget *w : widgets)
        QVERIFY2(!w->isEnabled(), qPrintable(w->objectName()));
    box->setChecked(false);
    for (QWidget *w : widgets)
        QVERIFY2(w->isEnabled(), qPrintable(w->objectName()));
}

void TestDialixOptions::ledSignals_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<bool>("encoder");

    QTest::newRow("key led") << "chbKeyLed" << false;
    QTest::newRow("encoder led") << "chbEncoderLed" << true;
}

void TestDialixOptions::ledSignals()
{
    QFETCH(QString, box);
    QFETCH(bool, encoder);

    DialixOptions page;
    QSignalSpy keySpy(&page, &DialixOptions::setLedKey);
    QSignalSpy encoderSpy(&page, &DialixOptions::setLedEncoder);
    auto *check = page.findChild<QCheckBox *>(box);
    QVERIFY(check);

    check->setChecked(true);
    check->setChecked(false);

    QSignalSpy &hit = encoder ? encoderSpy : keySpy;
    QSignalSpy &quiet = encoder ? keySpy : encoderSpy;
    QCOMPARE(hit.count(), 2);
    QCOMPARE(hit.at(0).at(0).toBool(), true);
    QCOMPARE(hit.at(1).at(0).toBool(), false);
    QCOMPARE(quiet.count(), 0);
}

void TestDialixOptions::unpressDial1_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("released"); // the pbDial number released, -1 for none

    QTest::newRow("0 does nothing") << 0 << -1;
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("2") << 2 << 2;
    QTest::newRow("3") << 3 << 3;
    QTest::newRow("4 does nothing") << 4 << -1;
}

void TestDialixOptions::unpressDial1()
{
    QFETCH(int, value);
    QFETCH(int, released);

    DialixOptions page;
    QList<QPushButton *> dials;
    for (int n = 0; n <= 3; ++n) {
        auto *button = page.findChild<QPushButton *>(QStringLiteral("pbDial%1").arg(n));
        button->setCheckable(true);
        button->setChecked(true);
        dials << button;
        page.timers.at(n)->start(60000);
    }

    page.unpressDial1(value);

    for (int n = 0; n <= 3; ++n) {
        const bool release = n == released;
        QCOMPARE(dials.at(n)->isChecked(), !release);
        QCOMPARE(dials.at(n)->isCheckable(), !release);
        QCOMPARE(page.timers.at(n)->isActive(), !release);
    }
}

void TestDialixOptions::releaseTimerUnlightsItsButton_data()
{
    QTest::addColumn<int>("dial");
    QTest::newRow("pbDial1") << 1;
    QTest::newRow("pbDial2") << 2;
    QTest::newRow("pbDial3") << 3;
}

void TestDialixOptions::releaseTimerUnlightsItsButton()
{
    QFETCH(int, dial);

    DialixOptions page;
    auto *button = page.findChild<QPushButton *>(QStringLiteral("pbDial%1").arg(dial));
    button->setCheckable(true);
    button->setChecked(true);

    page.timers.at(dial)->start(50);
    QTRY_VERIFY_WITH_TIMEOUT(!button->isCheckable(), 5000);
    QVERIFY(!button->isChecked());
    QVERIFY(!page.timers.at(dial)->isActive());
}

void TestDialixOptions::translations_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("enable");
    QTest::addColumn<QString>("noTransfer");
    QTest::addColumn<QString>("unassigned");
    QTest::addColumn<QString>("volume");
    QTest::addColumn<QString>("dialTip");

    QTest::newRow("german") << QLocale(QLocale::German, QLocale::Austria) << true << "Aktivieren"
                            << "PTT nicht weiterleiten"
                            << "Frei"
                            << "Lautstärke:"
                            << "Nach links oder rechts drehen, um die VFO-Frequenz zu ändern";
    QTest::newRow("english") << QLocale(QLocale::English, QLocale::UnitedKingdom) << true
                             << "Enable"
                             << "No transfer PTT"
                             << "NO"
                             << "Volume:"
                             << "Rotate left or right for change VFO frequency";
    QTest::newRow("no translation") << QLocale(QLocale::Japanese) << false << "Enable"
                                    << "No transfer PTT"
                                    << "NO"
                                    << "Volume:"
                                    << "Rotate left or right for change VFO frequency";
}

void TestDialixOptions::translations()
{
    QFETCH(QLocale, locale);
    QFETCH(bool, found);

    // Start from German so that a locale without a translation must undo it.
    QVERIFY(installDialixTranslator(QLocale(QLocale::German)));
    QCOMPARE(installDialixTranslator(locale), found);

    DialixOptions page;
    QTEST(page.ui->chbEnable->text(), "enable");
    QTEST(page.ui->cbPttTransfer->itemText(0), "noTransfer");
    QTEST(page.ui->pbFunc1->text(), "unassigned");
    QTEST(page.ui->lbVolumeStep->text(), "volume");
    QTEST(page.ui->dialFunc1->toolTip(), "dialTip");

    installDialixTranslator(QLocale::c());
}

QTEST_MAIN(TestDialixOptions)
#include "tst_dialixoptions.moc"
