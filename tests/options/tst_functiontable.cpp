// Tests of the function tables: sub-menus and labels.

#include "plugins/panels/dialix/source/dialixtranslation.h"
#include "plugins/panels/dialix/source/functiontable.h"

#include <QCoreApplication>
#include <QObject>
#include <QSet>
#include <QTest>
#include <QTranslator>

using namespace dialix;

Q_DECLARE_METATYPE(dialix::SubMenu)

class TestFunctionTable : public QObject
{
    Q_OBJECT
private slots:
    void subMenuOrder_data();
    void subMenuOrder();
    void everyKeyFunctionSitsInOneSubMenu();
    void labels_data();
    void labels();
    void everyLabelIsTranslatedToGerman();
    void cleanup();
};

void TestFunctionTable::subMenuOrder_data()
{
    QTest::addColumn<SubMenu>("menu");
    QTest::addColumn<QVector<int>>("ids");
    QTest::addColumn<QString>("title");

    QTest::newRow("top") << SubMenu::Top << QVector<int> {0} << QString();
    QTest::newRow("main") << SubMenu::Main << QVector<int> {17, 18, 1,  2,  13, 14, 3,  4,  25, 16,
                                                            28, 19, 20, 41, 21, 22, 26, 27, 23, 24}
                          << "Main";
    QTest::newRow("vfo/rx2") << SubMenu::VfoRx2 << QVector<int> {43, 44, 45, 31, 35, 42, 53, 33,
                                                                 34, 32, 38, 29, 30, 36, 37}
                             << "VFO/RX2";
    QTest::newRow("audio") << SubMenu::Audio << QVector<int> {47, 48, 49, 50, 51, 54, 55, 56, 57,
                                                              58, 7,  52, 39, 40, 5,  6,  59}
                           << "Audio";
    QTest::newRow("dsp") << SubMenu::Dsp << QVector<int> {10, 46, 8, 9, 11, 12, 15, 60} << "DSP";
}

void TestFunctionTable::subMenuOrder()
{
    QFETCH(SubMenu, menu);
    QFETCH(QVector<int>, ids);
    QFETCH(QString, title);

    QCOMPARE(subMenuFunctions(menu), ids);
    QCOMPARE(subMenuSize(menu), ids.size());
    QCOMPARE(subMenuFunction(menu, ids.size()), -1);
    QCOMPARE(subMenuText(menu), title);
    for (int id : ids)
        QCOMPARE(buttonFunctionSubMenu(id), menu);
}

void TestFunctionTable::everyKeyFunctionSitsInOneSubMenu()
{
    QCOMPARE(
        buttonMenuOrder,
        (std::array<SubMenu, 4> {SubMenu::Main, SubMenu::VfoRx2, SubMenu::Audio, SubMenu::Dsp}));

    QVector<int> seen(ButtonFunctionCount, 0);
    for (SubMenu menu :
         {SubMenu::Top, SubMenu::Main, SubMenu::VfoRx2, SubMenu::Audio, SubMenu::Dsp})
        for (int id : subMenuFunctions(menu)) {
            QVERIFY2(isButtonFunction(id), qPrintable(QString::number(id)));
            ++seen[id];
        }
    for (int id = 0; id < ButtonFunctionCount; ++id)
        QVERIFY2(seen[id] == 1,
                 qPrintable(QStringLiteral("function %1 appears %2 times").arg(id).arg(seen[id])));
}

void TestFunctionTable::labels_data()
{
    QTest::addColumn<bool>("dial");
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("full");
    QTest::addColumn<QString>("brief");

    QTest::newRow("key unused") << false << 0 << "Unused"
                                << "NO";
    QTest::newRow("key band up") << false << 1 << "Band Up"
                                 << "BU";
    QTest::newRow("key agc up") << false << 17 << "Agc Up"
                                << "AgcU";
    QTest::newRow("key swap") << false << 45 << "B<->A"
                              << "Swap";
    QTest::newRow("key listen rx1") << false << 48 << "Listen RX1 only"
                                    << "V.RX1";
    QTest::newRow("key last") << false << 60 << "NF"
                              << "NF";
    QTest::newRow("key past the end") << false << 61 << QString() << QString();
    QTest::newRow("key none checked") << false << -1 << QString() << QString();
    QTest::newRow("dial unused") << true << 0 << "Unused"
                                 << "NO";
    QTest::newRow("dial volume") << true << 1 << "Volume"
                                 << "Vol";
    QTest::newRow("dial last") << true << 13 << "XIT Offset"
                               << "Xit";
    QTest::newRow("dial past the end") << true << 14 << QString() << QString();
    QTest::newRow("dial none checked") << true << -1 << QString() << QString();
}

void TestFunctionTable::labels()
{
    QFETCH(bool, dial);
    QFETCH(int, id);
    QFETCH(QString, full);
    QFETCH(QString, brief);

    QCOMPARE(dial ? dialFunctionText(id) : buttonFunctionText(id), full);
    QCOMPARE(dial ? dialFunctionShortText(id) : buttonFunctionShortText(id), brief);
}

void TestFunctionTable::everyLabelIsTranslatedToGerman()
{
    QVERIFY(installDialixTranslator(QLocale(QLocale::German, QLocale::Germany)));

    QCOMPARE(buttonFunctionText(1), QStringLiteral("Band hoch"));
    QCOMPARE(buttonFunctionShortText(1), QStringLiteral("B+"));
    QCOMPARE(dialFunctionText(1), QStringLiteral("Lautstärke"));
    QCOMPARE(subMenuText(SubMenu::Main), QStringLiteral("Allgemein"));

    // A function added to the table without running lupdate has no entry.
    QTranslator german;
    QVERIFY(german.load(QStringLiteral(":/dialix/translations/dialix_de.qm")));
    auto translated = [&german](QLatin1String source) {
        return !german.translate("DialixOptions", source.data()).isEmpty();
    };
    for (const auto &f : buttonFunctions)
        QVERIFY2(translated(f.label) && translated(f.shortLabel), f.name);
    for (const auto &f : dialFunctions)
        QVERIFY2(translated(f.label) && translated(f.shortLabel), f.name);
    for (SubMenu menu : buttonMenuOrder)
        QVERIFY(translated(subMenuTitle(menu)));
}

void TestFunctionTable::cleanup()
{
    installDialixTranslator(QLocale::c());
}

QTEST_GUILESS_MAIN(TestFunctionTable)
#include "tst_functiontable.moc"
