#pragma once

// Session, a scripted operator session over the virtual panel.

#include <QObject>
#include <QString>
#include <QVector>

#include <functional>

class QWidget;
class PluginHost;
class LedRelay;

// A scripted operator session over the virtual panel: it enables the panel,
// assigns functions through the options page's menus, presses keys, turns the
// VFO and a function dial, keys PTT and the paddle, plugs in a second panel and
// unplugs it again, saves screenshots and ends. Each step waits a moment so
// that the plug-in's reader thread and timers do their work in between.
class Session : public QObject
{
    Q_OBJECT

public:
    Session(PluginHost *host, QWidget *hostWindow, int firstPanel, const QString &screenshotDir,
            QObject *parent = nullptr);

    void start();
    // Steps that failed (a control not found, a screenshot not saved).
    QStringList failures() const { return failed; }

signals:
    void say(const QString &line);
    // The session plugged or unplugged a virtual panel.
    void panelsChanged();
    void finished(bool ok);

private:
    using Step = std::function<void()>;
    void add(int delayMs, const QString &what, Step step);
    void next();

    QWidget *page(int index) const;
    void tick(int page, const char *checkBox, bool on);
    void assign(int page, const QString &button, const QString &function);
    void key(int panel, int k);
    // A key of the keyboard pressed or let go on the panel's window.
    void play(int panel, int qtKey, bool down);
    void screenshot(QWidget *widget, const QString &file);

    PluginHost *host;
    QWidget *hostWindow;
    int panel;
    int second = 0;
    QString dir;
    struct Entry
    {
        int delayMs;
        QString what;
        Step step;
    };
    QVector<Entry> steps;
    int current = 0;
    QStringList failed;
};
