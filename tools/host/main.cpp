// The reference host: a small radio application that loads a panel plug-in the
// way the real host does, and shows the virtual panels when the plug-in runs
// over them.
//
//   dialix-host [--plugin PATH] [--script] [--screenshots DIR] [--settings FILE]
//               [--rig HOST:PORT | --rig-model N [--rig-port DEVICE] [--rig-speed BAUD]]
//               [--rig-trace] [--rig-map]
//
// --script plays a scripted operator session, prints every command the
// plug-in sends and every LED change, saves screenshots and exits (0 when all
// went through). Without a display the host runs offscreen and, over the
// virtual panels, plays the session, since nobody could use its windows.
// Otherwise the host runs until its window is closed or it gets SIGTERM or
// SIGINT; either way it closes the panels as the real host does. The plug-in's
// tabs are printed whenever their number changes.
//
// Without --rig or --rig-model the panel drives the host's simulated radio.
// --rig joins a running rigctld; --rig-model starts rigctld for that Hamlib
// model on a free loopback port and stops it at exit. --rig-trace prints every
// line exchanged with rigctld, --rig-map the table from panel commands to
// Hamlib commands.
//
// By default the host loads the virtual-panel plug-in from where the package
// installs it beside the program (or from the build tree), and keeps its
// settings and screenshots in the user's folders (~/.config/dialix-host,
// ~/Pictures/dialix-host).

#include "command/qrvcommand.h"
#include "hostwindow.h"
#include "pluginhost.h"
#include "session.h"
#include "tools/virtualpanel/virtualpanel.h"
#include "virtualpanelwindow.h"

#include "interfaces/dialixabstract.h"

#ifdef DIALIX_HOST_HAMLIB
#include "hamlibradio.h"
#include "rigctldprocess.h"
#include "rigmap.h"
#endif

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QPointer>
#include <QSettings>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTextStream>
#include <QTimer>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <vector>

namespace {

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

// Qt's offscreen platform says this for every window it shows; it means nothing here.
QtMessageHandler defaultHandler = nullptr;
void quietHandler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (message.contains(QLatin1String("propagateSizeHints")))
        return;
    defaultHandler(type, context, message);
}

void print(const QString &kind, const QString &line)
{
    out() << kind.leftJustified(8) << line << Qt::endl;
}

std::atomic<bool> stopRequested {false};
extern "C" void requestStop(int)
{
    stopRequested.store(true);
}

// The virtual-panel plug-in, relative to this program: where the package puts
// it, then where the build tree has it.
QString defaultPlugin()
{
    const QDir here(QApplication::applicationDirPath());
    const QStringList candidates {
#ifdef DIALIX_INSTALLED_PLUGIN
        QStringLiteral(DIALIX_INSTALLED_PLUGIN),
#endif
        QStringLiteral(DIALIX_BUILD_PLUGIN)};
    for (const QString &candidate : candidates) {
        const QString path = QDir::cleanPath(here.filePath(candidate));
        if (QFileInfo::exists(path))
            return path;
    }
    return QDir::cleanPath(here.filePath(candidates.constFirst()));
}

// A file or folder of this user's, below one of the XDG locations.
QString userPath(QStandardPaths::StandardLocation location, const QString &name)
{
    return QDir(QStandardPaths::writableLocation(location)).filePath(name);
}

} // namespace

