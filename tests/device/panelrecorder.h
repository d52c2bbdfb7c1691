#pragma once

// A recorder of the panel device's signals, as text lines.

#include "plugins/panels/dialix/source/dialix.h"

#include <QObject>
#include <QStringList>
#include <QThread>

// Lives on the test's thread and writes every panel signal it receives as one
// line ("button(3,1)", "dial(0,-1)", ...), so that a whole sequence of signals,
// their order included, is compared at once. Cross-thread emissions arrive
// through queued connections, as they do in the controller.
class PanelRecorder : public QObject
{
    Q_OBJECT

public:
    explicit PanelRecorder(Dialix *device, QObject *parent = nullptr)
        : QObject(parent)
    {
        connect(device, &Dialix::button, this, &PanelRecorder::onButton);
        connect(device, &Dialix::dialButton, this, &PanelRecorder::onDialButton);
        connect(device, &Dialix::dial, this, &PanelRecorder::onDial);
        connect(device, &Dialix::ptt, this, [this](bool s) { add("ptt", s); });
        connect(device, &Dialix::dash, this, [this](bool s) { add("dash", s); });
        connect(device, &Dialix::dot, this, [this](bool s) { add("dot", s); });
    }

    static void registerTypes()
    {
        qRegisterMetaType<Dialix::Buttons>("Dialix::Buttons");
        qRegisterMetaType<Dialix::Dials>("Dialix::Dials");
        qRegisterMetaType<Dialix::DialButtons>("Dialix::DialButtons");
    }

    QStringList log;
    bool wrongThread = false;

private slots:
    void onButton(Dialix::Buttons b, bool s) { add(QStringLiteral("button(%1,%2)").arg(b).arg(s)); }
    void onDialButton(Dialix::DialButtons b, bool s)
    {
        add(QStringLiteral("dialButton(%1,%2)").arg(b).arg(s));
    }
    void onDial(Dialix::Dials d, int v) { add(QStringLiteral("dial(%1,%2)").arg(d).arg(v)); }

private:
    void add(const char *name, bool s) { add(QStringLiteral("%1(%2)").arg(name).arg(s)); }
    void add(const QString &line)
    {
        if (QThread::currentThread() != thread())
            wrongThread = true;
        log.append(line);
    }
};
