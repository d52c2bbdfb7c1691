// Fuzzes the loading of settings from INI text: the reader of the plug-in's
// own file format, and the assignment store (without a controller): the key
// and dial assignments and the options page's keys from the own file and from a
// settings object of the host, saved and loaded again. Both stores are read
// through the own file's format here: QSettings' own INI reader decodes
// serialised values, which the host's file is the host's business.
//
// Besides "no crash, no leak, no undefined behaviour":
//  - the reader yields text only, and reading what the writer made of it gives
//    the same keys and values, which the writer turns into the same bytes;
//  - every option key whose stored text is a plain number, "true"/"false" or
//    absent follows the fallback rules: the own file falls back to the key's
//    default, the host's settings leave the control as it was;
//  - a stored function position that is a plain number is that function when
//    it is one, else "Unused", as is a missing one;
//  - what loads from the input loads again after saving.

#include "plugins/panels/dialix/source/assignmentstore.h"
#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/optionkeys.h"
#include "plugins/panels/dialix/source/optionsfile.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <QApplication>
#include <QBuffer>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <optional>

namespace {

using dialix::Assignments;
using dialix::OptionKey;
using dialix::OptionType;

QTemporaryDir *workDir;
DialixOptions *page;
Assignments assignments;
quint64 fileNumber = 0;

QVariant storedValue(QSettings &settings, const QString &key)
{
    return settings.value(key);
}

bool hasKey(QSettings &settings, const QString &key)
{
    return settings.contains(key);
}

[[noreturn]] void failed(const char *what)
{
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

QSettings::SettingsMap parse(const QByteArray &text)
{
    QByteArray copy = text;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    QSettings::SettingsMap map;
    if (!dialix::readOptionsFile(buffer, map))
        failed("the reader gave up");
    for (const QVariant &value : qAsConst(map)) {
        if (value.userType() != QMetaType::QString)
            failed("the reader made a value that is not text");
    }
    return map;
}

QByteArray serialise(const QSettings::SettingsMap &map)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!dialix::writeOptionsFile(buffer, map))
        failed("the writer failed");
    return buffer.data();
}

// True when QSettings' own reader cannot come upon a serialised value: no
// '@', and no escape that could make one.
bool nothingToDecode(const QByteArray &input)
{
    if (input.contains('@'))
        return false;
    for (int i = input.indexOf('\\'); i >= 0 && i + 1 < input.size();
         i = input.indexOf('\\', i + 2)) {
        const char next = input.at(i + 1);
        if (next == 'x' || (next >= '0' && next <= '7'))
            return false;
    }
    return true;
}

// Where QSettings' own INI reader decodes nothing, both readers read the same
// keys and texts (a list as its items joined by ", ").
void compareWithQt(const QByteArray &input, const QSettings::SettingsMap &ours)
{
    // A file of its own: QSettings shares what it parsed by file name,
    // whatever the format.
    const QString path = workDir->filePath(QStringLiteral("qt%1.ini").arg(++fileNumber));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            std::abort();
        file.write(input);
    }
    QSettings qt(path, QSettings::IniFormat);
    const QStringList all = qt.allKeys();
    for (const QString &key : all) {
        // QSettings cannot ask for such a key; the own format names it the
        // way QSettings asks, and two lines may then name the same key.
        if (key.isEmpty()
            || key.split(QLatin1Char('/'), Qt::SkipEmptyParts).join(QLatin1Char('/')) != key) {
            QFile::remove(path);
            return;
        }
    }
    const int keys = all.size();
    for (const QString &key : all) {
        const QVariant value = qt.value(key);
        const bool list = value.userType() == QMetaType::QStringList
            || value.userType() == QMetaType::QVariantList;
        const QString text =
            list ? value.toStringList().join(QStringLiteral(", ")) : value.toString();
        if (!ours.contains(key) || ours.value(key).toString() != text) {
            std::fprintf(stderr, "key %s: QSettings reads \"%s\", the own format \"%s\"\n",
                         qUtf8Printable(key), qUtf8Printable(text),
                         qUtf8Printable(ours.value(key).toString()));
            std::abort();
        }
    }
    if (keys != ours.size())
        failed("QSettings and the own format read different keys");
    QFile::remove(path);
}

