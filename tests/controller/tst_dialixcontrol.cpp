// Tests of the panel controller on the GUI thread: functions, dials, persistence.

#include "recorders.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <array>

// The controller on the GUI thread with its panel closed: the function menus,
// every key and dial function, the VFO encoder, the host binding and the
// persistence of assignments. Panel events are raised by emitting the device
// object's own signals, so they take the controller's real connections.

namespace {

const QString Initial = QStringLiteral("useIf=0 useIfRit=0 vfoB=0 rx=1");

// What each key function does with receiver 1 of 3 selected, a volume step of
// 3 and a host with three transceivers, nothing locked and VOX off: messages
// sent, manager calls, and the option state afterwards.
struct Effect
{
    QStringList messages;
    QStringList calls;
    QString state = Initial;
};

Effect cmd(const QVariantList &m)
{
    return {msg(m), {}, Initial};
}
Effect calls(const QStringList &c, const QString &state = Initial)
{
    return {{}, c, state};
}
Effect option(const QString &state)
{
    return {{}, {}, state};
}

// clang-format off
const QMap<int, Effect> buttonEffects = {
    {0, Effect{}},
    {1, cmd({110, 1u})}, {2, cmd({111, 1u})}, {3, cmd({112, 1u})}, {4, cmd({113, 1u})},
    {5, cmd({125, 1u, 3})}, {6, cmd({125, 1u, -3})}, {7, cmd({136, 1u})},
    {8, cmd({138, 1u})}, {9, cmd({139, 1u})}, {10, cmd({140, 1u})}, {11, cmd({141, 1u})},
    {12, cmd({142, 1u})}, {13, cmd({114, 1u})}, {14, cmd({115, 1u})}, {15, cmd({128, 1u})},
    {16, cmd({137, 1u})}, {17, cmd({116, 1u})}, {18, cmd({117, 1u})}, {19, cmd({118})},
    {20, cmd({119})}, {21, cmd({120, 1u})}, {22, cmd({121, 1u})}, {23, cmd({122, 1u})},
    {24, cmd({123, 1u})}, {25, cmd({146, 1u, false})}, {26, cmd({147, 1u, false})},
    {27, cmd({148})}, {28, cmd({124})},
    {29, option("useIf=1 useIfRit=0 vfoB=0 rx=1")},
    {30, option("useIf=0 useIfRit=0 vfoB=0 rx=2")},
    {31, option("useIf=0 useIfRit=0 vfoB=1 rx=1")},
    {32, cmd({145, 1u, false})}, {33, cmd({149, 1u, 0u})}, {34, cmd({152, 1u, 0u})},
    {35, option("useIf=0 useIfRit=1 vfoB=0 rx=1")},
    {36, cmd({153, 1u, 0u})}, {37, cmd({156, 1u, 0u})}, {38, cmd({157, 1u})},
    {39, cmd({158, 1u})}, {40, cmd({159, 1u})}, {41, cmd({189})},
    {42, calls({"setLock(1,true)"})}, {43, calls({"setVfoaToVfob(1)"})},
    {44, calls({"setVfobToVfoa(1)"})}, {45, calls({"setVfoaSwapVfob(1)"})},
    {46, calls({"signal switchedApf(1)"})},
    {47, calls({"setMixerMode(0)"})}, {48, calls({"setMixerMode(1)"})},
    {49, calls({"setMixerMode(2)"})}, {50, calls({"setMixerMode(3)"})},
    {51, calls({"setMixerMode(4)"})},
    {52, calls({"setMute(0,true)", "setMute(1,true)", "setMute(2,false)"},
               "useIf=0 useIfRit=0 vfoB=0 rx=2")},
    {53, calls({"signal switchRx2Enable()"})},
    {54, calls({"signal mixerVfoMode(1,0)"})}, {55, calls({"signal mixerVfoMode(1,1)"})},
    {56, calls({"signal mixerVfoMode(1,2)"})}, {57, calls({"signal mixerVfoMode(1,3)"})},
    {58, calls({"signal mixerVfoMode(1,4)"})},
    {59, calls({"setVox(1,true)"})}, {60, calls({"signal switchNF(1)"})},
};

// What each dial function does with a movement of -3 on receiver 1, the steps
// set by setSteps() and the host at -20 dB with RIT and XIT off.
const QMap<int, Effect> dialEffects = {
    {0, Effect{}}, {1, calls({"setMainVolume(-26)"})},
    {2, cmd({127, 1u, -9})}, {3, cmd({129, 1u, -12})}, {4, cmd({130, 1u, -210})},
    {5, cmd({131, 1u, -180})}, {6, cmd({132, 1u, -240})}, {7, cmd({133, 1u, -270})},
    {8, cmd({134, 1u, -15})}, {9, cmd({135, 1u, -3})}, {10, cmd({126, 1u, -33})},
    {11, cmd({144, 1u, -3})}, {12, cmd({150, 1u, 0u, -3})}, {13, cmd({154, 1u, 0u, -3})},
};
// clang-format on

void setSteps(Ui::DialixOptions *ui)
{
    ui->sbVolumeStep->setValue(2);
    ui->sbMicGainStep->setValue(3);
    ui->sbSqlStep->setValue(4);
    ui->sbFilterHighStep->setValue(60);
    ui->sbFilterLowStep->setValue(70);
    ui->sbFilterWidthStep->setValue(80);
    ui->sbFilterShiftStep->setValue(90);
    ui->sbDriveStep->setValue(5);
    ui->sbRfGainStep->setValue(11);
}

QString state(Rig &rig)
{
    return QStringLiteral("useIf=%1 useIfRit=%2 vfoB=%3 rx=%4")
        .arg(rig.ui()->chbUseIf->isChecked())
        .arg(rig.ui()->chbUseIf_Rit->isChecked())
        .arg(rig.ui()->chbVfoB->isChecked())
        .arg(rig.ui()->cbReceiver->currentIndex());
}

void invoke(Rig &rig, const QByteArray &slot)
{
    QVERIFY2(QMetaObject::invokeMethod(&rig.ctrl, slot.constData()), slot.constData());
}

} // namespace

