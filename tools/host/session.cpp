// The scripted operator session of the reference host.

#include "session.h"

#include "command/qrvcommand.h"
#include "pluginhost.h"
#include "tools/virtualpanel/virtualpanel.h"
#include "virtualpanelwindow.h"

#include "interfaces/dialixabstract.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QKeyEvent>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

namespace {

QAction *findAction(QMenu *menu, const QString &text)
{
    if (!menu)
        return nullptr;
    for (QAction *action : menu->actions()) {
        if (action->menu()) {
            if (QAction *found = findAction(action->menu(), text))
                return found;
        } else if (action->text() == text) {
            return action;
        }
    }
    return nullptr;
}

} // namespace

Session::Session(PluginHost *pluginHost, QWidget *window, int firstPanel,
                 const QString &screenshotDir, QObject *parent)
    : QObject(parent)
    , host(pluginHost)
    , hostWindow(window)
    , panel(firstPanel)
    , dir(screenshotDir)
{
    const int p = panel;
    add(100, tr("enable panel 1 with its key and dial LEDs"), [this] {
        tick(0, "chbKeyLed", true);
        tick(0, "chbEncoderLed", true);
        tick(0, "chbEnable", true);
    });
    add(800, tr("assign functions to keys 1 to 6 and dial 1"), [this] {
        assign(0, QStringLiteral("pbFunc1"), QStringLiteral("Band Up"));
        assign(0, QStringLiteral("pbFunc2"), QStringLiteral("Mode Up"));
        assign(0, QStringLiteral("pbFunc3"), QStringLiteral("MOX"));
        assign(0, QStringLiteral("pbFunc4"), QStringLiteral("Volume Up"));
        assign(0, QStringLiteral("pbFunc5"), QStringLiteral("Change VFOA/VFOB"));
        assign(0, QStringLiteral("pbFunc6"), QStringLiteral("Switch Receiver"));
        assign(0, QStringLiteral("pbDial1"), QStringLiteral("Volume"));
    });
    add(200, tr("press key 1 (Band Up)"), [this, p] { key(p, 1); });
    add(200, tr("press key 2 (Mode Up)"), [this, p] { key(p, 2); });
    add(200, tr("press key 4 (Volume Up)"), [this, p] { key(p, 4); });
    add(200, tr("press key 5 (VFO B)"), [this, p] { key(p, 5); });
    add(200, tr("press key 6 (next receiver)"), [this, p] { key(p, 6); });
    add(300, tr("turn the VFO 5 steps up"), [p] { VirtualPanel::turnDial(p, 0, 5); });
    add(200, tr("turn the VFO 3 steps down"), [p] { VirtualPanel::turnDial(p, 0, -3); });
    add(200, tr("press key 5 again (back to VFO A)"), [this, p] { key(p, 5); });
    add(200, tr("press key 6 again (back to RX 1)"), [this, p] { key(p, 6); });
    add(200, tr("turn dial 1 (Volume) 2 steps down"), [p] { VirtualPanel::turnDial(p, 1, -2); });
    add(200, tr("key PTT"), [p] { VirtualPanel::setPtt(p, true); });
    add(400, tr("release PTT"), [p] { VirtualPanel::setPtt(p, false); });
    add(200, tr("paddle: dash, dot, release both"), [p] {
        VirtualPanel::setDash(p, true);
        VirtualPanel::setDot(p, true);
        VirtualPanel::setDash(p, false);
        VirtualPanel::setDot(p, false);
    });
    add(300, tr("press key 3 (MOX on)"), [this, p] { key(p, 3); });
    // Played through the panel window, as from the keyboard: the key and the
    // dial look pressed in the pictures, and the page lights key 7's button.
    add(200, tr("hold key 7 (W) and push dial 2 (F5) on the panel window's keyboard"), [this, p] {
        play(p, Qt::Key_W, true);
        play(p, Qt::Key_F5, true);
        if (!(VirtualPanel::switches(p) & (1u << 7)))
            failed << tr("the W key did not hold key 7 of panel %1").arg(p);
    });
    add(400, tr("screenshots while transmitting"), [this] {
        screenshot(hostWindow, QStringLiteral("host-window.png"));
        for (QWidget *w : QApplication::topLevelWidgets()) {
            if (auto *panelWindow = qobject_cast<VirtualPanelWindow *>(w))
                screenshot(panelWindow,
                           QStringLiteral("virtual-panel-%1.png").arg(panelWindow->panel()));
        }
    });
    add(100, tr("let key 7 and dial 2 go"), [this, p] {
        play(p, Qt::Key_W, false);
        play(p, Qt::Key_F5, false);
    });
    add(100, tr("press key 3 (MOX off)"), [this, p] { key(p, 3); });
    add(300, tr("plug a second panel"), [this] {
        second = VirtualPanel::plug(QStringLiteral("DLX0002"));
        host->commands()->deviceChanged();
        emit panelsChanged();
    });
    // Both controllers would open the first panel listed (the plug-in opens the
    // first enumerated serial number), so the second page is only shown.
    add(600, tr("show the page of panel 2"), [this] {
        if (auto *tabs = hostWindow->findChild<QTabWidget *>(QStringLiteral("DialixmainTab")))
            tabs->setCurrentIndex(tabs->count() - 1);
    });
    add(600, tr("screenshots with two panels"), [this] {
        screenshot(hostWindow, QStringLiteral("host-window-two-panels.png"));
        for (QWidget *w : QApplication::topLevelWidgets()) {
            auto *panelWindow = qobject_cast<VirtualPanelWindow *>(w);
            if (panelWindow && panelWindow->panel() == second)
                screenshot(panelWindow, QStringLiteral("virtual-panel-2.png"));
        }
    });
    add(100, tr("unplug the second panel"), [this] {
        VirtualPanel::unplug(second);
        host->commands()->deviceChanged();
        emit panelsChanged();
    });
    add(500, tr("done"), [] {});
}

