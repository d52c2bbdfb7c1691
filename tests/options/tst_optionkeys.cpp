// Tests of the options page's keys: round trip, stored form, fallbacks.

#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/optionkeys.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using dialix::OptionKey;
using dialix::OptionType;

namespace {

enum class Store { OwnFile, Host };

// The page as the controller leaves it before loading: receivers and ports listed.
void fillLists(DialixOptions &page)
{
    page.ui->cbReceiver->addItems({"RX 1", "RX 2"});
    page.ui->cbPortName->addItems({"ttyUSB0", "ttyUSB1", "COM3"});
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
    void everyKeyHasItsControl();
    void roundTrip_data();
    void roundTrip();
    void storedForm();
    void fallbacks_data();
    void fallbacks();
    void serialKeysReadOrder_data();
    void serialKeysReadOrder();
    void noSettingsChangeNothing();

private:
    QTemporaryDir dir;
};

void TestOptionKeys::everyKeyHasItsControl()
{
    DialixOptions page;
    for (const OptionKey &key : dialix::optionKeys) {
        QWidget *w = control(page, key);
        QVERIFY2(w, key.control);
        const bool typed = key.type == OptionType::Bool ? qobject_cast<QCheckBox *>(w) != nullptr
            : key.type == OptionType::SpinBox           ? qobject_cast<QSpinBox *>(w) != nullptr
                                                        : qobject_cast<QComboBox *>(w) != nullptr;
        QVERIFY2(typed, key.control);
    }
}

void TestOptionKeys::roundTrip_data()
{
    QTest::addColumn<Store>("store");
    QTest::addColumn<bool>("maxima"); // write state A into a page in state B, or back

    for (Store store : {Store::OwnFile, Store::Host}) {
        QTest::addRow("%s: on and maxima", storeName(store)) << store << true;
        QTest::addRow("%s: off and small", storeName(store)) << store << false;
    }
}

void TestOptionKeys::roundTrip()
{
    QFETCH(Store, store);
    QFETCH(bool, maxima);

    const QString path =
        dir.filePath(QStringLiteral("roundtrip-%1-%2.ini").arg(storeName(store)).arg(maxima));
    DialixOptions saved;
    fillLists(saved);
    setAll(saved, maxima ? stateA : stateB);
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.beginGroup(QStringLiteral("Dialix2"));
        write(saved, settings, store);
        QCOMPARE(settings.group(), QStringLiteral("Dialix2"));
        settings.endGroup();
    }

    DialixOptions loaded;
    fillLists(loaded);
    setAll(loaded, maxima ? stateB : stateA);
    QSettings settings(path, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("Dialix2"));
    read(loaded, settings, store);
    QCOMPARE(settings.group(), QStringLiteral("Dialix2"));

    for (const OptionKey &key : dialix::optionKeys)
        QVERIFY2(state(loaded, key) == state(saved, key), key.key);
}

void TestOptionKeys::storedForm()
{
    const QString path = dir.filePath(QStringLiteral("form.ini"));
    DialixOptions page;
    fillLists(page);
    setAll(page, stateA);
    page.ui->sbSqlStep->setValue(17);
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.beginGroup(QStringLiteral("Dialix1"));
        page.writeOptionKeys(&settings);
    }

    QSettings file(path, QSettings::IniFormat);
    QStringList expected;
    for (const OptionKey &key : dialix::optionKeys)
        expected << QLatin1String(key.key);
    QStringList keys = file.allKeys();
    for (QString &k : keys)
        QVERIFY(k.startsWith(QStringLiteral("Dialix1/Options/")));
    QCOMPARE(keys.size(), expected.size());
    QCOMPARE(file.value(QStringLiteral("Dialix1/Options/Sql")).toInt(), 17);
    QCOMPARE(file.value(QStringLiteral("Dialix1/Options/PttTransferMode")).toString(),
             QStringLiteral("2"));
    QCOMPARE(file.value(QStringLiteral("Dialix1/Options/PttComName")).toString(),
             QStringLiteral("COM3"));
    QCOMPARE(file.value(QStringLiteral("Dialix1/Options/UseIF")).toString(),
             QStringLiteral("true"));
}

void TestOptionKeys::fallbacks_data()
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

void TestOptionKeys::fallbacks()
{
    QFETCH(Store, store);
    QFETCH(QString, key);
    QFETCH(QVariant, stored);
    QFETCH(QVariant, expected);

    const QString path = dir.filePath(QStringLiteral("fallback-%1.ini")
                                          .arg(QTest::currentDataTag())
                                          .replace(QLatin1Char(' '), QLatin1Char('_'))
                                          .replace(QLatin1Char(':'), QLatin1Char('_')));
    {
        QSettings settings(path, QSettings::IniFormat);
        if (stored.isValid())
            settings.setValue(QStringLiteral("Dialix1/Options/") + key, stored);
        settings.setValue(QStringLiteral("Dialix1/FunctionButton0"), 1);
    }

    DialixOptions page;
    fillLists(page);
    setAll(page, stateB);
    page.ui->chbKeyLed->setChecked(true);

    QSettings settings(path, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("Dialix1"));
    read(page, settings, store);

    const QVariant actual = state(page, keyNamed(key));
    QVERIFY2(actual == expected,
             qPrintable(QStringLiteral("%1 gave %2, expected %3")
                            .arg(key, actual.toString(), expected.toString())));
}

void TestOptionKeys::serialKeysReadOrder_data()
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

void TestOptionKeys::serialKeysReadOrder()
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
    for (QCheckBox *box : {page.ui->chbRTS, page.ui->chbDTR, page.ui->chbEnableComPort})
        connect(box, &QCheckBox::toggled, this, [box, log] { log(box); });
    for (QComboBox *box : {page.ui->cbPttTransfer, page.ui->cbPortName})
        connect(box, qOverload<int>(&QComboBox::currentIndexChanged), this,
                [box, log] { log(box); });

    QSettings settings(path, QSettings::IniFormat);
    read(page, settings, store);
    QCOMPARE(changes, order);
}

void TestOptionKeys::noSettingsChangeNothing()
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

QTEST_MAIN(TestOptionKeys)
#include "tst_optionkeys.moc"
