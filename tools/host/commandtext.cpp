// Command messages as an operator reads them.

#include "commandtext.h"

#include "command/commandtable.h"

#include <QStringList>

namespace {

// Words that operators write in capitals.
const QStringList acronyms {"ADC", "AGC", "ANF", "BIN", "CTCSS", "CW",  "FFT", "IF", "IQ",
                            "MOX", "NB1", "NB2", "NR",  "PA",    "PTT", "RIT", "RX", "SQL",
                            "SSB", "SWR", "TRX", "TX",  "VAC",   "VFO", "VOX", "XIT"};

QString capitals(const QString &word)
{
    const QString upper = word.toUpper();
    return acronyms.contains(upper) ? upper : word;
}

// "panelNb1Change" -> "NB1 Change", "panelVFO" -> "VFO", "rxAgcGain" -> "RX AGC Gain".
QString words(QString name)
{
    if (name.startsWith(QLatin1String("panel")) && name.size() > 5)
        name.remove(0, 5);
    QString out;
    for (int i = 0; i < name.size(); ++i) {
        const QChar c = name.at(i);
        const bool boundary = i > 0 && c.isUpper()
            && (name.at(i - 1).isLower() || name.at(i - 1).isDigit()
                || (i + 1 < name.size() && name.at(i + 1).isLower() && name.at(i - 1).isUpper()));
        if (boundary)
            out += QLatin1Char(' ');
        out += out.isEmpty() ? c.toUpper() : c;
    }
    QStringList list = out.split(QLatin1Char(' '));
    for (QString &word : list)
        word = capitals(word);
    return list.join(QLatin1Char(' '));
}

QString label(const char *param)
{
    const QLatin1String name(param);
    if (name == QLatin1String("receiver"))
        return QStringLiteral("rx");
    if (name == QLatin1String("channel"))
        return QStringLiteral("ch");
    if (name == QLatin1String("tranceiver") || name == QLatin1String("transmitter"))
        return QStringLiteral("trx");
    return name;
}

QString value(const QVariant &v)
{
    if (v.userType() == QMetaType::Bool)
        return v.toBool() ? QStringLiteral("on") : QStringLiteral("off");
    if (v.userType() == QMetaType::QVariantList)
        return QStringLiteral("[%1 values]").arg(v.toList().size());
    return v.toString();
}

} // namespace

QString commandText(const QVariant &message)
{
    const QVariantList list = message.toList();
    if (message.userType() != QMetaType::QVariantList || list.isEmpty())
        return qrv::describe(message);
    const qrv::Method *m = qrv::encoderFor(list.first().toInt(), list.size() - 1);
    if (!m)
        return qrv::describe(message);
    QStringList parts {words(QLatin1String(m->name))};
    int shown = m->argc;
    if (qrv::isChangeOverRequest(*m)) {
        parts << QStringLiteral("(toggle)");
        // The flag says nothing while it is the panel's fixed "false".
        if (list.size() > m->argc && !list.at(m->argc).toBool())
            --shown;
    }
    for (int i = 0; i < shown && i + 1 < list.size(); ++i)
        parts << label(m->params[i].name) << value(list.at(i + 1));
    return parts.join(QLatin1Char(' '));
}