void Session::add(int delayMs, const QString &what, Step step)
{
    steps.append({delayMs, what, std::move(step)});
}

void Session::start()
{
    current = 0;
    next();
}

void Session::next()
{
    if (current >= steps.size()) {
        emit finished(failed.isEmpty());
        return;
    }
    QTimer::singleShot(steps[current].delayMs, this, [this] {
        const Entry &e = steps[current++];
        emit say(tr("step: %1").arg(e.what));
        e.step();
        next();
    });
}

QWidget *Session::page(int index) const
{
    auto *tabs = hostWindow->findChild<QTabWidget *>(QStringLiteral("DialixmainTab"));
    return tabs ? tabs->widget(index) : nullptr;
}

void Session::tick(int pageIndex, const char *checkBox, bool on)
{
    QWidget *p = page(pageIndex);
    auto *box = p ? p->findChild<QCheckBox *>(QLatin1String(checkBox)) : nullptr;
    if (!box) {
        failed << tr("no check box %1 on page %2").arg(QLatin1String(checkBox)).arg(pageIndex + 1);
        return;
    }
    box->setChecked(on);
}

void Session::assign(int pageIndex, const QString &button, const QString &function)
{
    QWidget *p = page(pageIndex);
    auto *b = p ? p->findChild<QPushButton *>(button) : nullptr;
    // The menus speak the operator's language: the plug-in's translator, in this
    // application, knows its labels under the context of its options page.
    const QString label =
        QCoreApplication::translate("DialixOptions", function.toLatin1().constData());
    QAction *action = b ? findAction(b->menu(), label) : nullptr;
    if (!action) {
        failed << tr("cannot assign %1 to %2").arg(function, button);
        return;
    }
    action->trigger();
    emit say(tr("assigned: %1 -> %2 (button shows \"%3\")").arg(button, function, b->text()));
}

void Session::key(int p, int k)
{
    VirtualPanel::pressKey(p, k);
    VirtualPanel::releaseKey(p, k);
}

void Session::play(int p, int qtKey, bool down)
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        auto *panelWindow = qobject_cast<VirtualPanelWindow *>(w);
        if (!panelWindow || panelWindow->panel() != p)
            continue;
        QKeyEvent event(down ? QEvent::KeyPress : QEvent::KeyRelease, qtKey, Qt::NoModifier);
        QCoreApplication::sendEvent(panelWindow, &event);
        return;
    }
    failed << tr("no window for panel %1").arg(p);
}

void Session::screenshot(QWidget *widget, const QString &file)
{
    const QString path = QDir(dir).filePath(file);
    if (!QDir().mkpath(dir) || !widget->grab().save(path)) {
        failed << tr("cannot save %1").arg(path);
        return;
    }
    emit say(tr("screenshot: %1").arg(QDir::cleanPath(QDir::current().absoluteFilePath(path))));
}
