// The function tables' labels and sub-menu lookups.

#include "plugins/panels/dialix/source/functiontable.h"

#include <QCoreApplication>

namespace dialix {

namespace {
QString translated(QLatin1String source)
{
    if (source.isEmpty())
        return QString();
    return QCoreApplication::translate("DialixOptions", source.data());
}
} // namespace

QString buttonFunctionText(int id)
{
    return translated(buttonFunctionLabel(id));
}
QString buttonFunctionShortText(int id)
{
    return translated(buttonFunctionShortLabel(id));
}
QString dialFunctionText(int id)
{
    return translated(dialFunctionLabel(id));
}
QString dialFunctionShortText(int id)
{
    return translated(dialFunctionShortLabel(id));
}
QString subMenuText(SubMenu menu)
{
    return translated(subMenuTitle(menu));
}

QVector<int> subMenuFunctions(SubMenu menu)
{
    QVector<int> ids;
    const int size = subMenuSize(menu);
    ids.reserve(size);
    for (int place = 0; place < size; ++place)
        ids.append(subMenuFunction(menu, place));
    return ids;
}

} // namespace dialix