// QSettings' INI form spells a first group named "general" in any case as
// "[%General]", which reads back as "General": the one name that a round trip
// changes.
QSettings::SettingsMap withGeneralSpelt(const QSettings::SettingsMap &map)
{
    QSettings::SettingsMap spelt;
    for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
        QString key = it.key();
        const int slash = key.indexOf(QLatin1Char('/'));
        if (slash > 0
            && key.leftRef(slash).compare(QLatin1String("general"), Qt::CaseInsensitive) == 0)
            key.replace(0, slash, QStringLiteral("General"));
        spelt.insert(key, it.value());
    }
    return spelt;
}

// Read, written, read again: the same keys and texts; written again and read
// again, the same text.
void checkReaderAndWriter(const QByteArray &input)
{
    const QSettings::SettingsMap first = parse(input);
    const QSettings::SettingsMap second = parse(serialise(first));
    if (second != withGeneralSpelt(first))
        failed("reading what was written changed the keys or values");
    const QByteArray written = serialise(second);
    if (parse(written) != second || serialise(parse(written)) != written)
        failed("writing what was read back changed the text");
}

// The state of one control, as an int (check boxes 0/1, combo boxes their index).
int controlState(const OptionKey &key)
{
    const QString name = QLatin1String(key.control);
    switch (key.type) {
    case OptionType::Bool:
        return page->findChild<QCheckBox *>(name)->isChecked() ? 1 : 0;
    case OptionType::SpinBox:
        return page->findChild<QSpinBox *>(name)->value();
    case OptionType::Index:
    case OptionType::Text:
        return page->findChild<QComboBox *>(name)->currentIndex();
    }
    return 0;
}

bool inRange(const OptionKey &key, int value)
{
    const QString name = QLatin1String(key.control);
    if (key.type == OptionType::SpinBox) {
        auto *box = page->findChild<QSpinBox *>(name);
        return value >= box->minimum() && value <= box->maximum();
    }
    if (key.type == OptionType::Index)
        return value >= 0 && value < page->findChild<QComboBox *>(name)->count();
    return true;
}

// The stored value when it is unambiguous: absent (nullopt with *present false),
// a plain decimal number, or true/false. Anything else: nullopt, *present true.
std::optional<int> plainValue(QSettings &settings, const OptionKey &key, bool *present)
{
    const QString name = QLatin1String(key.key);
    *present = hasKey(settings, name);
    if (!*present)
        return std::nullopt;
    const QVariant v = storedValue(settings, name);
    if (v.userType() != QMetaType::QString)
        return std::nullopt;
    const QString text = v.toString();
    static const QRegularExpression number(QStringLiteral("^[+-]?[0-9]{1,9}$"));
    if (number.match(text).hasMatch())
        return text.toInt();
    if (key.type == OptionType::Bool && text == QLatin1String("true"))
        return 1;
    if (key.type == OptionType::Bool && text == QLatin1String("false"))
        return 0;
    return std::nullopt;
}

[[noreturn]] void fail(const char *store, const OptionKey &key, int want, int got)
{
    std::fprintf(stderr, "%s: key %s loaded %d, expected %d\n", store, key.key, got, want);
    std::abort();
}

void checkOptions(QSettings &settings, bool ownFile, const QList<int> &before)
{
    settings.beginGroup(QStringLiteral("Options"));
    for (int i = 0; i < dialix::OptionKeyCount; ++i) {
        const OptionKey &key = dialix::optionKeys[i];
        const int got = controlState(key);
        if (!inRange(key, got))
            fail(ownFile ? "own file" : "host", key, -1, got);
        // The port name is only selected when listed; "PttComEnable" opens the
        // port, and with no port to open the box is cleared again.
        if (key.type == OptionType::Text || qstrcmp(key.key, "PttComEnable") == 0)
            continue;
        bool present = false;
        const std::optional<int> stored = plainValue(settings, key, &present);
        if (present && !stored)
            continue; // not a plain value: only the range is checked
        const int fallback = ownFile ? key.defaultValue : before.at(i);
        int want = fallback;
        if (stored) {
            want = *stored;
            if (key.type == OptionType::Bool)
                want = want != 0;
            else if (!inRange(key, want))
                want = fallback;
        }
        if (got != want)
            fail(ownFile ? "own file" : "host", key, want, got);
    }
    settings.endGroup();
}

