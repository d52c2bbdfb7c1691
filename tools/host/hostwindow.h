#pragma once

// HostWindow, the reference host's main window.

#include <QMainWindow>

#include <memory>

namespace Ui {
class HostWindow;
}
class PluginHost;

// The host's main window: the plug-in's tab widget on the left, the radio's
// state, a few host-side controls and the command log on the right.
class HostWindow : public QMainWindow
{
    Q_OBJECT

public:
    // `virtualPanels`: the plug-in runs over the virtual panel, so the window
    // offers to plug and unplug panels.
    HostWindow(PluginHost *host, bool virtualPanels, QWidget *parent = nullptr);
    ~HostWindow() override;

    QLayout *pluginLayout() const;
    void log(const QString &line);
    void refreshRadio();

signals:
    void plugRequested();
    void unplugRequested();

private:
    std::unique_ptr<Ui::HostWindow> ui;
    PluginHost *host;
};
