// dialix-probe's back end for the virtual panel: plugs in simulated panels.

#include "tools/probe/backend.h"

#include "tools/virtualpanel/virtualpanel.h"

#include <QCoreApplication>
#include <QList>
#include <QRegularExpression>

// The virtual-panel build of the probe. The simulated panels live in this
// process, so they are described on the way in, by the environment variable
// DIALIX_PROBE_SCENARIO: commands separated by ';' or new lines, panels
// numbered from 1 in plug order:
//
//   plug SERIAL [PRODUCT]      plug in a panel
//   deny P                     opening panel P fails with "Permission denied"
//   key P K down|up            key K (0..14)
//   dialpush P D down|up       push on dial D (0..3)
//   turn P D STEPS             turn dial D by STEPS (negative: the other way)
//   ptt|dash|dot P down|up     PTT input, paddle contacts
//   raw P HEX                  one raw input report, e.g. "00 01 00 00"
//   readerror P                one read fails (as when the panel is unplugged)
//   writesfail P               every write to panel P fails
//
// Input is queued before the probe runs and read once it opens the panel. At
// the end the LED masks that each panel received are written to stderr, so
// that a test can see what --leds did.

namespace {

QList<int> plugged;

bool fail(QTextStream &err, const QString &command, const QString &why)
{
    err << "DIALIX_PROBE_SCENARIO: " << why << ": '" << command << "'\n";
    return false;
}

bool upDown(const QString &word, bool *down)
{
    if (word == QLatin1String("down"))
        *down = true;
    else if (word == QLatin1String("up"))
        *down = false;
    else
        return false;
    return true;
}

bool runCommand(const QString &command, QTextStream &err)
{
    const QStringList words = command.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const QString verb = words.value(0);
    if (verb == QLatin1String("plug")) {
        if (words.size() < 2)
            return fail(err, command, QStringLiteral("plug wants a serial number"));
        VirtualPanel::PanelInfo info;
        info.serial = words.at(1);
        if (words.size() > 2)
            info.product = words.mid(2).join(QLatin1Char(' '));
        plugged.append(VirtualPanel::plug(info));
        return true;
    }

    bool ok = false;
    const int number = words.value(1).toInt(&ok);
    if (!ok || number < 1 || number > plugged.size())
        return fail(err, command, QStringLiteral("no such panel"));
    const int panel = plugged.at(number - 1);
    const auto arg = [&](int i, bool *good) {
        return words.value(i).toInt(good);
    };
    bool down = false;

    if (verb == QLatin1String("deny") && words.size() == 2) {
        VirtualPanel::setOpenFails(panel, true);
    } else if (verb == QLatin1String("readerror") && words.size() == 2) {
        VirtualPanel::queueReadError(panel);
    } else if (verb == QLatin1String("writesfail") && words.size() == 2) {
        VirtualPanel::setWritesFail(panel, true);
    } else if (verb == QLatin1String("key") && words.size() == 4 && upDown(words.at(3), &down)) {
        const int key = arg(2, &ok);
        if (!ok)
            return fail(err, command, QStringLiteral("bad key"));
        if (down)
            VirtualPanel::pressKey(panel, key);
        else
            VirtualPanel::releaseKey(panel, key);
    } else if (verb == QLatin1String("dialpush") && words.size() == 4
               && upDown(words.at(3), &down)) {
        const int dial = arg(2, &ok);
        if (!ok)
            return fail(err, command, QStringLiteral("bad dial"));
        VirtualPanel::pushDial(panel, dial, down);
    } else if (verb == QLatin1String("turn") && words.size() == 4) {
        bool deltaOk = false;
        const int dial = arg(2, &ok);
        const int delta = arg(3, &deltaOk);
        if (!ok || !deltaOk)
            return fail(err, command, QStringLiteral("bad dial or steps"));
        VirtualPanel::turnDial(panel, dial, delta);
    } else if ((verb == QLatin1String("ptt") || verb == QLatin1String("dash")
                || verb == QLatin1String("dot"))
               && words.size() == 3 && upDown(words.at(2), &down)) {
        if (verb == QLatin1String("ptt"))
            VirtualPanel::setPtt(panel, down);
        else if (verb == QLatin1String("dash"))
            VirtualPanel::setDash(panel, down);
        else
            VirtualPanel::setDot(panel, down);
    } else if (verb == QLatin1String("raw") && words.size() >= 3) {
        const QByteArray hex = words.mid(2).join(QString()).toLatin1();
        VirtualPanel::queueReport(panel, QByteArray::fromHex(hex));
    } else {
        return fail(err, command, QStringLiteral("unknown command"));
    }
    return true;
}

} // namespace

bool prepareBackend(QTextStream &err)
{
    plugged.clear();
    const QString scenario = qEnvironmentVariable("DIALIX_PROBE_SCENARIO");
    const QStringList commands =
        scenario.split(QRegularExpression(QStringLiteral("[;\\n]")), Qt::SkipEmptyParts);
    for (const QString &command : commands) {
        if (command.trimmed().isEmpty())
            continue;
        if (!runCommand(command.trimmed(), err)) {
            err.flush();
            return false;
        }
    }
    return true;
}

void finishBackend(QTextStream &err)
{
    for (int i = 0; i < plugged.size(); ++i) {
        const QList<quint8> masks = VirtualPanel::ledMasks(plugged.at(i));
        if (masks.isEmpty())
            continue;
        QStringList hex;
        for (quint8 mask : masks)
            hex << QStringLiteral("%1").arg(mask, 2, 16, QLatin1Char('0'));
        err << "virtual panel " << i + 1 << " received LED masks: " << hex.join(QLatin1Char(' '))
            << '\n';
    }
    err.flush();
}