// A stored function position: a plain number in range, else "Unused" (0).
int expectedPosition(QSettings &settings, const QString &key, int count, bool *plain)
{
    *plain = true;
    if (!hasKey(settings, key))
        return 0;
    const QVariant v = storedValue(settings, key);
    static const QRegularExpression number(QStringLiteral("^[+-]?[0-9]{1,9}$"));
    if (v.userType() != QMetaType::QString || !number.match(v.toString()).hasMatch()) {
        *plain = false;
        return 0;
    }
    const int position = v.toString().toInt();
    return position >= 0 && position < count ? position : 0;
}

void checkAssignments(QSettings &settings, int dialKeyOffset)
{
    settings.beginGroup(QStringLiteral("Dialix1"));
    for (int n = 1; n <= 17; ++n) {
        bool plain = false;
        const int want =
            expectedPosition(settings, QStringLiteral("FunctionButton%1").arg(n - 1), 61, &plain);
        const int got = assignments.keys[n - 1];
        if (got < 0 || got > 60 || (plain && got != want)) {
            std::fprintf(stderr, "button %d: function %d, expected %d\n", n, got, want);
            std::abort();
        }
    }
    for (int j = 0; j < 4; ++j) {
        bool plain = false;
        const int want = expectedPosition(
            settings, QStringLiteral("FunctionDial%1").arg(j + dialKeyOffset), 14, &plain);
        const int got = assignments.dials[j];
        if (got < 0 || got > 13 || (plain && got != want)) {
            std::fprintf(stderr, "dial %d: function %d, expected %d\n", j, got, want);
            std::abort();
        }
    }
    settings.endGroup();
}

QList<int> snapshot()
{
    QList<int> state;
    for (const OptionKey &key : dialix::optionKeys)
        state.append(controlState(key));
    for (int id : assignments.keys)
        state.append(id);
    for (int id : assignments.dials)
        state.append(id);
    return state;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_RUNTIME_DIR", QDir::tempPath().toLocal8Bit());
    // Lives for the whole run, as do the page and the directory.
    new QApplication(*argc, *argv);
    workDir = new QTemporaryDir(QDir::tempPath() + QStringLiteral("/fuzz_settings-XXXXXX"));
    page = new DialixOptions;
    page->setReceiverNames({QStringLiteral("RX 1"), QStringLiteral("RX 2")});
    // No port to pick: a stored "PttComEnable" must never open a real port
    // (this machine's /dev/ttyS0 would be the only one listed), and a port that
    // fails to open shows a modal message box, which would stall the fuzzer.
    page->setPortNames({});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    checkReaderAndWriter(input);
    // A new file name each time: QSettings caches parsed files by name and
    // modification time, which a rewrite within the same millisecond defeats.
    const QString path = workDir->filePath(QStringLiteral("options%1.ini").arg(++fileNumber));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            std::abort();
        file.write(input);
    }
    {
        QSettings settings(path, dialix::optionsFileFormat());
        // The store opens the panel's group and lets the page read the sub-group.
        AssignmentStore(settings, AssignmentStore::OwnFile).read(0, assignments, *page);
        checkAssignments(settings, -1);
        settings.beginGroup(QStringLiteral("Dialix1"));
        checkOptions(settings, true, {});
        settings.endGroup();

        const QList<int> before = snapshot();
        AssignmentStore(settings, AssignmentStore::HostSettings).read(0, assignments, *page);
        checkAssignments(settings, 0);
        settings.beginGroup(QStringLiteral("Dialix1"));
        checkOptions(settings, false, before);
        settings.endGroup();
    }
    // As the own file is loaded, saved and loaded again: nothing changes.
    const auto ownFile = [&path](auto use) {
        QSettings settings(path, dialix::optionsFileFormat());
        use(AssignmentStore(settings, AssignmentStore::OwnFile));
    };
    ownFile([](AssignmentStore store) { store.read(0, assignments, *page); });
    const QList<int> loaded = snapshot();
    ownFile([](AssignmentStore store) { store.write(0, assignments, *page); });
    ownFile([](AssignmentStore store) { store.read(0, assignments, *page); });
    if (snapshot() != loaded)
        failed("saving and loading again changed what was loaded");
    if (nothingToDecode(input))
        compareWithQt(input, parse(input));
    QFile::remove(path);
    return 0;
}
