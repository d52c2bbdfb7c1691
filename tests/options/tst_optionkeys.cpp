// Tests of the options page's keys: round trip, stored form, fallbacks.

#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/optionkeys.h"
#include "plugins/panels/dialix/source/optionsfile.h"
#include "tests/support/dialixtestaccess.h"

#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using dialix::OptionKey;
using dialix::OptionType;

namespace {

enum class Store { OwnFile, Host };

// The page as the controller leaves it before loading: receivers and ports listed.
void fillLists(DialixOptions &page)
{
    page.setReceiverNames({"RX 1", "RX 2"});
    page.setPortNames({"ttyUSB0", "ttyUSB1", "COM3"});
}

QWidget *control(const DialixOptions &page, const OptionKey &key)
{
    return page.findChild<QWidget *>(QLatin1String(key.control));
}

// A control's state as saved: bool, int (value or index) or text.
QVariant state(const DialixOptions &page, const OptionKey &key)
{
    QWidget *w = control(page, key);
    switch (key.type) {
    case OptionType::Bool:
        return qobject_cast<QCheckBox *>(w)->isChecked();
    case OptionType::SpinBox:
        return qobject_cast<QSpinBox *>(w)->value();
    case OptionType::Index:
        return qobject_cast<QComboBox *>(w)->currentIndex();
    case OptionType::Text:
        return qobject_cast<QComboBox *>(w)->currentText();
    }
    return {};
}

void setState(DialixOptions &page, const OptionKey &key, const QVariant &value)
{
    QWidget *w = control(page, key);
    switch (key.type) {
    case OptionType::Bool:
        qobject_cast<QCheckBox *>(w)->setChecked(value.toBool());
        break;
    case OptionType::SpinBox:
        qobject_cast<QSpinBox *>(w)->setValue(value.toInt());
        break;
    case OptionType::Index:
        qobject_cast<QComboBox *>(w)->setCurrentIndex(value.toInt());
        break;
    case OptionType::Text: {
        auto *box = qobject_cast<QComboBox *>(w);
        box->setCurrentIndex(box->findText(value.toString()));
        break;
    }
    }
}

// Two states that differ from each other and from a fresh page in every control.
QVariant stateA(const DialixOptions &page, const OptionKey &key)
{
    switch (key.type) {
    case OptionType::Bool:
        return true;
    case OptionType::SpinBox:
        return qobject_cast<QSpinBox *>(control(page, key))->maximum();
    case OptionType::Index:
        return qobject_cast<QComboBox *>(control(page, key))->count() - 1;
    case OptionType::Text:
        return QStringLiteral("COM3");
    }
    return {};
}

QVariant stateB(const DialixOptions &, const OptionKey &key)
{
    switch (key.type) {
    case OptionType::Bool:
        return false;
    case OptionType::SpinBox:
        return 3;
    case OptionType::Index:
        return 1;
    case OptionType::Text:
        return QStringLiteral("ttyUSB1");
    }
    return {};
}

void setAll(DialixOptions &page, QVariant (*pick)(const DialixOptions &, const OptionKey &))
{
    for (const OptionKey &key : dialix::optionKeys)
        setState(page, key, pick(page, key));
}

const OptionKey &keyNamed(const QString &name)
{
    const int row = dialix::optionKeyIndex(name.toLatin1().constData());
    Q_ASSERT(row >= 0);
    return dialix::optionKeys[row];
}

void read(DialixOptions &page, QSettings &settings, Store store)
{
    if (store == Store::OwnFile)
        page.readOptionKeys(&settings);
    else
        page.readHostOptionKeys(&settings);
}

void write(DialixOptions &page, QSettings &settings, Store store)
{
    if (store == Store::OwnFile)
        page.writeOptionKeys(&settings);
    else
        page.writeHostOptionKeys(&settings);
}

// The own file has a format of its own; the host's settings are INI files here.
QSettings::Format formatOf(Store store)
{
    return store == Store::OwnFile ? dialix::optionsFileFormat() : QSettings::IniFormat;
}

const char *storeName(Store store)
{
    return store == Store::OwnFile ? "own" : "host";
}

} // namespace

Q_DECLARE_METATYPE(Store)

