// Reading and writing the options page's keys.

#include "plugins/panels/dialix/source/optionkeys.h"
#include "plugins/panels/dialix/source/dialixoptions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QSettings>
#include <QSpinBox>

#include <optional>

namespace {

using dialix::OptionKey;
using dialix::OptionType;

// What a value that is missing, out of range or not understood becomes.
enum class Fallback {
    TableDefault, // the key's default from the table
    CurrentState // the control keeps its state
};

const QString OptionsGroup = QStringLiteral("Options");

// A bool as QSettings gives it back: a bool, "true"/"false" (any case), or a
// whole number (non-zero is true). Anything else is not a bool.
std::optional<bool> toBool(const QVariant &value)
{
    if (value.userType() == QMetaType::Bool)
        return value.toBool();
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true"))
        return true;
    if (text == QLatin1String("false"))
        return false;
    bool ok = false;
    const int number = text.toInt(&ok);
    if (ok)
        return number != 0;
    return std::nullopt;
}

std::optional<int> toInt(const QVariant &value)
{
    if (value.userType() == QMetaType::Int)
        return value.toInt();
    bool ok = false;
    const int number = value.toString().trimmed().toInt(&ok);
    if (ok)
        return number;
    return std::nullopt;
}

void writeKey(const DialixOptions &page, QSettings &settings, const OptionKey &key)
{
    const QString name = QLatin1String(key.key);
    const QString control = QLatin1String(key.control);
    switch (key.type) {
    case OptionType::Bool:
        if (auto *box = page.findChild<QCheckBox *>(control))
            settings.setValue(name, box->isChecked());
        break;
    case OptionType::SpinBox:
        if (auto *box = page.findChild<QSpinBox *>(control))
            settings.setValue(name, box->value());
        break;
    case OptionType::Index:
        if (auto *box = page.findChild<QComboBox *>(control))
            settings.setValue(name, box->currentIndex());
        break;
    case OptionType::Text:
        if (auto *box = page.findChild<QComboBox *>(control))
            settings.setValue(name, box->currentText());
        break;
    }
}

void readKey(DialixOptions &page, QSettings &settings, const OptionKey &key, Fallback fallback)
{
    const QString name = QLatin1String(key.key);
    const QString control = QLatin1String(key.control);
    const bool keep = fallback == Fallback::CurrentState;
    switch (key.type) {
    case OptionType::Bool:
        if (auto *box = page.findChild<QCheckBox *>(control)) {
            const bool preset = keep ? box->isChecked() : key.defaultValue != 0;
            box->setChecked(toBool(settings.value(name, preset)).value_or(preset));
        }
        break;
    case OptionType::SpinBox:
        if (auto *box = page.findChild<QSpinBox *>(control)) {
            const int preset = keep ? box->value() : key.defaultValue;
            std::optional<int> value = toInt(settings.value(name, preset));
            if (!value || *value < box->minimum() || *value > box->maximum())
                value = preset;
            box->setValue(*value);
        }
        break;
    case OptionType::Index:
        if (auto *box = page.findChild<QComboBox *>(control)) {
            const int preset = keep ? box->currentIndex() : key.defaultValue;
            std::optional<int> value = toInt(settings.value(name, preset));
            if (!value || *value < 0 || *value >= box->count())
                value = preset;
            box->setCurrentIndex(*value);
        }
        break;
    case OptionType::Text:
        // A name that is not (or no longer) in the list leaves the selection alone.
        if (auto *box = page.findChild<QComboBox *>(control)) {
            if (!settings.contains(name))
                break;
            const int found = box->findText(settings.value(name).toString(),
                                            Qt::MatchExactly | Qt::MatchCaseSensitive);
            if (found >= 0)
                box->setCurrentIndex(found);
        }
        break;
    }
}

void writeAll(const DialixOptions &page, QSettings *settings)
{
    if (!settings)
        return;
    settings->beginGroup(OptionsGroup);
    for (const OptionKey &key : dialix::optionKeys)
        writeKey(page, *settings, key);
    settings->endGroup();
}

void readAll(DialixOptions &page, QSettings *settings, const dialix::OptionReadOrder &order,
             Fallback fallback)
{
    if (!settings)
        return;
    settings->beginGroup(OptionsGroup);
    for (int row : order)
        readKey(page, *settings, dialix::optionKeys[row], fallback);
    settings->endGroup();
}

} // namespace

void DialixOptions::writeOptionKeys(QSettings *settings)
{
    writeAll(*this, settings);
}

void DialixOptions::readOptionKeys(QSettings *settings)
{
    readAll(*this, settings, dialix::ownFileReadOrder, Fallback::TableDefault);
}

void DialixOptions::writeHostOptionKeys(QSettings *settings)
{
    writeAll(*this, settings);
}

void DialixOptions::readHostOptionKeys(QSettings *settings)
{
    readAll(*this, settings, dialix::hostReadOrder, Fallback::CurrentState);
}