class TestDialixControl : public QObject
{
    Q_OBJECT

private slots:
    // The key and dial menus as the user sees them: in each key menu "Unused",
    // then the four sub-menus with the ids in their order.
    void menus()
    {
        const QList<QPair<QString, QList<int>>> subMenus = {
            {"Main", {17, 18, 1, 2, 13, 14, 3, 4, 25, 16, 28, 19, 20, 41, 21, 22, 26, 27, 23, 24}},
            {"VFO/RX2", {43, 44, 45, 31, 35, 42, 53, 33, 34, 32, 38, 29, 30, 36, 37}},
            {"Audio", {47, 48, 49, 50, 51, 54, 55, 56, 57, 58, 7, 52, 39, 40, 5, 6, 59}},
            {"DSP", {10, 46, 8, 9, 11, 12, 15, 60}},
        };
        Rig rig;
        QCOMPARE(rig.ctrl.functionButtonGroups().size(), 17);
        for (int k = 0; k < 17; ++k) {
            QActionGroup *group = rig.ctrl.functionButtonGroups().at(k);
            QCOMPARE(group->actions().size(), 61);
            QCOMPARE(group->checkedAction(), group->actions().first());
            const QList<QAction *> top = rig.ctrl.functionButtonMenus().at(k)->actions();
            QCOMPARE(top.size(), 5);
            QCOMPARE(top.at(0), group->actions().first());
            QCOMPARE(top.at(0)->text(), QStringLiteral("Unused"));
            for (int s = 0; s < 4; ++s) {
                QCOMPARE(top.at(s + 1)->menu()->title(), subMenus.at(s).first);
                QList<int> ids;
                for (QAction *a : top.at(s + 1)->menu()->actions())
                    ids << group->actions().indexOf(a);
                QCOMPARE(ids, subMenus.at(s).second);
            }
            QCOMPARE(rig.button(QStringLiteral("pbFunc%1").arg(k + 1))->menu(),
                     rig.ctrl.functionButtonMenus().at(k));
        }
        QCOMPARE(rig.ctrl.functionButtonGroups().at(0)->actions().at(45)->text(), "B<->A");

        for (int j = 0; j < 4; ++j) {
            QActionGroup *group = rig.ctrl.functionDialGroups().at(j);
            QCOMPARE(rig.ctrl.functionDialMenus().at(j)->actions(), group->actions());
            QCOMPARE(group->actions().size(), 14);
            QCOMPARE(group->checkedAction(), group->actions().first());
            QPushButton *button = rig.button(QStringLiteral("pbDial%1").arg(j));
            QCOMPARE(button->menu(), rig.ctrl.functionDialMenus().at(j));
            QCOMPARE(button->isHidden(), j == 0); // the VFO encoder has no function
        }
        QCOMPARE(rig.ctrl.functionDialGroups().at(1)->actions().at(9)->text(), "IF");
    }

