// The assignments and the options page of one panel in a settings object.

#include "plugins/panels/dialix/source/assignmentstore.h"

#include "interfaces/dialixlogging.h"
#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/functiontable.h"

#include <QSettings>

#include <exception>

using dialix::Assignments;

namespace {

QString keyKey(int n)
{
    return QStringLiteral("FunctionButton") + QString::number(n - 1);
}

// A stored position, or "Unused" when it is missing, not a number or not an id.
int position(QSettings &settings, const QString &key, bool (*isFunction)(int))
{
    bool ok = false;
    const int id = settings.value(key, 0).toInt(&ok);
    return ok && isFunction(id) ? id : 0;
}

} // namespace

AssignmentStore::AssignmentStore(QSettings &settings, Layout layout)
    : settings(settings)
    , layout(layout)
{ }

QString AssignmentStore::groupName(int number)
{
    return QStringLiteral("Dialix") + QString::number(number + 1);
}

// The own file numbers the dials from -1; files written earlier depend on it.
QString AssignmentStore::dialKey(int j) const
{
    return QStringLiteral("FunctionDial") + QString::number(layout == OwnFile ? j - 1 : j);
}

void AssignmentStore::write(int number, const Assignments &assignments, DialixOptions &page)
{
    settings.beginGroup(groupName(number));
    for (int n = 1; n <= Assignments::KeyCount; ++n)
        settings.setValue(keyKey(n), assignments.keys[n - 1]);
    for (int j = 0; j < Assignments::DialCount; ++j)
        settings.setValue(dialKey(j), assignments.dials[j]);
    if (layout == OwnFile)
        page.writeOptionKeys(&settings);
    else
        page.writeHostOptionKeys(&settings);
    settings.endGroup();
}

// The host's settings object decodes serialised values (the own file's format
// never does): a damaged one ("@Variant(...)") can have a length field that
// makes Qt allocate without limit, and QSettings::value() then throws
// std::bad_alloc; nothing may throw into the host.
void AssignmentStore::read(int number, Assignments &assignments, DialixOptions &page)
{
    const QString group = settings.group();
    try {
        settings.beginGroup(groupName(number));
        for (int n = 1; n <= Assignments::KeyCount; ++n)
            assignments.keys[n - 1] = position(settings, keyKey(n), dialix::isButtonFunction);
        for (int j = 0; j < Assignments::DialCount; ++j)
            assignments.dials[j] = position(settings, dialKey(j), dialix::isDialFunction);
        if (layout == OwnFile)
            page.readOptionKeys(&settings);
        else
            page.readHostOptionKeys(&settings);
        settings.endGroup();
    } catch (const std::exception &e) {
        qCDebug(dialixLog) << Q_FUNC_INFO << e.what();
        for (int depth = 0; depth < 8 && settings.group() != group; ++depth)
            settings.endGroup();
    }
}
