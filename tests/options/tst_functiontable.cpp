// Tests of the function tables' labels and their German translation. The order
// of the key menus is checked where the user sees it, in the controller's menus.

#include "plugins/panels/dialix/source/dialixtranslation.h"
#include "plugins/panels/dialix/source/functiontable.h"

#include <QCoreApplication>
#include <QObject>
#include <QTest>
#include <QTranslator>

using namespace dialix;

class TestFunctionTable : public QObject
{
    Q_OBJECT
private slots:
    // Full and short labels by id; an id outside the table has none.
    void labels()
    {
        struct Row
        {
            bool dial;
            int id;
            const char *full;
            const char *brief;
        };
        const Row rows[] = {
            {false, 0, "Unused", "NO"},
            {false, 1, "Band Up", "BU"},
            {false, 17, "Agc Up", "AgcU"},
            {false, 45, "B<->A", "Swap"},
            {false, 48, "Listen RX1 only", "V.RX1"},
            {false, 60, "NF", "NF"},
            {false, 61, "", ""},
            {false, -1, "", ""},
            {true, 0, "Unused", "NO"},
            {true, 1, "Volume", "Vol"},
            {true, 13, "XIT Offset", "Xit"},
            {true, 14, "", ""},
            {true, -1, "", ""},
        };
        for (const Row &row : rows) {
            const QString got = row.dial
                ? dialFunctionText(row.id) + '|' + dialFunctionShortText(row.id)
                : buttonFunctionText(row.id) + '|' + buttonFunctionShortText(row.id);
            const QString want = QLatin1String(row.full) + '|' + QLatin1String(row.brief);
            QVERIFY2(got == want, qPrintable(QString::number(row.id) + ": " + got));
        }
    }

    void everyLabelIsTranslatedToGerman()
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

    void cleanup() { installDialixTranslator(QLocale::c()); }
};

QTEST_GUILESS_MAIN(TestFunctionTable)
#include "tst_functiontable.moc"