int main(int argc, char *argv[])
{
    defaultHandler = qInstallMessageHandler(quietHandler);

    // No display to connect to (a console, ssh): run offscreen rather than fail.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    // QGuiApplication takes "-plugin" for its own generic plug-ins; ours must
    // not reach it.
    QStringList args;
    std::vector<char *> qtArgv;
    for (int i = 0; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        args << QString::fromLocal8Bit(arg);
        if ((arg == "--plugin" || arg == "-plugin") && i + 1 < argc) {
            args << QString::fromLocal8Bit(argv[++i]);
            continue;
        }
        if (arg.startsWith("--plugin=") || arg.startsWith("-plugin="))
            continue;
        qtArgv.push_back(argv[i]);
    }
    int qtArgc = int(qtArgv.size());
    qtArgv.push_back(nullptr);
    QApplication app(qtArgc, qtArgv.data());
    QApplication::setApplicationName(QStringLiteral("dialix-host"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QApplication::translate("main", "Dialix reference host"));
    parser.addHelpOption();
    const QCommandLineOption pluginOption(QStringLiteral("plugin"),
                                          QApplication::translate("main", "Plug-in file to load."),
                                          QStringLiteral("path"), defaultPlugin());
    const QCommandLineOption sessionOption(
        QStringLiteral("script"),
        QApplication::translate("main", "Play the scripted operator session and exit."));
    const QCommandLineOption shotsOption(
        QStringLiteral("screenshots"),
        QApplication::translate("main", "Directory for the session's screenshots."),
        QStringLiteral("dir"),
        userPath(QStandardPaths::PicturesLocation, QStringLiteral("dialix-host")));
    const QCommandLineOption settingsOption(
        QStringLiteral("settings"), QApplication::translate("main", "The host's settings file."),
        QStringLiteral("file"),
        userPath(QStandardPaths::AppConfigLocation, QStringLiteral("host.ini")));
    const QCommandLineOption rigOption(
        QStringLiteral("rig"), QApplication::translate("main", "Join the rigctld at this address."),
        QStringLiteral("host:port"));
    const QCommandLineOption rigModelOption(
        QStringLiteral("rig-model"),
        QApplication::translate("main", "Start rigctld for this Hamlib radio model."),
        QStringLiteral("n"));
    const QCommandLineOption rigPortOption(
        QStringLiteral("rig-port"),
        QApplication::translate("main", "The radio's serial port or address, for --rig-model."),
        QStringLiteral("device"));
    const QCommandLineOption rigSpeedOption(
        QStringLiteral("rig-speed"),
        QApplication::translate("main", "The radio's serial speed, for --rig-model."),
        QStringLiteral("baud"));
    const QCommandLineOption rigTraceOption(
        QStringLiteral("rig-trace"),
        QApplication::translate("main", "Print every line exchanged with rigctld."));
    const QCommandLineOption rigMapOption(
        QStringLiteral("rig-map"),
        QApplication::translate("main", "Print how panel commands reach a Hamlib radio and exit."));
    parser.addOptions({pluginOption, sessionOption, shotsOption, settingsOption, rigOption,
                       rigModelOption, rigPortOption, rigSpeedOption, rigTraceOption,
                       rigMapOption});
    parser.process(args);
#ifdef DIALIX_HOST_HAMLIB
    if (parser.isSet(rigMapOption)) {
        out() << rig::tableText() << Qt::endl;
        return 0;
    }
#else
    if (parser.isSet(rigMapOption) || parser.isSet(rigOption) || parser.isSet(rigModelOption)) {
        print(QStringLiteral("error"),
              QStringLiteral(
                  "this build of the host has no Hamlib radio (built without Qt Network)"));
        return 1;
    }
#endif
    // The session starts from the plug-in's defaults: it forgets the panel
    // assignments that earlier runs left beside the host.
    if (parser.isSet(sessionOption))
        QFile::remove(QApplication::applicationDirPath() + QStringLiteral("/options.ini"));

    // The relay listens for LED reports before any panel opens.
    LedRelay relay;
    // A panel on the virtual bus from the start, so the plug-in finds one.
    const int firstPanel = VirtualPanel::plug(QStringLiteral("DLX0001"));

    // A Hamlib radio instead of the simulated one. It outlives the host, which
    // goes with the plug-in that borrows it.
#ifdef DIALIX_HOST_HAMLIB
    RigctldProcess rigctld;
    HamlibRadio hamlib;
#endif
    PluginHost host;
#ifdef DIALIX_HOST_HAMLIB
    const bool useRig = parser.isSet(rigOption) || parser.isSet(rigModelOption);
    if (useRig) {
        QString rigHost = QStringLiteral("127.0.0.1");
        int rigPort = 4532;
        if (parser.isSet(rigOption)) {
            const QString address = parser.value(rigOption);
            const int colon = address.lastIndexOf(QLatin1Char(':'));
            if (colon > 0) {
                rigHost = address.left(colon);
                rigPort = address.mid(colon + 1).toInt();
            } else if (!address.isEmpty()) {
                rigHost = address;
            }
        } else {
            RigctldProcess::Radio radio;
            radio.model = parser.value(rigModelOption).toInt();
            radio.device = parser.value(rigPortOption);
            radio.speed = parser.value(rigSpeedOption).toInt();
            if (!rigctld.start(radio)) {
                print(QStringLiteral("error"), rigctld.errorString());
                return 1;
            }
            rigPort = rigctld.port();
            print(QStringLiteral("rigctld"),
                  QStringLiteral("rigctld %1").arg(rigctld.arguments().join(QLatin1Char(' '))));
            QObject::connect(&rigctld, &RigctldProcess::ended, &app,
                             [](const QString &why) { print(QStringLiteral("error"), why); });
        }
        if (rigPort <= 0 || rigPort > 65535) {
            print(QStringLiteral("error"),
                  QStringLiteral("not a rigctld address: %1").arg(parser.value(rigOption)));
            return 1;
        }
        if (parser.isSet(rigTraceOption))
            QObject::connect(hamlib.connection(), &RigctlConnection::trace, &app,
                             [](const QString &line) { print(QStringLiteral("rigctl"), line); });
        host.setRadio(&hamlib);
        hamlib.open(rigHost, quint16(rigPort));
    }
#endif
    // QPluginLoader looks for relative names in the library paths; the user
    // means the current directory.
    QString path = parser.value(pluginOption);
    if (QFileInfo::exists(path))
        path = QFileInfo(path).absoluteFilePath();
    if (!host.load(path)) {
        print(QStringLiteral("error"), host.errorString());
        return 1;
    }
    const QJsonObject data = host.metaData().value(QLatin1String("MetaData")).toObject();
    print(QStringLiteral("plugin"),
          QStringLiteral("%1 %2 (%3, class %4) from %5")
              .arg(data.value(QLatin1String("name")).toString(),
                   data.value(QLatin1String("version")).toString(), host.plugin()->name(),
                   host.metaData().value(QLatin1String("className")).toString(), path));
    // A plug-in over the virtual panel has enumerated the virtual bus while it
    // was created; one over the real hidapi has not.
    const bool virtualBus = VirtualPanel::enumerations() > 0;
    if (!virtualBus)
        VirtualPanel::unplug(firstPanel);
    // Virtual panels nobody sees cannot be played: offscreen, the host plays
    // the session over them.
    const bool scripted = parser.isSet(sessionOption)
        || (virtualBus && QApplication::platformName() == QLatin1String("offscreen"));

    HostWindow window(&host, virtualBus);
    const QString settingsFile = parser.value(settingsOption);
    QDir().mkpath(QFileInfo(settingsFile).absolutePath());
    QSettings settings(settingsFile, QSettings::IniFormat);
    host.bind(window.pluginLayout(), &settings, 2);

    QObject::connect(
        &host, &PluginHost::commandReceived, &app,
        [](const QVariant &, const QString &text) { print(QStringLiteral("command"), text); });
    QObject::connect(host.radio(), &RadioBackend::changed, &app,
                     [](const QString &line) { print(QStringLiteral("radio"), line); });
    QObject::connect(host.cwKey(), &HostCwKey::key, &app,
                     [](quint32 trx, quint32 src, bool dash, bool dot) {
                         print(QStringLiteral("paddle"),
                               QStringLiteral("trx %1 src %2 dash %3 dot %4")
                                   .arg(trx)
                                   .arg(src)
                                   .arg(dash ? "closed" : "open", dot ? "closed" : "open"));
                     });
    QObject::connect(&relay, &LedRelay::ledChanged, &app, [&window](int panel, int, int mask) {
        const QString line = QStringLiteral("panel %1: %2 (0x%3)")
                                 .arg(panel)
                                 .arg(LedRelay::describe(mask))
                                 .arg(mask, 2, 16, QLatin1Char('0'));
        print(QStringLiteral("led"), line);
        window.log(QStringLiteral("led: ") + line);
    });

    // One window per virtual panel, following plugs and unplugs.
    QHash<int, QPointer<VirtualPanelWindow>> panelWindows;
    auto showPanels = [&] {
        if (!virtualBus)
            return;
        const QList<int> plugged = VirtualPanel::panels();
        for (auto it = panelWindows.begin(); it != panelWindows.end();) {
            if (!plugged.contains(it.key())) {
                delete it.value().data();
                it = panelWindows.erase(it);
            } else {
                ++it;
            }
        }
        int offset = 0;
        for (int id : plugged) {
            if (!panelWindows.contains(id)) {
                auto *w = new VirtualPanelWindow(id, &relay);
                w->setAttribute(Qt::WA_DeleteOnClose);
                w->move(window.x() + window.width() + 10, window.y() + offset);
                w->show();
                panelWindows.insert(id, w);
            }
            offset += 360;
        }
    };
    QObject::connect(&window, &HostWindow::plugRequested, &app, [&] {
        VirtualPanel::plug(QStringLiteral("DLX%1").arg(VirtualPanel::panels().size() + 1, 4, 10,
                                                       QLatin1Char('0')));
        host.commands()->deviceChanged();
        showPanels();
    });
    QObject::connect(&window, &HostWindow::unplugRequested, &app, [&] {
        const QList<int> plugged = VirtualPanel::panels();
        if (plugged.isEmpty())
            return;
        VirtualPanel::unplug(plugged.last());
        host.commands()->deviceChanged();
        showPanels();
    });

    window.show();
    showPanels();

    // A stop request ends the event loop like closing the window; the tab
    // titles are printed whenever their number changes.
    std::signal(SIGTERM, requestStop);
    std::signal(SIGINT, requestStop);
    QTimer watch;
    int tabCount = -1;
    QObject::connect(&watch, &QTimer::timeout, &app, [&] {
        if (stopRequested.load())
            app.quit();
        auto *tabs = window.findChild<QTabWidget *>(QStringLiteral("DialixmainTab"));
        if (!tabs || tabs->count() == tabCount)
            return;
        tabCount = tabs->count();
        QStringList titles;
        for (int i = 0; i < tabCount; ++i)
            titles << tabs->tabText(i);
        print(QStringLiteral("tabs"), titles.join(QStringLiteral(", ")));
    });
    watch.start(100);

    int result = 0;
    Session *session = nullptr;
    if (scripted) {
        if (!virtualBus) {
            print(QStringLiteral("error"),
                  QStringLiteral("the session needs the virtual-panel plug-in"));
            return 1;
        }
        session = new Session(&host, &window, firstPanel, parser.value(shotsOption), &app);
        QObject::connect(session, &Session::say, &app, [&window](const QString &line) {
            print(QStringLiteral("session"), line);
            window.log(line);
        });
        QObject::connect(session, &Session::panelsChanged, &app, showPanels);
        QObject::connect(session, &Session::finished, &app, [&](bool ok) {
            for (const QString &f : session->failures())
                print(QStringLiteral("failed"), f);
            showPanels();
            result = ok ? 0 : 2;
            app.quit();
        });
        session->start();
    }
    const int code = app.exec();
    host.shutDown();
#ifdef DIALIX_HOST_HAMLIB
    if (useRig)
        hamlib.shutDown();
#endif
    qDeleteAll(panelWindows);
    return scripted ? result : code;
}