    // ---- Key functions ----------------------------------------------------

    void buttonFunctions_data()
    {
        QTest::addColumn<int>("id");
        QTest::addColumn<bool>("bound");
        for (const auto &f : dialix::buttonFunctions) {
            QVERIFY2(buttonEffects.contains(f.id), f.name);
            QTest::addRow("%d %s", f.id, f.name) << f.id << true;
            QTest::addRow("%d %s, no manager", f.id, f.name) << f.id << false;
        }
    }

    // Every key function, from a key press and from its direct slot.
    void buttonFunctions()
    {
        QFETCH(int, id);
        QFETCH(bool, bound);
        Effect expected = buttonEffects.value(id);
        if (!bound) // the manager's functions then do nothing at all
            expected.calls.clear(), expected.state = id == 52 ? Initial : expected.state;

        for (bool bySlot : {false, true}) {
            const QByteArray slot = "setFuncButton" + QByteArray::number(id + 1);
            if (bySlot && id == 0) { // "Unused" has no slot
                QCOMPARE(DialixControl::staticMetaObject.indexOfSlot(slot + "()"), -1);
                break;
            }
            Rig rig(bound);
            rig.manager.transceiverCount = 3;
            rig.ui()->sbVolumeStep->setValue(3);
            const int key = id % 17 + 1;
            if (bySlot) {
                invoke(rig, slot);
            } else {
                QVERIFY(rig.ctrl.assignButtonFunction(key, id));
                rig.press(key, true);
                QVERIFY(rig.ctrl.optionsWidget()->isKeyLit(key));
                rig.press(key, false); // a release only ends the highlight
                QVERIFY(!rig.ctrl.optionsWidget()->isKeyLit(key));
            }
            QCOMPARE(rig.sent, expected.messages);
            QCOMPARE(rig.manager.calls, expected.calls);
            QCOMPARE(state(rig), expected.state);
        }
    }

    void guardedFunctionsNeedReceivers()
    {
        for (int id : {25, 26, 27, 30, 31, 32, 33, 34, 36, 37, 38, 39, 40, 52}) {
            Rig rig(true, 0, -1);
            invoke(rig, "setFuncButton" + QByteArray::number(id + 1));
            QVERIFY2(rig.sent.isEmpty() && rig.manager.calls.isEmpty(),
                     qPrintable(rig.sent.join(';')));
            QCOMPARE(state(rig), QStringLiteral("useIf=0 useIfRit=0 vfoB=0 rx=-1"));
        }
    }

    void receiverSwitching()
    {
        Rig wrap(true, 3, 2);
        invoke(wrap, "setFuncButton31");
        QCOMPARE(wrap.ui()->cbReceiver->currentIndex(), 0);

        Rig rig(true, 2, 0);
        invoke(rig, "setFuncButton53");
        QCOMPARE(rig.ui()->cbReceiver->currentIndex(), 1);
        QCOMPARE(rig.manager.calls, (QStringList {"setMute(0,true)", "setMute(1,false)"}));

        // More transceivers than receivers: the receiver list bounds the loop.
        Rig wide(true, 2, 1);
        wide.manager.transceiverCount = 4;
        invoke(wide, "setFuncButton53");
        QCOMPARE(wide.manager.calls, (QStringList {"setMute(0,false)", "setMute(1,true)"}));
    }

