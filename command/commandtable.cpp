// The command table's lookups by id and by name.

#include "command/commandtable.h"

#include <QStringList>

namespace qrv {

QByteArray signature(const Method &method, bool withNames)
{
    QByteArray s = method.name;
    s += '(';
    for (int i = 0; i < method.argc; ++i) {
        if (i > 0)
            s += withNames ? ", " : ",";
        s += method.params[i].type;
        if (withNames && *method.params[i].name) {
            s += ' ';
            s += method.params[i].name;
        }
    }
    s += ')';
    return withNames ? s : QMetaObject::normalizedSignature(s.constData());
}

const Method *encoderFor(int id, int elementCount)
{
    for (const Method &m : encoders) {
        if (m.id == id && m.wireCount == elementCount)
            return &m;
    }
    return nullptr;
}

namespace {

QString valueText(const QVariant &v)
{
    if (v.userType() == QMetaType::QVariantList) {
        QStringList items;
        for (const QVariant &e : v.toList())
            items << valueText(e);
        return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    if (v.userType() == QMetaType::Bool)
        return v.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    return v.toString();
}

} // namespace

QString describe(const QVariant &message)
{
    if (message.userType() != QMetaType::QVariantList)
        return QStringLiteral("(not a message)");
    const QVariantList list = message.toList();
    if (list.isEmpty())
        return QStringLiteral("(empty message)");
    const int id = list.at(0).toInt();
    const int count = list.size() - 1;
    const Method *m = encoderFor(id, count);
    if (!m) {
        // Not what an encoder sends: name it after the signal it decodes to.
        for (const Method &s : decodedSignals) {
            if (s.id == id) {
                m = &s;
                break;
            }
        }
    }
    if (!m || uint(id) >= uint(commandCount))
        return QStringLiteral("(unknown command %1)").arg(valueText(list.at(0)));

    QStringList args;
    for (int i = 0; i < count; ++i) {
        const QString value = valueText(list.at(i + 1));
        const char *name = i < m->argc ? m->params[i].name : "";
        args << (*name ? QString::fromLatin1(name) + QLatin1Char('=') + value : value);
    }
    return QString::fromLatin1(m->name) + QLatin1Char('(') + args.join(QStringLiteral(", "))
        + QLatin1Char(')');
}

} // namespace qrv