class TestOptionKeys : public QObject
{
    Q_OBJECT
private slots:
    void everyKeyHasItsControl()
    {
        DialixOptions page;
        for (const OptionKey &key : dialix::optionKeys) {
            QWidget *w = control(page, key);
            QVERIFY2(w, key.control);
            const bool typed = key.type == OptionType::Bool
                ? qobject_cast<QCheckBox *>(w) != nullptr
                : key.type == OptionType::SpinBox ? qobject_cast<QSpinBox *>(w) != nullptr
                                                  : qobject_cast<QComboBox *>(w) != nullptr;
            QVERIFY2(typed, key.control);
        }
    }

    void roundTrip_data()
    {
        QTest::addColumn<Store>("store");
        QTest::addColumn<bool>("maxima"); // write state A into a page in state B, or back

        for (Store store : {Store::OwnFile, Store::Host}) {
            QTest::addRow("%s: on and maxima", storeName(store)) << store << true;
            QTest::addRow("%s: off and small", storeName(store)) << store << false;
        }
    }

    void roundTrip()
    {
        QFETCH(Store, store);
        QFETCH(bool, maxima);

        const QString path =
            dir.filePath(QStringLiteral("roundtrip-%1-%2.ini").arg(storeName(store)).arg(maxima));
        DialixOptions saved;
        fillLists(saved);
        setAll(saved, maxima ? stateA : stateB);
        {
            QSettings settings(path, formatOf(store));
            settings.beginGroup(QStringLiteral("Dialix2"));
            write(saved, settings, store);
            QCOMPARE(settings.group(), QStringLiteral("Dialix2"));
            settings.endGroup();
        }

        DialixOptions loaded;
        fillLists(loaded);
        setAll(loaded, maxima ? stateB : stateA);
        QSettings settings(path, formatOf(store));
        settings.beginGroup(QStringLiteral("Dialix2"));
        read(loaded, settings, store);
        QCOMPARE(settings.group(), QStringLiteral("Dialix2"));

        for (const OptionKey &key : dialix::optionKeys)
            QVERIFY2(state(loaded, key) == state(saved, key), key.key);
    }

    // The own file's format writes what QSettings' INI format writes, byte for
    // byte, also for a port name that needs quotes and escapes; QSettings reads
    // it back.
    void storedForm()
    {
        DialixOptions page;
        fillLists(page);
        setAll(page, stateA);
        DialixTestAccess::ui(page)->sbSqlStep->setValue(17);
        const QString oddName = QStringLiteral("@COM 3, \"\u00fc\\x\t ");
        DialixTestAccess::ui(page)->cbPortName->addItem(oddName);
        QByteArray written[2];
        for (const QSettings::Format format : {QSettings::IniFormat, dialix::optionsFileFormat()}) {
            const QString path = dir.filePath(QStringLiteral("form%1.ini").arg(int(format)));
            {
                QSettings settings(path, format);
                for (const char *group : {"Dialix2", "Dialix10", "Dialix1"}) {
                    DialixTestAccess::ui(page)->cbPortName->setCurrentText(
                        qstrcmp(group, "Dialix1") ? oddName : "COM3");
                    settings.beginGroup(QLatin1String(group));
                    settings.setValue(QStringLiteral("FunctionDial-1"), 13);
                    page.writeOptionKeys(&settings);
                    settings.endGroup();
                }
            }
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadOnly));
            written[format == QSettings::IniFormat ? 0 : 1] = file.readAll();
        }
#ifdef Q_OS_WIN
        // Qt's INI writer on Windows keeps the order in which sections and
        // keys were written, where ours sorts them: line for line they agree.
        const auto lines = [](const QByteArray &text) {
            QList<QByteArray> all = text.split('\n');
            std::sort(all.begin(), all.end());
            return all;
        };
        QCOMPARE(lines(written[1]), lines(written[0]));
#else
        QCOMPARE(written[1], written[0]);