    void lockAndVoxToggle()
    {
        Rig rig;
        rig.manager.locks[1] = rig.manager.voxes[1] = true;
        invoke(rig, "setFuncButton43");
        invoke(rig, "setFuncButton43");
        invoke(rig, "setFuncButton60");
        QCOMPARE(rig.manager.calls,
                 (QStringList {"setLock(1,false)", "setLock(1,true)", "setVox(1,false)"}));
    }

    // Key 0 and the VFO encoder's push have no function, whatever key 15 has.
    void keysWithoutFunction()
    {
        Rig rig;
        QVERIFY(rig.ctrl.assignButtonFunction(15, 1));
        rig.event(&Dialix::button, Dialix::Key0, true);
        rig.event(&Dialix::dialButton, Dialix::KeyEnc0, true);
        QCOMPARE(rig.sent, QStringList());
    }

    // ---- Dial functions ---------------------------------------------------

    void dialFunctions_data()
    {
        QTest::addColumn<int>("id");
        QTest::addColumn<bool>("bound");
        for (const auto &f : dialix::dialFunctions) {
            QVERIFY2(dialEffects.contains(f.id), f.name);
            QTest::addRow("%d %s", f.id, f.name) << f.id << true;
            QTest::addRow("%d %s, no manager", f.id, f.name) << f.id << false;
        }
    }

