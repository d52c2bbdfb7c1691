#include "command/qrvcommand.h"
#include "plugins/panels/dialix/source/dialixcontrol.h"
#include "recorders.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <QMetaMethod>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

// The controller's behaviour on the GUI thread: the function menus, every key
// and dial function, the VFO encoder, the host binding and the persistence of
// assignments. Panel events are raised by emitting the device object's own
// signals, which reach the controller through its real connections; the panel
// itself stays closed here (see tst_dialixcontrol_io for an open panel).

namespace {

const QString InitialState = QStringLiteral("useIf=0 useIfRit=0 vfoB=0 rx=1");

// What each key function does with receiver 1 of 3 selected, a volume step of 3
// and a host with three transceivers, nothing locked and VOX off.
struct ButtonExpectation
{
    QStringList messages;
    QStringList calls;
    QString state = InitialState;
};

QMap<int, ButtonExpectation> buttonExpectations()
{
    const auto cmd = [](QVariantList m) {
        return ButtonExpectation {msg(m), {}, InitialState};
    };
    const auto call = [](QStringList c) {
        return ButtonExpectation {{}, c, InitialState};
    };
    const auto state = [](QString s) {
        return ButtonExpectation {{}, {}, s};
    };
    QMap<int, ButtonExpectation> e;
    e[0] = ButtonExpectation {};
    e[1] = cmd({110, 1u});
    e[2] = cmd({111, 1u});
    e[3] = cmd({112, 1u});
    e[4] = cmd({113, 1u});
    e[5] = cmd({125, 1u, 3});
    e[6] = cmd({125, 1u, -3});
    e[7] = cmd({136, 1u});
    e[8] = cmd({138, 1u});
    e[9] = cmd({139, 1u});
    e[10] = cmd({140, 1u});
    e[11] = cmd({141, 1u});
    e[12] = cmd({142, 1u});
    e[13] = cmd({114, 1u});
    e[14] = cmd({115, 1u});
    e[15] = cmd({128, 1u});
    e[16] = cmd({137, 1u});
    e[17] = cmd({116, 1u});
    e[18] = cmd({117, 1u});
    e[19] = cmd({118});
    e[20] = cmd({119});
    e[21] = cmd({120, 1u});
    e[22] = cmd({121, 1u});
    e[23] = cmd({122, 1u});
    e[24] = cmd({123, 1u});
    e[25] = cmd({146, 1u, false});
    e[26] = cmd({147, 1u, false});
    e[27] = cmd({148});
    e[28] = cmd({124});
    e[29] = state(QStringLiteral("useIf=1 useIfRit=0 vfoB=0 rx=1"));
    e[30] = state(QStringLiteral("useIf=0 useIfRit=0 vfoB=0 rx=2"));
    e[31] = state(QStringLiteral("useIf=0 useIfRit=0 vfoB=1 rx=1"));
    e[32] = cmd({145, 1u, false});
    e[33] = cmd({149, 1u, 0u});
    e[34] = cmd({152, 1u, 0u});
    e[35] = state(QStringLiteral("useIf=0 useIfRit=1 vfoB=0 rx=1"));
    e[36] = cmd({153, 1u, 0u});
    e[37] = cmd({156, 1u, 0u});
    e[38] = cmd({157, 1u});
    e[39] = cmd({158, 1u});
    e[40] = cmd({159, 1u});
    e[41] = cmd({189});
    e[42] = call({"setLock(1,true)"});
    e[43] = call({"setVfoaToVfob(1)"});
    e[44] = call({"setVfobToVfoa(1)"});
    e[45] = call({"setVfoaSwapVfob(1)"});
    e[46] = call({"signal switchedApf(1)"});
    e[47] = call({"setMixerMode(0)"});
    e[48] = call({"setMixerMode(1)"});
    e[49] = call({"setMixerMode(2)"});
    e[50] = call({"setMixerMode(3)"});
    e[51] = call({"setMixerMode(4)"});
    e[52] = ButtonExpectation {{},
                               {"setMute(0,true)", "setMute(1,true)", "setMute(2,false)"},
                               QStringLiteral("useIf=0 useIfRit=0 vfoB=0 rx=2")};
    e[53] = call({"signal switchRx2Enable()"});
    e[54] = call({"signal mixerVfoMode(1,0)"});
    e[55] = call({"signal mixerVfoMode(1,1)"});
    e[56] = call({"signal mixerVfoMode(1,2)"});
    e[57] = call({"signal mixerVfoMode(1,3)"});
    e[58] = call({"signal mixerVfoMode(1,4)"});
    e[59] = call({"setVox(1,true)"});
    e[60] = call({"signal switchNF(1)"});
    return e;
}

// What each dial function does with a movement of -3 on receiver 1, the steps
// below and the host's volume at -20 dB with RIT and XIT off.
struct DialExpectation
{
    QStringList messages;
    QStringList calls;
};

QMap<int, DialExpectation> dialExpectations()
{
    const auto cmd = [](QVariantList m) {
        return DialExpectation {msg(m), {}};
    };
    QMap<int, DialExpectation> e;
    e[0] = DialExpectation {};
    e[1] = DialExpectation {{}, {"setMainVolume(-26)"}};
    e[2] = cmd({127, 1u, -9});
    e[3] = cmd({129, 1u, -12});
    e[4] = cmd({130, 1u, -210});
    e[5] = cmd({131, 1u, -180});
    e[6] = cmd({132, 1u, -240});
    e[7] = cmd({133, 1u, -270});
    e[8] = cmd({134, 1u, -15});
    e[9] = cmd({135, 1u, -3});
    e[10] = cmd({126, 1u, -33});
    e[11] = cmd({144, 1u, -3});
    e[12] = cmd({150, 1u, 0u, -3});
    e[13] = cmd({154, 1u, 0u, -3});
    return e;
}

void setDialSteps(Ui::DialixOptions *ui)
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

} // namespace

class TestDialixControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<Dialix::Buttons>("Dialix::Buttons");
        qRegisterMetaType<Dialix::Dials>("Dialix::Dials");
        qRegisterMetaType<Dialix::DialButtons>("Dialix::DialButtons");
    }

    // ---- Meta-object and menus --------------------------------------------

    void functionSlotsFollowTheTable()
    {
        const QMetaObject *mo = &DialixControl::staticMetaObject;
        for (const auto &f : dialix::buttonFunctions) {
            const QByteArray sig = "setFuncButton" + QByteArray::number(f.id + 1) + "()";
            const int i = mo->indexOfSlot(sig);
            QVERIFY2((i >= 0) == (f.id != 0), sig.constData());
        }
        for (const auto &f : dialix::dialFunctions) {
            const QByteArray sig = "setFuncDial" + QByteArray::number(f.id) + "(int)";
            const int i = mo->indexOfSlot(sig);
            QVERIFY2((i >= 0) == (f.id != 0), sig.constData());
        }
        QCOMPARE(mo->indexOfSlot("setFuncButton62()"), -1);
        QCOMPARE(mo->indexOfSlot("setFuncDial14(int)"), -1);
    }

    // The slots that the root and the host reach by name, in declaration order.
    void slotsInDeclarationOrder()
    {
        QList<QByteArray> expected = {"open(bool)",
                                      "terminate()",
                                      "restore()",
                                      "setCommand(QVariant)",
                                      "setChannels(uint)",
                                      "deviceChanged()",
                                      "setDevManager(DeviceManagerAbstract*)",
                                      "on4K(bool)",
                                      "onPttTransferMode(int)",
                                      "onDdsValue(QVariant)",
                                      "onButton(Dialix::Buttons,bool)",
                                      "onDialButton(Dialix::DialButtons,bool)",
                                      "onDial(Dialix::Dials,int)",
                                      "onPtt(bool)",
                                      "onLedEncoder(bool)",
                                      "onLedButtons(bool)",
                                      "onTrx(uint,bool)",
                                      "onVfoB(bool)"};
        for (int k = 1; k <= 14; ++k)
            expected << "Key" + QByteArray::number(k) + "(bool)";
        for (int k = 0; k <= 3; ++k)
            expected << "KeyEnc" + QByteArray::number(k) + "(bool)";
        for (int k = 0; k <= 3; ++k)
            expected << "Enc" + QByteArray::number(k) + "(int)";
        expected << "KeyPtt(bool)"
                 << "KeyDash(bool)"
                 << "KeyDot(bool)"
                 << "changedFunctionButton(QAction*)"
                 << "changedFunctionDial(QAction*)";
        for (int n = 2; n <= 61; ++n)
            expected << "setFuncButton" + QByteArray::number(n) + "()";
        for (int n = 1; n <= 13; ++n)
            expected << "setFuncDial" + QByteArray::number(n) + "(int)";
        expected << "switchReceivers(int)"
                 << "onSerialPortOpen(bool)";

        const QMetaObject *mo = &DialixControl::staticMetaObject;
        int previous = -1;
        for (const QByteArray &sig : expected) {
            const int i = mo->indexOfSlot(sig);
            QVERIFY2(i >= 0, sig.constData());
            QCOMPARE(mo->method(i).methodType(), QMetaMethod::Slot);
            QVERIFY2(i > previous, sig.constData());
            previous = i;
        }
    }

    void buttonMenuLayout()
    {
        // Ids in the order the user sees them in each sub-menu.
        const QList<QPair<QString, QList<int>>> expected = {
            {"Main", {17, 18, 1, 2, 13, 14, 3, 4, 25, 16, 28, 19, 20, 41, 21, 22, 26, 27, 23, 24}},
            {"VFO/RX2", {43, 44, 45, 31, 35, 42, 53, 33, 34, 32, 38, 29, 30, 36, 37}},
            {"Audio", {47, 48, 49, 50, 51, 54, 55, 56, 57, 58, 7, 52, 39, 40, 5, 6, 59}},
            {"DSP", {10, 46, 8, 9, 11, 12, 15, 60}},
        };
        Rig rig;
        QCOMPARE(rig.ctrl.functionButtonMenus().size(), 17);
        QCOMPARE(rig.ctrl.functionButtonGroups().size(), 17);
        for (int k = 0; k < 17; ++k) {
            QMenu *menu = rig.ctrl.functionButtonMenus().at(k);
            QActionGroup *group = rig.ctrl.functionButtonGroups().at(k);
            QCOMPARE(group->actions().size(), 61);
            QVERIFY(group->isExclusive());
            QCOMPARE(group->checkedAction(), group->actions().first());

            const QList<QAction *> top = menu->actions();
            QCOMPARE(top.size(), 5);
            QCOMPARE(top.at(0)->text(), QStringLiteral("Unused"));
            QCOMPARE(top.at(0), group->actions().first());
            for (int s = 0; s < 4; ++s) {
                QMenu *sub = top.at(s + 1)->menu();
                QVERIFY(sub);
                QCOMPARE(sub->title(), expected.at(s).first);
                QList<int> ids;
                for (QAction *a : sub->actions())
                    ids << group->actions().indexOf(a);
                QCOMPARE(ids, expected.at(s).second);
            }
            QPushButton *button = rig.button(QStringLiteral("pbFunc%1").arg(k + 1));
            QCOMPARE(button->menu(), menu);
            QCOMPARE(button->toolTip(), QStringLiteral("Unused"));
        }
        // Spot checks of labels against their ids.
        QActionGroup *group = rig.ctrl.functionButtonGroups().first();
        QCOMPARE(group->actions().at(1)->text(), QStringLiteral("Band Up"));
        QCOMPARE(group->actions().at(45)->text(), QStringLiteral("B<->A"));
        QCOMPARE(group->actions().at(60)->text(), QStringLiteral("NF"));
    }

    void dialMenuLayout()
    {
        Rig rig;
        QCOMPARE(rig.ctrl.functionDialMenus().size(), 4);
        for (int j = 0; j < 4; ++j) {
            QActionGroup *group = rig.ctrl.functionDialGroups().at(j);
            QCOMPARE(group->actions().size(), 14);
            QCOMPARE(rig.ctrl.functionDialMenus().at(j)->actions(), group->actions());
            QCOMPARE(group->checkedAction(), group->actions().first());
            QPushButton *button = rig.button(QStringLiteral("pbDial%1").arg(j));
            QCOMPARE(button->menu(), rig.ctrl.functionDialMenus().at(j));
            QCOMPARE(button->toolTip(), QStringLiteral("Unused"));
            // Dial 0 is the VFO encoder and has no function to choose.
            QCOMPARE(button->isHidden(), j == 0);
        }
        QCOMPARE(rig.ctrl.functionDialGroups().at(1)->actions().at(9)->text(),
                 QStringLiteral("IF"));
        QVERIFY(rig.ui()->cbDevice->isHidden());
        QVERIFY(rig.ui()->gpPttTransfer->isHidden());
    }

    // ---- Key functions ----------------------------------------------------

    void buttonFunctions_data()
    {
        QTest::addColumn<int>("id");
        QTest::addColumn<bool>("bound");
        const QMap<int, ButtonExpectation> expectations = buttonExpectations();
        for (const auto &f : dialix::buttonFunctions) {
            QVERIFY2(expectations.contains(f.id), f.name);
            QTest::addRow("%d %s", f.id, f.name) << f.id << true;
            QTest::addRow("%d %s, no manager", f.id, f.name) << f.id << false;
        }
    }

    // Every key function, once from a key press and once from its direct slot.
    void buttonFunctions()
    {
        QFETCH(int, id);
        QFETCH(bool, bound);
        ButtonExpectation expected = buttonExpectations().value(id);
        if (!bound) {
            // Without a manager its functions do nothing at all.
            expected.calls.clear();
            if (id == 52)
                expected.state = InitialState;
        }

        const int key = id % 17 + 1;
        {
            Rig rig(bound);
            rig.manager.transceiverCount = 3;
            rig.ui()->sbVolumeStep->setValue(3);
            QVERIFY(rig.ctrl.assignButtonFunction(key, id));
            QCOMPARE(rig.ctrl.buttonFunction(key), id);

            rig.press(key, true);
            QCOMPARE(rig.sent(), expected.messages);
            QCOMPARE(rig.manager.calls, expected.calls);
            QCOMPARE(rig.state(), expected.state);
            QVERIFY(rig.button(QStringLiteral("pbFunc%1").arg(key))->isChecked());

            // A release only ends the highlight.
            rig.press(key, false);
            QCOMPARE(rig.sent(), expected.messages);
            QCOMPARE(rig.manager.calls, expected.calls);
            QPushButton *button = rig.button(QStringLiteral("pbFunc%1").arg(key));
            QVERIFY(!button->isChecked());
            QVERIFY(!button->isCheckable());
        }
        if (id == 0)
            return;
        {
            Rig rig(bound);
            rig.manager.transceiverCount = 3;
            rig.ui()->sbVolumeStep->setValue(3);
            const QByteArray slot = "setFuncButton" + QByteArray::number(id + 1);
            QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, slot.constData()));
            QCOMPARE(rig.sent(), expected.messages);
            QCOMPARE(rig.manager.calls, expected.calls);
            QCOMPARE(rig.state(), expected.state);
        }
    }

    // With no receiver in the list the guarded functions send nothing.
    void guardedFunctionsNeedReceivers_data()
    {
        QTest::addColumn<int>("id");
        for (int id : {25, 26, 27, 30, 31, 32, 33, 34, 36, 37, 38, 39, 40, 52})
            QTest::addRow("%d %s", id, dialix::buttonFunctions[id].name) << id;
    }

    void guardedFunctionsNeedReceivers()
    {
        QFETCH(int, id);
        Rig rig(true, 0, -1);
        const QString before = rig.state();
        QVERIFY(QMetaObject::invokeMethod(
            &rig.ctrl, ("setFuncButton" + QByteArray::number(id + 1)).constData()));
        QCOMPARE(rig.sent(), QStringList());
        QCOMPARE(rig.manager.calls, QStringList());
        QCOMPARE(rig.state(), before);
    }

    void switchReceiverWraps()
    {
        Rig rig(true, 3, 2);
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncButton31"));
        QCOMPARE(rig.ui()->cbReceiver->currentIndex(), 0);
    }

    void switchRxAndMuteFormer()
    {
        Rig rig(true, 2, 0);
        rig.manager.transceiverCount = 2;
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncButton53"));
        QCOMPARE(rig.ui()->cbReceiver->currentIndex(), 1);
        QCOMPARE(rig.manager.calls, (QStringList {"setMute(0,true)", "setMute(1,false)"}));

        // More transceivers than receivers in the list: the list bounds the loop.
        Rig wide(true, 2, 1);
        wide.manager.transceiverCount = 4;
        QVERIFY(QMetaObject::invokeMethod(&wide.ctrl, "setFuncButton53"));
        QCOMPARE(wide.manager.calls, (QStringList {"setMute(0,false)", "setMute(1,true)"}));
    }

    void lockAndVoxToggle()
    {
        Rig rig;
        rig.manager.locks[1] = true;
        rig.manager.voxes[1] = true;
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncButton43"));
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncButton43"));
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncButton60"));
        QCOMPARE(rig.manager.calls,
                 (QStringList {"setLock(1,false)", "setLock(1,true)", "setVox(1,false)"}));
    }

    void unassignedAndUnknownKeysDoNothing()
    {
        Rig rig;
        for (int n = 1; n <= 17; ++n) {
            rig.press(n, true);
            rig.press(n, false);
        }
        emit rig.ctrl.panel().button(Dialix::Key0, true);
        emit rig.ctrl.panel().button(Dialix::Buttons(15), true);
        // The VFO encoder's push has no function, whatever key 15's menu says.
        QVERIFY(rig.ctrl.assignButtonFunction(15, 1));
        emit rig.ctrl.panel().dialButton(Dialix::KeyEnc0, true);
        QCOMPARE(rig.sent(), QStringList());
        QCOMPARE(rig.manager.calls, QStringList());
        QCOMPARE(rig.state(), InitialState);
        QVERIFY(!rig.ctrl.assignButtonFunction(18, 1));
        QVERIFY(!rig.ctrl.assignButtonFunction(1, 61));
    }

    // ---- Dial functions ---------------------------------------------------

    void dialFunctions_data()
    {
        QTest::addColumn<int>("id");
        QTest::addColumn<bool>("bound");
        const QMap<int, DialExpectation> expectations = dialExpectations();
        for (const auto &f : dialix::dialFunctions) {
            QVERIFY2(expectations.contains(f.id), f.name);
            QTest::addRow("%d %s", f.id, f.name) << f.id << true;
            QTest::addRow("%d %s, no manager", f.id, f.name) << f.id << false;
        }
    }

    // Every dial function, once from a dial turn and once from its direct slot.
    void dialFunctions()
    {
        QFETCH(int, id);
        QFETCH(bool, bound);
        DialExpectation expected = dialExpectations().value(id);
        if (!bound) {
            expected.calls.clear();
            if (id == 9) // the IF rule asks the host for RIT and XIT first
                expected.messages.clear();
        }

        const int j = id % 3 + 1;
        {
            Rig rig(bound);
            setDialSteps(rig.ui());
            QVERIFY(rig.ctrl.assignDialFunction(j, id));
            QCOMPARE(rig.ctrl.dialFunction(j), id);
            emit rig.ctrl.panel().dial(Dialix::Dials(j), -3);
            QCOMPARE(rig.sent(), expected.messages);
            QCOMPARE(rig.manager.calls, expected.calls);
            QVERIFY(rig.button(QStringLiteral("pbDial%1").arg(j))->isChecked());
        }
        if (id == 0)
            return;
        {
            Rig rig(bound);
            setDialSteps(rig.ui());
            const QByteArray slot = "setFuncDial" + QByteArray::number(id);
            QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, slot.constData(), Q_ARG(int, -3)));
            QCOMPARE(rig.sent(), expected.messages);
            QCOMPARE(rig.manager.calls, expected.calls);
        }
    }

    // Steps are read at the moment of each movement.
    void stepsReadLive()
    {
        Rig rig;
        QVERIFY(rig.ctrl.assignDialFunction(2, 2));
        rig.ui()->sbMicGainStep->setValue(2);
        emit rig.ctrl.panel().dial(Dialix::Enc2, 1);
        rig.ui()->sbMicGainStep->setValue(7);
        emit rig.ctrl.panel().dial(Dialix::Enc2, 1);
        QCOMPARE(rig.sent(), QStringList() << msg({127, 1u, 2}) << msg({127, 1u, 7}));
    }

    // The dial's button is lit while it turns and goes out 50 ms after the
    // last movement, also when the dial has no function.
    void dialButtonLitUntilQuiet()
    {
        Rig rig;
        QPushButton *button = rig.button(QStringLiteral("pbDial3"));
        emit rig.ctrl.panel().dial(Dialix::Enc3, 1);
        QVERIFY(button->isChecked());
        QTRY_VERIFY_WITH_TIMEOUT(!button->isChecked(), 5000);
        QVERIFY(!button->isCheckable());
        QCOMPARE(rig.sent(), QStringList());
    }

    void volumeIsClamped_data()
    {
        QTest::addColumn<double>("host");
        QTest::addColumn<int>("step");
        QTest::addColumn<int>("value");
        QTest::addColumn<double>("expected");
        QTest::newRow("bottom") << -58.0 << 5 << -1 << -60.0;
        QTest::newRow("top") << -2.0 << 5 << 1 << 0.0;
        QTest::newRow("inside") << -30.0 << 4 << 2 << -22.0;
        QTest::newRow("from below the range") << -70.0 << 1 << 1 << -60.0;
        QTest::newRow("from above the range") << 5.0 << 1 << -1 << 0.0;
        QTest::newRow("fast turn") << -10.0 << 10 << -127 << -60.0;
    }

    void volumeIsClamped()
    {
        QFETCH(double, host);
        QFETCH(int, step);
        QFETCH(int, value);
        QFETCH(double, expected);
        Rig rig;
        rig.manager.volume = host;
        rig.ui()->sbVolumeStep->setValue(step);
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncDial1", Q_ARG(int, value)));
        QCOMPARE(rig.manager.volume, expected);
        QCOMPARE(rig.sent(), QStringList());
    }

    void ifRule_data()
    {
        QTest::addColumn<bool>("rit");
        QTest::addColumn<bool>("xit");
        QTest::addColumn<bool>("lock");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("rit") << true << false << false << msg({151, 1u, 0u, 5});
        QTest::newRow("rit, locked") << true << false << true << msg({151, 1u, 0u, 5});
        QTest::newRow("rit and xit") << true << true << true << msg({151, 1u, 0u, 5});
        QTest::newRow("xit") << false << true << false << msg({155, 1u, 0u, 5});
        QTest::newRow("xit, locked") << false << true << true << QStringList();
        QTest::newRow("plain") << false << false << false << msg({135, 1u, 5});
        QTest::newRow("plain, locked") << false << false << true << msg({135, 1u, 5});
    }

    // Dial function "IF" and the VFO encoder with "Use IF" take the same rule.
    void ifRule()
    {
        QFETCH(bool, rit);
        QFETCH(bool, xit);
        QFETCH(bool, lock);
        QFETCH(QStringList, expected);

        Rig rig;
        rig.manager.rits[1] = rit;
        rig.manager.xits[1] = xit;
        rig.manager.locks[1] = lock;
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncDial9", Q_ARG(int, 5)));
        QCOMPARE(rig.sent(), expected);

        rig.messages.clear();
        rig.ui()->chbUseIf->setChecked(true);
        emit rig.ctrl.panel().dial(Dialix::Enc0, 5);
        if (expected.isEmpty()) {
            QTest::qWait(60);
            QCOMPARE(rig.sent(), expected);
        } else {
            QTRY_COMPARE_WITH_TIMEOUT(rig.sent(), expected, 5000);
        }
    }

    // ---- VFO encoder ------------------------------------------------------

    void vfoEncoder_data()
    {
        QTest::addColumn<bool>("useIf");
        QTest::addColumn<bool>("vfoB");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("VFO A") << false << false << msg({143, 1u, 0u, 2});
        QTest::newRow("VFO B") << false << true << msg({143, 1u, 1u, 2});
        QTest::newRow("IF") << true << false << msg({135, 1u, 2});
        QTest::newRow("IF with VFO B tunes VFO B") << true << true << msg({143, 1u, 1u, 2});
    }

    // Movements within one tick are coalesced (the latest wins), then sent.
    void vfoEncoder()
    {
        QFETCH(bool, useIf);
        QFETCH(bool, vfoB);
        QFETCH(QStringList, expected);
        Rig rig;
        rig.ui()->chbUseIf->setChecked(useIf);
        rig.ui()->chbVfoB->setChecked(vfoB);
        emit rig.ctrl.panel().dial(Dialix::Enc0, 1);
        emit rig.ctrl.panel().dial(Dialix::Enc0, 2);
        QTRY_COMPARE_WITH_TIMEOUT(rig.sent(), expected, 5000);
        QTest::qWait(60);
        QCOMPARE(rig.sent(), expected);
    }

    void vfoIndicatorFollowsWhenVisible()
    {
        Rig rig;
        QDial *dial = rig.ui()->dialFunc1;
        dial->setValue(250);
        emit rig.ctrl.panel().dial(Dialix::Enc0, 3);
        QTRY_COMPARE_WITH_TIMEOUT(rig.messages.size(), 1, 5000);
        QCOMPARE(dial->value(), 250); // the page is not shown

        rig.ctrl.optionsWidget()->show();
        QVERIFY(QTest::qWaitForWindowExposed(rig.ctrl.optionsWidget()));
        emit rig.ctrl.panel().dial(Dialix::Enc0, 9);
        QTRY_COMPARE_WITH_TIMEOUT(rig.messages.size(), 2, 5000);
        QCOMPARE(dial->value(), (250 + 9) % dial->maximum());
    }

    // Only the coalescing timer may drive the VFO.
    void vfoSlotIgnoresOtherSenders()
    {
        Rig rig;
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "onDdsValue", Q_ARG(QVariant, QVariant(4))));
        QTest::qWait(30);
        QCOMPARE(rig.sent(), QStringList());
    }

    // ---- Host binding -----------------------------------------------------

    void setChannels_data()
    {
        QTest::addColumn<uint>("count");
        QTest::addColumn<QStringList>("items");
        QTest::newRow("0") << 0u << QStringList();
        QTest::newRow("1") << 1u << QStringList {"RX 1"};
        QTest::newRow("3") << 3u << QStringList {"RX 1", "RX 2", "RX 3"};
    }

    void setChannels()
    {
        QFETCH(uint, count);
        QFETCH(QStringList, items);
        DialixControl ctrl;
        QComboBox *box = ctrl.optionsWidget()->ui->cbReceiver;
        QCOMPARE(box->count(), 1); // a new controller has one receiver
        ctrl.setChannels(5);
        ctrl.setChannels(count);
        QStringList texts;
        for (int i = 0; i < box->count(); ++i)
            texts << box->itemText(i);
        QCOMPARE(texts, items);
    }

    void setDevManager()
    {
        Rig rig(false);
        rig.ctrl.setDevManager(&rig.manager);
        rig.ctrl.setDevManager(&rig.manager);
        QCOMPARE(rig.ctrl.devManager(), &rig.manager);

        // Connected once: one MOX report asks each of the two transceivers once.
        rig.manager.moxQueries = 0;
        emit rig.manager.moxChanged(0, true);
        QCOMPARE(rig.manager.moxQueries, 2);

        rig.ctrl.setDevManager(nullptr);
        QCOMPARE(rig.ctrl.devManager(), nullptr);
        rig.manager.moxQueries = 0;
        emit rig.manager.moxChanged(0, true);
        QCOMPARE(rig.manager.moxQueries, 0);
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncButton44"));
        QCOMPARE(rig.manager.calls.filter("setVfoaToVfob"), QStringList());
    }

    void displayModeChangeKeepsReceiverTexts()
    {
        Rig rig;
        emit rig.manager.display4kModeChanged(true);
        QCOMPARE(rig.ui()->cbReceiver->itemText(2), QStringLiteral("RX 3"));
        QCOMPARE(rig.ui()->cbReceiver->currentIndex(), 1);
    }

    void commandsFromHostReachTheCodec()
    {
        Rig rig;
        QSignalSpy spy(rig.ctrl.command(), &qrvCommand::sPanelBandUp);
        rig.ctrl.setCommand(QVariant(QVariantList {110, 2u}));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toUInt(), 2u);
    }

    void pttGroupOnlyForComPort()
    {
        Rig rig;
        for (int mode : {2, 1, 2, 0}) {
            rig.ui()->cbPttTransfer->setCurrentIndex(mode);
            QCOMPARE(rig.ui()->gpPttTransfer->isHidden(), mode != 2);
        }
    }

    // A failed host connection aborts with the function, the macro's message,
    // the source path and the line (run in a child process).
    void checkedConnectAborts()
    {
        QProcess child;
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.start(QCoreApplication::applicationFilePath(), {"--checked-connect-failure"});
        QVERIFY(child.waitForFinished(30000));
        const QByteArray out = child.readAll();
        QVERIFY2(child.exitStatus() == QProcess::CrashExit || child.exitCode() != 0, out);
        QVERIFY2(out.contains("CHECKED_CONNECT failed"), out);
        QVERIFY2(out.contains("plugins/panels/dialix/source/dialixcontrol"), out);
        QVERIFY2(out.contains("checkedConnectChild"), out);
    }

    // ---- Persistence ------------------------------------------------------

    void freshControllerWritesUnused()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("a.ini");
        {
            DialixControl ctrl;
            QSettings settings(path, QSettings::IniFormat);
            ctrl.writeAssignments(settings);
        }
        QSettings check(path, QSettings::IniFormat);
        QStringList expectedKeys;
        for (int n = 0; n <= 16; ++n)
            expectedKeys << QStringLiteral("Dialix1/FunctionButton%1").arg(n);
        for (int j = -1; j <= 2; ++j)
            expectedKeys << QStringLiteral("Dialix1/FunctionDial%1").arg(j);
        for (const QString &key : expectedKeys)
            QCOMPARE(check.value(key, -99).toInt(), 0);
        QVERIFY(!check.contains("Dialix1/FunctionDial3"));
        QVERIFY(check.contains("Dialix1/Options/Volume"));
    }

    void layouts_data()
    {
        QTest::addColumn<bool>("host");
        QTest::addColumn<QStringList>("dialKeys");
        QTest::newRow("own file") << false
                                  << QStringList {"FunctionDial-1", "FunctionDial0",
                                                  "FunctionDial1", "FunctionDial2"};
        QTest::newRow("host settings")
            << true
            << QStringList {"FunctionDial0", "FunctionDial1", "FunctionDial2", "FunctionDial3"};
    }

    // Assignments written and read back in both layouts. The own file's
    // reading re-labels the page's buttons; the host's leaves their texts.
    void layouts()
    {
        QFETCH(bool, host);
        QFETCH(QStringList, dialKeys);
        QTemporaryDir dir;
        const QString path = dir.filePath("layout.ini");

        {
            DialixControl ctrl;
            ctrl.setNumber(1);
            QVERIFY(ctrl.assignButtonFunction(1, 1));
            QVERIFY(ctrl.assignButtonFunction(2, 17));
            QVERIFY(ctrl.assignButtonFunction(17, 60));
            QVERIFY(ctrl.assignDialFunction(1, 1));
            QVERIFY(ctrl.assignDialFunction(3, 13));
            ctrl.optionsWidget()->ui->sbVolumeStep->setValue(4);
            QSettings settings(path, QSettings::IniFormat);
            settings.setValue("Dialix1/FunctionButton0", 42); // another controller's
            if (host)
                ctrl.writeHostAssignments(settings);
            else
                ctrl.writeAssignments(settings);
        }
        {
            QSettings raw(path, QSettings::IniFormat);
            raw.beginGroup("Dialix2");
            QCOMPARE(raw.value("FunctionButton0").toInt(), 1);
            QCOMPARE(raw.value("FunctionButton1").toInt(), 17);
            QCOMPARE(raw.value("FunctionButton16").toInt(), 60);
            QCOMPARE(raw.value(dialKeys.at(0)).toInt(), 0);
            QCOMPARE(raw.value(dialKeys.at(1)).toInt(), 1);
            QCOMPARE(raw.value(dialKeys.at(3)).toInt(), 13);
            QCOMPARE(raw.value("Options/Volume").toInt(), 4);
            raw.endGroup();
            QCOMPARE(raw.childGroups(), (QStringList {"Dialix1", "Dialix2"}));
            QCOMPARE(raw.value("Dialix1/FunctionButton0").toInt(), 42);
            QVERIFY(!raw.contains("Dialix1/FunctionButton1"));
        }

        DialixControl ctrl;
        ctrl.setNumber(1);
        QSettings settings(path, QSettings::IniFormat);
        if (host)
            ctrl.readHostAssignments(settings);
        else
            ctrl.readAssignments(settings);
        QCOMPARE(ctrl.buttonFunction(1), 1);
        QCOMPARE(ctrl.buttonFunction(2), 17);
        QCOMPARE(ctrl.buttonFunction(3), 0);
        QCOMPARE(ctrl.buttonFunction(17), 60);
        QCOMPARE(ctrl.dialFunction(0), 0);
        QCOMPARE(ctrl.dialFunction(1), 1);
        QCOMPARE(ctrl.dialFunction(2), 0);
        QCOMPARE(ctrl.dialFunction(3), 13);
        QCOMPARE(ctrl.optionsWidget()->ui->sbVolumeStep->value(), 4);

        const auto text = [&ctrl](const char *name) {
            return ctrl.optionsWidget()->findChild<QPushButton *>(name)->text();
        };
        const auto tip = [&ctrl](const char *name) {
            return ctrl.optionsWidget()->findChild<QPushButton *>(name)->toolTip();
        };
        if (host) {
            for (const char *name : {"pbFunc1", "pbFunc2", "pbFunc17", "pbDial1", "pbDial3"})
                QCOMPARE(text(name), QStringLiteral("NO"));
        } else {
            QCOMPARE(text("pbFunc1"), QStringLiteral("BU"));
            QCOMPARE(tip("pbFunc1"), QStringLiteral("Band Up"));
            QCOMPARE(text("pbFunc2"), QStringLiteral("AgcU"));
            QCOMPARE(text("pbFunc3"), QStringLiteral("NO"));
            QCOMPARE(tip("pbFunc3"), QStringLiteral("Unused"));
            QCOMPARE(text("pbFunc17"), QStringLiteral("NF"));
            QCOMPARE(text("pbDial1"), QStringLiteral("Vol"));
            QCOMPARE(tip("pbDial1"), QStringLiteral("Volume"));
            QCOMPARE(text("pbDial3"), QStringLiteral("Xit"));
        }
    }

    // A menu choice labels its button at once.
    void menuChoiceLabelsButton()
    {
        Rig rig;
        QActionGroup *group = rig.ctrl.functionButtonGroups().at(4);
        group->actions().at(23)->trigger();
        QCOMPARE(rig.ctrl.buttonFunction(5), 23);
        QCOMPARE(rig.button("pbFunc5")->text(), QStringLiteral("ZM+"));
        QCOMPARE(rig.button("pbFunc5")->toolTip(), QStringLiteral("Zoom In"));
        rig.ctrl.functionDialGroups().at(2)->actions().at(6)->trigger();
        QCOMPARE(rig.button("pbDial2")->text(), QStringLiteral("FW"));
    }

    void badStoredValuesReadAsUnused_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("text") << QVariant("abc");
        QTest::newRow("too large") << QVariant(61);
        QTest::newRow("none checked") << QVariant(-1);
        QTest::newRow("negative") << QVariant(-7);
    }

    void badStoredValuesReadAsUnused()
    {
        QFETCH(QVariant, stored);
        QTemporaryDir dir;
        QSettings settings(dir.filePath("bad.ini"), QSettings::IniFormat);
        settings.setValue("Dialix1/FunctionButton0", stored);
        settings.setValue("Dialix1/FunctionDial0", stored);
        settings.setValue("Dialix1/FunctionButton1", 5);
        DialixControl ctrl;
        QVERIFY(ctrl.assignButtonFunction(1, 9));
        QVERIFY(ctrl.assignDialFunction(1, 4));
        ctrl.readAssignments(settings);
        QCOMPARE(ctrl.buttonFunction(1), 0);
        QCOMPARE(ctrl.dialFunction(1), 0);
        QCOMPARE(ctrl.buttonFunction(2), 5);
        QCOMPARE(ctrl.optionsWidget()->findChild<QPushButton *>("pbFunc1")->text(),
                 QStringLiteral("NO"));
    }

    // saveOptions/loadOptions use "/options.ini" beside the executable.
    void ownFileBesideTheExecutable()
    {
        const QString path = QCoreApplication::applicationDirPath() + "/options.ini";
        QFile::remove(path);
        {
            DialixControl ctrl;
            QVERIFY(ctrl.assignButtonFunction(3, 28));
            ctrl.saveOptions();
        }
        QVERIFY(QFile::exists(path));
        DialixControl ctrl;
        ctrl.loadOptions();
        QCOMPARE(ctrl.buttonFunction(3), 28);
        QCOMPARE(ctrl.optionsWidget()->findChild<QPushButton *>("pbFunc3")->text(),
                 QStringLiteral("PWR"));
        QFile::remove(path);
    }
};

namespace {
// The child of checkedConnectAborts: a connection to a signal that does not exist.
int checkedConnectChild(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QObject a;
    QObject b;
    CHECKED_CONNECT(&a, "2noSuchSignal(bool)", &b, "1deleteLater()");
    return 0;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc > 1 && qstrcmp(argv[1], "--checked-connect-failure") == 0)
        return checkedConnectChild(argc, argv);
    QApplication app(argc, argv);
    app.setAttribute(Qt::AA_Use96Dpi, true);
    TestDialixControl test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_dialixcontrol.moc"