#endif

        // Qt reads our file as its own. A copy: QSettings shares one parsed
        // file among its formats, and on Windows they differ in key case.
        const QString copy = dir.filePath(QStringLiteral("copy.ini"));
        QVERIFY(QFile::copy(
            dir.filePath(QStringLiteral("form%1.ini").arg(int(dialix::optionsFileFormat()))),
            copy));
        QSettings file(copy, QSettings::IniFormat);
        file.beginGroup(QStringLiteral("Dialix1/Options"));
        QCOMPARE(file.childKeys().size(), dialix::OptionKeyCount);
        QCOMPARE(file.value(QStringLiteral("Sql")).toInt(), 17);
        QCOMPARE(file.value(QStringLiteral("PttTransferMode")).toString(), QStringLiteral("2"));
        QCOMPARE(file.value(QStringLiteral("PttComName")).toString(), QStringLiteral("COM3"));
        QCOMPARE(file.value(QStringLiteral("UseIF")).toString(), QStringLiteral("true"));
        file.endGroup();
        QCOMPARE(file.value(QStringLiteral("Dialix2/Options/PttComName")).toString(), oddName);
    }

    void fallbacks_data()
    {
        QTest::addColumn<Store>("store");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("stored"); // invalid: no entry
        QTest::addColumn<QVariant>("expected");

        // The page starts in state B (check boxes off except where noted, spin
        // boxes 3, "RX 2", "PTT to ZLI", "ttyUSB1"); `own` is what the own file
        // gives, `host` what the host's settings give.
        struct Row
        {
            const char *tag;
            const char *key;
            QVariant stored;
            QVariant own;
            QVariant host;
        };
        const QVariant missing;
        const Row rows[] = {
            {"volume 0 is below the minimum", "Volume", "0", 1, 3},
            {"volume 11 is above the maximum", "Volume", "11", 1, 3},
            {"volume abc", "Volume", "abc", 1, 3},
            {"volume missing", "Volume", missing, 1, 3},
            {"volume 9", "Volume", "9", 9, 9},
            {"filter low 99999", "FilterLow", "99999", 10, 3},
            {"filter low at its maximum", "FilterLow", "1000", 1000, 1000},
            {"sql 15", "Sql", "15", 15, 15},
            {"receiver 5 of 2", "Receiver", "5", 0, 1},
            {"receiver 2 of 2", "Receiver", "2", 0, 1},
            {"receiver -1", "Receiver", "-1", 0, 1},
            {"receiver x", "Receiver", "x", 0, 1},
            {"receiver 0", "Receiver", "0", 0, 0},
            {"ptt mode 3", "PttTransferMode", "3", 0, 1},
            {"ptt mode missing", "PttTransferMode", missing, 0, 1},
            {"ptt mode 2", "PttTransferMode", "2", 2, 2},
            {"use if true", "UseIF", "true", true, true},
            {"enable garbage", "Enable", "maybe", false, false},
            {"port absent", "PttComName", "COM9", "ttyUSB1", "ttyUSB1"},
            {"port name lower case", "PttComName", "ttyusb0", "ttyUSB1", "ttyUSB1"},
            {"port missing", "PttComName", missing, "ttyUSB1", "ttyUSB1"},
            {"port present", "PttComName", "COM3", "COM3", "COM3"},
        };
        for (Store store : {Store::OwnFile, Store::Host})
            for (const Row &row : rows)
                QTest::addRow("%s: %s", storeName(store), row.tag)
                    << store << QString::fromLatin1(row.key) << row.stored
                    << (store == Store::OwnFile ? row.own : row.host);

        // Serialised values, also spelt with escapes, are never decoded in the own
        // file (QSettings' own reader crashes on the first one, runs out of memory
        // on the list and decodes the others).
        const Row ownOnly[] = {
            {"escaped @Variant", "Volume", "@Var\\x69\\x61nt(\\0\\0\\0G\\x7f\\xff\\xff\\xff)", 1,
             0},
            {"escaped @DateTime", "Volume", "@D\\x61teTime(\\0\\0\\0\\x10\\0)", 1, 0},
            {"list of 2^31-1 entries", "Volume", "@Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)", 1,
             0},
            {"@ByteArray", "Volume", "@ByteArray(5)", 1, 0},
            {"NUL", "Volume", QByteArray("5\0", 2), 1, 0},
            {"quoted, with a comment", "Volume", "\"5\" ; five", 5, 0},
            {"continued line", "FilterLow", "9\\\n9", 99, 0},
            {"@@", "PttComName", "@@COM3", "ttyUSB1", 0},
        };
        for (const Row &row : ownOnly)
            QTest::addRow("own: %s", row.tag)
                << Store::OwnFile << QString::fromLatin1(row.key) << row.stored << row.own;

        // Broken or missing check-box entries: the own file resets, the host keeps.
        for (Store store : {Store::OwnFile, Store::Host}) {
            const bool kept = store == Store::Host;
            QTest::addRow("%s: ticked box, garbage", storeName(store))
                << store << "KeyLed" << QVariant("maybe") << QVariant(kept);
            QTest::addRow("%s: ticked box, missing", storeName(store))
                << store << "KeyLed" << missing << QVariant(kept);
            QTest::addRow("%s: ticked box, false", storeName(store))
                << store << "KeyLed" << QVariant("false") << QVariant(false);
        }
    }

    void fallbacks()
    {
        QFETCH(Store, store);
        QFETCH(QString, key);
        QFETCH(QVariant, stored);
        QFETCH(QVariant, expected);

        // The stored value as it stands in the file, with a good key on either
        // side of it: one bad key loses nothing else.
        const QString path = dir.filePath(QStringLiteral("fallback-%1.ini")
                                              .arg(QTest::currentDataTag())
                                              .replace(QLatin1Char(' '), QLatin1Char('_'))
                                              .replace(QLatin1Char(':'), QLatin1Char('_')));
        {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QByteArray text = "[Dialix1]\nFunctionButton0=1\nOptions\\Drive=4\n";
            if (stored.isValid())
                text += "Options\\" + key.toLatin1() + '=' + stored.toByteArray() + '\n';
            file.write(text + "Options\\RfGain=17\n");
        }

        DialixOptions page;
        fillLists(page);
        setAll(page, stateB);
        DialixTestAccess::ui(page)->chbKeyLed->setChecked(true);

        QSettings settings(path, formatOf(store));
        settings.beginGroup(QStringLiteral("Dialix1"));
        read(page, settings, store);

        const QVariant actual = state(page, keyNamed(key));
        QVERIFY2(actual == expected,
                 qPrintable(QStringLiteral("%1 gave %2, expected %3")
                                .arg(key, actual.toString(), expected.toString())));
        QCOMPARE(DialixTestAccess::ui(page)->sbDriveStep->value(), 4);
        QCOMPARE(DialixTestAccess::ui(page)->sbRfGainStep->value(), 17);
    }

    void serialKeysReadOrder_data()
    {
        QTest::addColumn<Store>("store");
        QTest::addColumn<QStringList>("order");

        QTest::newRow("own file") << Store::OwnFile
                                  << QStringList {"cbPttTransfer", "chbRTS", "chbDTR", "cbPortName",
                                                  "chbEnableComPort"};
        QTest::newRow("host") << Store::Host
                              << QStringList {"cbPttTransfer", "cbPortName", "chbRTS", "chbDTR",
                                              "chbEnableComPort"};
    }

    void serialKeysReadOrder()
    {
        QFETCH(Store, store);
        QFETCH(QStringList, order);

        const QString path = dir.filePath(QStringLiteral("order-%1.ini").arg(storeName(store)));
        DialixOptions saved;
        fillLists(saved);
        setAll(saved, stateA);
        {
            QSettings settings(path, QSettings::IniFormat);
            write(saved, settings, store);
        }

        DialixOptions page;
        fillLists(page);
        setAll(page, stateB);
        QStringList changes;
        auto log = [&changes](QObject *sender) {
            changes << sender->objectName();
        };
        for (QCheckBox *box :
             {DialixTestAccess::ui(page)->chbRTS, DialixTestAccess::ui(page)->chbDTR,
              DialixTestAccess::ui(page)->chbEnableComPort})
            connect(box, &QCheckBox::toggled, this, [box, log] { log(box); });
        for (QComboBox *box :
             {DialixTestAccess::ui(page)->cbPttTransfer, DialixTestAccess::ui(page)->cbPortName})
            connect(box, qOverload<int>(&QComboBox::currentIndexChanged), this,
                    [box, log] { log(box); });

        QSettings settings(path, QSettings::IniFormat);
        read(page, settings, store);
        QCOMPARE(changes, order);
    }

    void noSettingsChangeNothing()
    {
        DialixOptions page;
        fillLists(page);
        setAll(page, stateA);
        page.readOptionKeys(nullptr);
        page.readHostOptionKeys(nullptr);
        page.writeOptionKeys(nullptr);
        page.writeHostOptionKeys(nullptr);
        for (const OptionKey &key : dialix::optionKeys)
            QVERIFY2(state(page, key) == stateA(page, key), key.key);
    }

private:
    QTemporaryDir dir;
};

QTEST_MAIN(TestOptionKeys)
#include "tst_optionkeys.moc"