    // Every dial function, from a dial turn and from its direct slot.
    void dialFunctions()
    {
        QFETCH(int, id);
        QFETCH(bool, bound);
        Effect expected = dialEffects.value(id);
        if (!bound) // Volume and the IF rule need the host
            expected.calls.clear(), expected.messages = id == 9 ? QStringList() : expected.messages;

        for (bool bySlot : {false, true}) {
            const QByteArray slot = "setFuncDial" + QByteArray::number(id);
            if (bySlot && id == 0) { // "Unused" has no slot
                QCOMPARE(DialixControl::staticMetaObject.indexOfSlot(slot + "(int)"), -1);
                break;
            }
            Rig rig(bound);
            setSteps(rig.ui());
            const int j = id % 3 + 1;
            if (bySlot) {
                QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, slot.constData(), Q_ARG(int, -3)));
            } else {
                QVERIFY(rig.ctrl.assignDialFunction(j, id));
                rig.event(&Dialix::dial, Dialix::Dials(j), -3);
            }
            QCOMPARE(rig.sent, expected.messages);
            QCOMPARE(rig.manager.calls, expected.calls);
        }
    }

    // A dial's movement lights its button on the page (which puts it out
    // again), also for a dial without a function; a key lights while held.
    void panelLightsThePage()
    {
        Rig rig;
        DialixOptions *page = rig.ctrl.optionsWidget();
        rig.event(&Dialix::dial, Dialix::Enc3, 1);
        QVERIFY(page->isDialLit(3) && !page->isDialLit(2));
        QTRY_VERIFY_WITH_TIMEOUT(!page->isDialLit(3), 5000);
        rig.event(&Dialix::dialButton, Dialix::KeyEnc2, true);
        QVERIFY(page->isKeyLit(16));
        QCOMPARE(rig.sent, QStringList());
    }

    // Host at h dB, step s, movement v: the volume is limited to -60 .. 0 dB.
    void volumeIsClamped()
    {
        const QList<std::array<double, 4>> rows = {
            {-58, 5, -1, -60}, {-2, 5, 1, 0}, {-70, 1, 1, -60}, {5, 1, -1, 0}};
        for (const auto &[host, step, value, expected] : rows) {
            Rig rig;
            rig.manager.volume = host;
            rig.ui()->sbVolumeStep->setValue(int(step));
            QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncDial1", Q_ARG(int, int(value))));
            QCOMPARE(rig.manager.volume, expected);
        }
    }

    void vfoEncoder_data()
    {
        QTest::addColumn<QString>("setup"); // use IF, VFO B, RIT, XIT, lock
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("VFO A") << "-----" << msg({143, 1u, 0u, 2});
        QTest::newRow("VFO B") << "-B---" << msg({143, 1u, 1u, 2});
        QTest::newRow("IF with VFO B tunes VFO B") << "IB---" << msg({143, 1u, 1u, 2});
        QTest::newRow("IF") << "I----" << msg({135, 1u, 2});
        QTest::newRow("IF, locked") << "I---L" << msg({135, 1u, 2});
        QTest::newRow("IF as RIT, locked") << "I-RXL" << msg({151, 1u, 0u, 2});
        QTest::newRow("IF as XIT") << "I--X-" << msg({155, 1u, 0u, 2});
        QTest::newRow("IF as XIT, locked") << "I--XL" << QStringList();
    }

    // Movements within one tick are coalesced, the latest winning. With "Use
    // IF" (and VFO A) the encoder takes the IF rule, which the IF dial function
    // shares; only the rule's XIT branch looks at the lock.
    void vfoEncoder()
    {
        QFETCH(QString, setup);
        QFETCH(QStringList, expected);
        Rig rig;
        rig.ui()->chbUseIf->setChecked(setup[0] == 'I');
        rig.ui()->chbVfoB->setChecked(setup[1] == 'B');
        rig.manager.rits[1] = setup[2] == 'R';
        rig.manager.xits[1] = setup[3] == 'X';
        rig.manager.locks[1] = setup[4] == 'L';
        rig.event(&Dialix::dial, Dialix::Enc0, 1);
        rig.event(&Dialix::dial, Dialix::Enc0, 2);
        QTRY_COMPARE_WITH_TIMEOUT(rig.sent, expected, 5000);
        QTest::qWait(60);
        QCOMPARE(rig.sent, expected);

        if (setup.startsWith("I-")) {
            rig.sent.clear();
            QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncDial9", Q_ARG(int, 2)));
            QCOMPARE(rig.sent, expected);
        }
    }

    // ---- Host binding -----------------------------------------------------

    void setDevManager()
    {
        Rig rig(false);
        rig.ctrl.setDevManager(&rig.manager);
        rig.ctrl.setDevManager(&rig.manager);
        emit rig.manager.moxChanged(0, true); // connected once: two transceivers asked once
        QCOMPARE(rig.manager.moxQueries, 2);

        rig.ctrl.setDevManager(nullptr);
        QCOMPARE(rig.ctrl.devManager(), nullptr);
        emit rig.manager.moxChanged(0, true);
        QCOMPARE(rig.manager.moxQueries, 2);
    }

    // ---- Persistence ------------------------------------------------------

    void layouts_data()
    {
        QTest::addColumn<bool>("host");
        QTest::addColumn<QStringList>("dialKeys"); // of dials 0 .. 3
        QTest::newRow("own file") << false
                                  << QStringList {"FunctionDial-1", "FunctionDial0",
                                                  "FunctionDial1", "FunctionDial2"};
        QTest::newRow("host settings")
            << true
            << QStringList {"FunctionDial0", "FunctionDial1", "FunctionDial2", "FunctionDial3"};
    }

    // Assignments written and read back in both layouts, beside another
    // controller's group; only the own file's reading re-labels the page's buttons.
    void layouts()
    {
        QFETCH(bool, host);
        QFETCH(QStringList, dialKeys);
        QTemporaryDir dir;
        QSettings settings(dir.filePath("layout.ini"), QSettings::IniFormat);
        settings.setValue("Dialix1/FunctionButton0", 42); // another controller's
        {
            DialixControl ctrl;
            ctrl.setNumber(1);
            QVERIFY(ctrl.assignButtonFunction(2, 17) && ctrl.assignButtonFunction(17, 60));
            QVERIFY(ctrl.assignDialFunction(1, 1) && ctrl.assignDialFunction(3, 13));
            host ? ctrl.writeHostAssignments(settings) : ctrl.writeAssignments(settings);
        }
        settings.beginGroup("Dialix2");
        QStringList stored;
        for (const QString &key : dialKeys
                 + QStringList {"FunctionButton0", "FunctionButton1", "FunctionButton15",
                                "FunctionButton16"})
            stored << settings.value(key).toString();
        QCOMPARE(stored.join(','), QStringLiteral("0,1,0,13,0,17,0,60"));
        QCOMPARE(settings.childKeys().filter("Function").size(), 21);
        settings.endGroup();
        QCOMPARE(settings.allKeys().filter("Dialix1/"), QStringList {"Dialix1/FunctionButton0"});

        DialixControl ctrl;
        ctrl.setNumber(1);
        host ? ctrl.readHostAssignments(settings) : ctrl.readAssignments(settings);
        QCOMPARE(
            (QList<int> {ctrl.buttonFunction(1), ctrl.buttonFunction(2), ctrl.buttonFunction(17)}),
            (QList<int> {0, 17, 60}));
        QCOMPARE((QList<int> {ctrl.dialFunction(0), ctrl.dialFunction(1), ctrl.dialFunction(3)}),
                 (QList<int> {0, 1, 13}));
        QStringList texts;
        for (const char *name : {"pbFunc1", "pbFunc2", "pbFunc17", "pbDial1", "pbDial3"})
            texts << ctrl.optionsWidget()->findChild<QPushButton *>(name)->text();
        const QStringList relabelled = {"NO", "AgcU", "NF", "Vol", "Xit"};
        const QStringList unchanged = {"NO", "NO", "NO", "NO", "NO"};
        QCOMPARE(texts, host ? unchanged : relabelled);
        QCOMPARE(ctrl.optionsWidget()->findChild<QPushButton *>("pbFunc2")->toolTip(),
                 host ? "Unused" : "Agc Up");
    }

    void badStoredValuesReadAsUnused()
    {
        QTemporaryDir dir;
        QSettings settings(dir.filePath("bad.ini"), QSettings::IniFormat);
        const QVariantList bad = {"abc", 61, -1, -7};
        for (int n = 0; n < bad.size(); ++n)
            settings.setValue(QStringLiteral("Dialix1/FunctionButton%1").arg(n), bad.at(n));
        settings.setValue("Dialix1/FunctionDial0", 14);
        DialixControl ctrl;
        for (int n = 1; n <= 4; ++n)
            QVERIFY(ctrl.assignButtonFunction(n, 9));
        QVERIFY(ctrl.assignDialFunction(1, 4));
        ctrl.readAssignments(settings);
        for (int n = 1; n <= 4; ++n)
            QCOMPARE(ctrl.buttonFunction(n), 0);
        QCOMPARE(ctrl.dialFunction(1), 0);
        QCOMPARE(ctrl.optionsWidget()->findChild<QPushButton *>("pbFunc1")->text(), "NO");
    }

    void ownFileBesideTheExecutable()
    {
        const QString path = QCoreApplication::applicationDirPath() + "/options.ini";
        QFile::remove(path);
        {
            DialixControl ctrl;
            ctrl.functionButtonGroups().at(2)->actions().at(28)->trigger(); // a menu choice
            QCOMPARE(ctrl.optionsWidget()->findChild<QPushButton *>("pbFunc3")->text(), "PWR");
            ctrl.saveOptions();
        }
        DialixControl ctrl;
        ctrl.loadOptions();
        QFile::remove(path);
        QCOMPARE(ctrl.buttonFunction(3), 28);
        QCOMPARE(ctrl.optionsWidget()->findChild<QPushButton *>("pbFunc3")->toolTip(),
                 "Power On/Off");

        // A file that cannot be written (here a folder of its name; running as
        // root, permissions would not stop it) is said once, and once more
        // when saving works again.
        static QStringList lines;
        lines.clear();
        const QtMessageHandler previous = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { lines << text; });
        QVERIFY(QDir().mkdir(path));
        ctrl.saveOptions();
        ctrl.saveOptions();
        QVERIFY(QDir().rmdir(path));
        ctrl.saveOptions();
        ctrl.saveOptions();
        qInstallMessageHandler(previous);
        QFile::remove(path);
        QCOMPARE(lines.filter("cannot write").size(), 1);
        QCOMPARE(lines.filter("written again").size(), 1);
    }
};

QTEST_MAIN(TestDialixControl)
#include "tst_dialixcontrol.moc"
