#pragma once

// The host's side of a test that loads the plug-in's root: the widget whose
// layout receives the root's tab widget, over a fresh virtual bus.

#include "tools/virtualpanel/virtualpanel.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFile>
#include <QObject>
#include <QStringList>
#include <QTabWidget>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>

// Base of a root test: call setUp() from init() and tearDown() from cleanup().
// No test finds an options file that an earlier one left beside the executable.
class RootHost
{
public:
    static QString optionsFile()
    {
        return QCoreApplication::applicationDirPath() + QStringLiteral("/options.ini");
    }

protected:
    void setUp()
    {
        VirtualPanel::reset();
        QFile::remove(optionsFile());
        host = std::make_unique<QWidget>();
        new QVBoxLayout(host.get());
    }

    // The root goes first: it closes its panels and leaves its tab widget to
    // the host widget, which goes next.
    void tearDown(QObject *root)
    {
        delete root;
        host.reset();
        VirtualPanel::reset();
        QFile::remove(optionsFile());
    }

    QTabWidget *tabs() const
    {
        return host->findChild<QTabWidget *>(QStringLiteral("DialixmainTab"));
    }
    QWidget *page(int i) const { return tabs()->widget(i); }
    QStringList tabTitles() const
    {
        QStringList titles;
        for (int i = 0; i < tabs()->count(); ++i)
            titles << tabs()->tabText(i);
        return titles;
    }
    void enable(int i, bool on = true)
    {
        auto *box = page(i)->findChild<QCheckBox *>(QStringLiteral("chbEnable"));
        QVERIFY(box);
        box->setChecked(on);
    }

    std::unique_ptr<QWidget> host;
};
